#include "ui/dataview/form_adv_filter_builder.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSaveFile>
#include <QVBoxLayout>

#include "ui/focus_return.h"

namespace lomarin::ui {

namespace {

QComboBox* list(QWidget* parent, const char* name, const std::vector<std::string>& items) {
  auto* box = new QComboBox(parent);
  box->setObjectName(name);
  for (const std::string& item : items) box->addItem(QString::fromStdString(item));
  return box;
}

QPushButton* button(QWidget* parent, const char* name, const QString& text) {
  auto* b = new QPushButton(text, parent);
  b->setObjectName(name);
  b->setAutoDefault(false);
  return b;
}

}  // namespace

Tformadvfilterbuilder::Tformadvfilterbuilder(const QStringList& columns, dataview::TEscape escape,
                                             QWidget* parent)
    : QDialog(parent), escape_(std::move(escape)) {
  setObjectName("Tformadvfilterbuilder");
  setWindowTitle(tr("Advanced filter builder"));

  cboName_ = new QComboBox(this);
  cboName_->setObjectName("cboName");
  cboName_->addItems(columns);
  cboCondition_ = list(this, "cboCondition", dataview::FilterOperators());
  cboType_ = list(this, "cboType", dataview::FilterTypeNames());
  cboType_->insertItem(0, QString());
  cboType_->setCurrentIndex(0);
  edtValue_ = new QLineEdit(this);
  edtValue_->setObjectName("edtValue");

  auto* condition = new QFormLayout;
  condition->addRow(tr("Name"), cboName_);
  condition->addRow(tr("Condition"), cboCondition_);
  condition->addRow(tr("Type"), cboType_);
  condition->addRow(tr("Value"), edtValue_);

  auto* options = new QGroupBox(tr("Options"), this);
  options->setObjectName("grpOptions");
  chkFormatTypes_ = new QCheckBox(tr("Format column types"), options);
  chkFormatTypes_->setObjectName("chkFormatTypes");
  chkFormatTypes_->setChecked(true);
  cboDateFormat_ = list(options, "cboDateFormat", dataview::FilterDateFormats());
  auto* optionsLayout = new QFormLayout(options);
  optionsLayout->addRow(chkFormatTypes_);
  optionsLayout->addRow(tr("Date format"), cboDateFormat_);

  auto* top = new QHBoxLayout;
  top->addLayout(condition, 3);
  top->addWidget(options, 2);

  QPushButton* btnAdd = button(this, "btnAdd", tr("Add to filter"));
  QPushButton* btnAnd = button(this, "btnAnd", tr("AND into filter"));
  QPushButton* btnOr = button(this, "btnOr", tr("OR into filter"));
  auto* composeRow = new QHBoxLayout;
  composeRow->addWidget(btnAdd);
  composeRow->addWidget(btnAnd);
  composeRow->addWidget(btnOr);
  composeRow->addStretch();

  memFilter_ = new QPlainTextEdit(this);
  memFilter_->setObjectName("memFilter");

  QPushButton* btnClear = button(this, "btnClear", tr("Clear"));
  QPushButton* btnOpen = button(this, "btnOpen", tr("Open..."));
  QPushButton* btnSave = button(this, "btnSave", tr("Save..."));
  QPushButton* btnCancel = button(this, "btnCancel", tr("&Cancel"));
  QPushButton* btnOk = button(this, "btnOk", tr("&Ok"));
  btnOk->setDefault(true);
  auto* bottom = new QHBoxLayout;
  bottom->addWidget(btnClear);
  bottom->addWidget(btnOpen);
  bottom->addWidget(btnSave);
  bottom->addStretch();
  bottom->addWidget(btnOk);
  bottom->addWidget(btnCancel);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addLayout(composeRow);
  layout->addWidget(memFilter_, 1);
  layout->addLayout(bottom);
  resize(640, 420);

  connect(btnAdd, &QPushButton::clicked, this, [this] { compose(dataview::TFilterJoin::Replace); });
  connect(btnAnd, &QPushButton::clicked, this, [this] { compose(dataview::TFilterJoin::And); });
  connect(btnOr, &QPushButton::clicked, this, [this] { compose(dataview::TFilterJoin::Or); });
  connect(btnClear, &QPushButton::clicked, memFilter_, &QPlainTextEdit::clear);
  connect(btnOpen, &QPushButton::clicked, this, &Tformadvfilterbuilder::btnOpenClick);
  connect(btnSave, &QPushButton::clicked, this, &Tformadvfilterbuilder::btnSaveClick);
  connect(btnOk, &QPushButton::clicked, this, &QDialog::accept);
  connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(cboType_, &QComboBox::currentIndexChanged, this, &Tformadvfilterbuilder::updateDateFormat);
  connect(chkFormatTypes_, &QCheckBox::toggled, this, &Tformadvfilterbuilder::updateDateFormat);
  updateDateFormat();
}

QString Tformadvfilterbuilder::filterText() const { return memFilter_->toPlainText(); }
void Tformadvfilterbuilder::setFilterText(const QString& text) { memFilter_->setPlainText(text); }

QString Tformadvfilterbuilder::conditionText() const {
  dataview::TFilterCondition c;
  c.field = cboName_->currentText().toStdString();
  c.op = cboCondition_->currentText().toStdString();
  c.value = edtValue_->text().toStdString();
  c.type = dataview::FilterTypeFromName(cboType_->currentText().toStdString());
  c.formatColumnTypes = chkFormatTypes_->isChecked();
  c.dateFormat = cboDateFormat_->currentText().toStdString();
  return QString::fromStdString(dataview::FilterConditionText(c, escape_));
}

void Tformadvfilterbuilder::compose(dataview::TFilterJoin join) {
  const std::string text =
      dataview::ComposeFilter(filterText().toStdString(), conditionText().toStdString(), join);
  memFilter_->setPlainText(QString::fromStdString(text));
}

void Tformadvfilterbuilder::updateDateFormat() {
  cboDateFormat_->setEnabled(chkFormatTypes_->isChecked() && cboType_->currentText() == "Date");
}

bool Tformadvfilterbuilder::openFile(const QString& file) {
  QFile in(file);
  if (!in.open(QIODevice::ReadOnly)) {
    TFocusReturn focus;
    QMessageBox::critical(this, windowTitle(), tr("Cannot read %1: %2").arg(file, in.errorString()));
    return false;
  }
  memFilter_->setPlainText(QString::fromUtf8(in.readAll()));
  return true;
}

bool Tformadvfilterbuilder::saveFile(const QString& file) {
  QSaveFile out(file);
  if (!out.open(QIODevice::WriteOnly) || out.write(filterText().toUtf8()) < 0 || !out.commit()) {
    TFocusReturn focus;
    QMessageBox::critical(this, windowTitle(), tr("Cannot write %1: %2").arg(file, out.errorString()));
    return false;
  }
  return true;
}

void Tformadvfilterbuilder::btnOpenClick() {
  const QString file =
      QFileDialog::getOpenFileName(this, tr("Open filter"), {}, tr("Text files (*.txt);;All files (*)"));
  if (!file.isEmpty()) openFile(file);
}

void Tformadvfilterbuilder::btnSaveClick() {
  const QString file = QFileDialog::getSaveFileName(this, tr("Save filter"), "filter.txt",
                                                    tr("Text files (*.txt);;All files (*)"));
  if (!file.isEmpty()) saveFile(file);
}

}  // namespace lomarin::ui
