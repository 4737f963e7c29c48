#include "ui/app/select_database.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "engine/app/shell_statements.h"
#include "engine/connect/my_query.h"

namespace lomarin::ui {

TformSelectDatabase::TformSelectDatabase(TMyConnection& session, QWidget* parent) : QDialog(parent) {
  setObjectName("TformSelectDatabase");
  setWindowTitle(tr("Select database"));

  lstDatabases_ = new QListWidget(this);
  lstDatabases_->setObjectName("lstDatabases");
  TMyQuery query(session);
  query.SQL = std::string(kShowDatabases);
  query.Open();
  while (query.Next()) lstDatabases_->addItem(QString::fromUtf8(query.Value(0).data(), query.Value(0).size()));

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
  ok->setObjectName("btnOk");
  ok->setEnabled(false);
  connect(lstDatabases_, &QListWidget::currentRowChanged, ok, [ok](int row) { ok->setEnabled(row >= 0); });
  connect(lstDatabases_, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel(tr("No database is selected. Choose the database to work in:"), this));
  layout->addWidget(lstDatabases_);
  layout->addWidget(buttons);
  resize(340, 380);
}

QString TformSelectDatabase::selectedDatabase() const {
  const QListWidgetItem* item = lstDatabases_->currentItem();
  return item ? item->text() : QString();
}

}  // namespace lomarin::ui
