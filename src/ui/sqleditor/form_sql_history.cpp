#include "ui/sqleditor/form_sql_history.h"

#include <Qsci/qsciscintilla.h>

#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QRadioButton>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

#include "engine/sqleditor/sql_history.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/vtd_table_model.h"

namespace lomarin::ui {

TformSQLHistory::TformSQLHistory(THsitory& history, SettingsStore& settings, const ErrorReporter& reportError,
                                 QWidget* parent)
    : QDialog(parent), history_(history) {
  setObjectName("TformSQLHistory");
  setWindowTitle("SQL history");
  try {
    history_.LoadFile();
  } catch (const std::exception& error) {
    if (reportError) reportError(QString::fromStdString(error.what()));
  }

  auto* tabs = new QTabWidget(this);
  auto* page = new QWidget(tabs);
  page->setObjectName("tabSQLs");
  tabs->addTab(page, "SQL's");

  frameSQL_ = TframeecSQL::createReadOnly(settings, page);
  frameSQL_->setObjectName("frameSQL");
  model_ = new VtdTableModel(history_.Table(), this);
  grdHistory_ = new QTableView(page);
  grdHistory_->setObjectName("grdHistory");
  grdHistory_->setModel(model_);
  grdHistory_->setSelectionBehavior(QAbstractItemView::SelectRows);
  grdHistory_->setSelectionMode(QAbstractItemView::SingleSelection);
  grdHistory_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grdHistory_->setWordWrap(false);
  const int widths[] = {400, 50, 80};
  for (int column = 0; column < 3; ++column) grdHistory_->setColumnWidth(column, widths[column]);
  // Auto width: the statement takes what the owner and date leave.
  grdHistory_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
  grdHistory_->horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
  grdHistory_->horizontalHeader()->setSectionResizeMode(2, QHeaderView::ResizeToContents);

  auto* splitter = new QSplitter(Qt::Vertical, page);
  splitter->addWidget(frameSQL_);
  splitter->addWidget(grdHistory_);
  splitter->setStretchFactor(1, 1);
  auto* pageLayout = new QVBoxLayout(page);
  pageLayout->addWidget(splitter);

  auto* copyOptions = new QGroupBox("Copy options", this);
  copyOptions->setObjectName("rgCopyOptions");
  rbSQLEditor_ = new QRadioButton("SQL editor", copyOptions);
  rbSQLEditor_->setObjectName("rbSQLEditor");
  rbSQLEditor_->setChecked(true);
  rbClipboard_ = new QRadioButton("Clipboard", copyOptions);
  rbClipboard_->setObjectName("rbClipboard");
  auto* optionsLayout = new QHBoxLayout(copyOptions);
  optionsLayout->addWidget(rbSQLEditor_);
  optionsLayout->addWidget(rbClipboard_);

  auto* btnOk = new QPushButton("OK", this);
  btnOk->setObjectName("btnOk");
  btnOk->setDefault(true);
  auto* btnCancel = new QPushButton("&Cancel", this);
  btnCancel->setObjectName("btnCancel");
  auto* bottom = new QHBoxLayout;
  bottom->addWidget(copyOptions);
  bottom->addStretch();
  bottom->addWidget(btnOk);
  bottom->addWidget(btnCancel);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tabs);
  layout->addLayout(bottom);
  resize(640, 480);

  connect(grdHistory_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          &TformSQLHistory::currentRecordChanged);
  connect(btnOk, &QPushButton::clicked, this, &TformSQLHistory::btnOkClick);
  connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  if (model_->rowCount() > 0) grdHistory_->selectRow(model_->rowCount() - 1);
}

QString TformSQLHistory::SelectedSQL() const {
  const int row = grdHistory_->currentIndex().row();
  if (row < 0 || row >= model_->rowCount()) return {};
  return QString::fromStdString(history_.Table().Records()[static_cast<size_t>(row)][0]);
}

void TformSQLHistory::currentRecordChanged() {
  frameSQL_->memo()->setText(SelectedSQL());
}

void TformSQLHistory::btnOkClick() { done(rbClipboard_->isChecked() ? ResultYes : ResultOK); }

}  // namespace lomarin::ui
