#include "ui/designers/designer_widgets.h"

#include <strings.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>

#include "engine/connect/escape.h"
#include "engine/connect/read_result_table.h"
#include "engine/connect/server_error.h"

namespace lomarin::ui {

namespace {

void enableField(QLineEdit* edit, bool enabled) {
  if (!enabled) edit->clear();
  edit->setEnabled(enabled);
}

void enableBox(QCheckBox* box, bool enabled) {
  if (!enabled) box->setChecked(false);
  box->setEnabled(enabled);
}

}  // namespace

explorer::ValueEscaper sessionEscaper(TMyConnection& session) {
  return [&session](std::string_view value) { return EscapeString(session, value); };
}

QStringList readColumn(TMyConnection& session, const std::string& sql, std::string_view column) {
  QStringList values;
  try {
    const explorer::ResultTable result = ReadResultTable(session, sql);
    for (size_t c = 0; c < result.columns.size(); ++c) {
      const bool wanted =
          column.empty() || (result.columns[c].size() == column.size() &&
                             strncasecmp(result.columns[c].c_str(), column.data(), column.size()) == 0);
      if (!wanted) continue;
      for (const auto& row : result.rows) values << QString::fromStdString(row[c]);
      break;
    }
  } catch (const ServerError&) {
  }
  return values;
}

void applyTypeRules(const designers::TColumnTypeRules& rules, const TTypeRuleWidgets& widgets) {
  for (QCheckBox* box : widgets.Flags) enableBox(box, rules.Flags);
  if (!rules.Flags) return;
  enableField(widgets.Length, rules.Length);
  enableField(widgets.Default, rules.Default);
  enableBox(widgets.AutoIncrement, rules.AutoIncrement);
  enableField(widgets.ExtraValue, rules.ExtraValue);
  enableBox(widgets.Unsigned, rules.UnsignedZerofill);
  enableBox(widgets.Zerofill, rules.UnsignedZerofill);
}

void fillDataTypes(QComboBox* combo) {
  for (std::string_view type : designers::kColumnDataTypes)
    combo->addItem(QString::fromLatin1(type.data(), static_cast<qsizetype>(type.size())));
  combo->setCurrentIndex(-1);
}

std::string text(const QLineEdit* edit) { return edit->text().toStdString(); }
std::string text(const QComboBox* combo) { return combo->currentText().toStdString(); }

void showWarning(QWidget* parent, const std::string& message) {
  QMessageBox::warning(parent, QObject::tr("Warning"), QString::fromStdString(message), QMessageBox::Ok);
}

}  // namespace lomarin::ui
