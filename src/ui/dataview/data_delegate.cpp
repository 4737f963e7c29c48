#include "ui/dataview/data_delegate.h"

#include <QComboBox>
#include <QDateTimeEdit>
#include <QLineEdit>

#include "engine/dataview/field_kinds.h"
#include "ui/dataview/data_model.h"

namespace lomarin::ui {

namespace {

// Set on a date/time picker once its value is the user's (not the stand-in shown for NULL).
constexpr char kUserSetProperty[] = "lomarinUserSet";

// Server text forms of the temporal types a picker can show.
QString formatOf(TMyFieldType type) {
  switch (type) {
    case TMyFieldType::Date:
    case TMyFieldType::NewDate:
      return "yyyy-MM-dd";
    case TMyFieldType::Time:
      return "HH:mm:ss";
    default:
      return "yyyy-MM-dd HH:mm:ss";
  }
}

}  // namespace

TDataDelegate::TDataDelegate(TDataModel* model, QObject* parent)
    : QStyledItemDelegate(parent), model_(model) {}

QWidget* TDataDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                     const QModelIndex& index) const {
  if (ForeignEditor)
    if (QWidget* editor = ForeignEditor(parent, index.column())) return editor;
  const TMyField& field = model_->fields().at(static_cast<size_t>(index.column()));
  const QString text = index.data(Qt::EditRole).toString();
  // Zero dates and times beyond 24 hours have no picker form: they are edited as text.
  const bool pickable = text.isEmpty() || QDateTime::fromString(text, formatOf(field.Type)).isValid();
  if (dataview::IsDateTimeField(field) && pickable) {
    auto* editor = new QDateTimeEdit(parent);
    editor->setDisplayFormat(formatOf(field.Type));
    editor->setCalendarPopup(field.Type != TMyFieldType::Time);
    return editor;
  }
  QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
  if (auto* line = qobject_cast<QLineEdit*>(editor)) line->setFrame(false);
  return editor;
}

void TDataDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  if (auto* picker = qobject_cast<QDateTimeEdit*>(editor)) {
    const QString text = index.data(Qt::EditRole).toString();
    const QDateTime value = QDateTime::fromString(text, picker->displayFormat());
    const QDateTime shown = value.isValid() ? value : QDateTime::currentDateTime();
    picker->setDateTime(shown);
    // A NULL cell offers the current time to start from, but only a change the user makes is
    // written back (Enter re-announces the unchanged value).
    picker->setProperty(kUserSetProperty, !index.data(Qt::EditRole).isNull());
    connect(picker, &QDateTimeEdit::dateTimeChanged, picker, [picker, shown](const QDateTime& now) {
      if (now != shown) picker->setProperty(kUserSetProperty, true);
    });
    return;
  }
  QStyledItemDelegate::setEditorData(editor, index);
}

void TDataDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const {
  if (auto* picker = qobject_cast<QDateTimeEdit*>(editor)) {
    if (!picker->property(kUserSetProperty).toBool()) return;
    model->setData(index, picker->dateTime().toString(picker->displayFormat()), Qt::EditRole);
    return;
  }
  auto* line = qobject_cast<QLineEdit*>(editor);
  // An unchanged NULL stays NULL instead of becoming an empty string.
  if (line && line->text().isEmpty() && !line->isModified() && index.data(Qt::EditRole).isNull()) return;
  auto* box = qobject_cast<QComboBox*>(editor);
  if (box && box->currentText().isEmpty() && index.data(Qt::EditRole).isNull()) return;
  QStyledItemDelegate::setModelData(editor, model, index);
}

}  // namespace lomarin::ui
