#include "ui/connect/form_key_manager.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "engine/connect/ssh_error.h"
#include "ui/connect/form_client_key.h"

namespace lomarin::ui {

namespace {

QString q(const std::string& text) { return QString::fromStdString(text); }

constexpr int kPublicLineRole = Qt::UserRole;

QPushButton* button(QWidget* parent, const char* name, const QString& text) {
  auto* b = new QPushButton(text, parent);
  b->setObjectName(name);
  return b;
}

}  // namespace

TformKeyManager::TformKeyManager(const TSshKeyStore& store, QWidget* parent)
    : QDialog(parent),
      store_(store),
      keys_(new QTreeWidget(this)),
      publicLine_(new QLineEdit(this)),
      delete_(button(this, "btnDeleteKey", tr("Delete client key"))),
      copy_(button(this, "btnCopyPublicKey", tr("Copy public key"))) {
  setObjectName("TformKeyManager");
  setWindowTitle(tr("SSH key manager"));
  keys_->setObjectName("lvKeys");
  keys_->setHeaderLabels({tr("Name"), tr("Type"), tr("Fingerprint")});
  keys_->setRootIsDecorated(false);
  keys_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  publicLine_->setObjectName("edtPublicKey");
  publicLine_->setReadOnly(true);
  auto* folder = new QLabel(tr("Key store: %1").arg(q(store.folder().string())), this);
  folder->setObjectName("lblKeyStore");
  folder->setTextInteractionFlags(Qt::TextSelectableByMouse);

  auto* add = button(this, "btnNewKey", tr("New client key"));
  auto* import = button(this, "btnImportKey", tr("Import client key"));
  auto* close = button(this, "btnClose", tr("Close"));
  auto* side = new QVBoxLayout;
  for (QPushButton* b : {add, import, delete_, copy_}) side->addWidget(b);
  side->addStretch();
  side->addWidget(close);
  auto* top = new QHBoxLayout;
  top->addWidget(keys_, 1);
  top->addLayout(side);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(folder);
  layout->addLayout(top, 1);
  layout->addWidget(new QLabel(tr("Public key, for the server's authorized_keys:"), this));
  layout->addWidget(publicLine_);

  connect(add, &QPushButton::clicked, this, [this] { fillKeyList(askNewClientKey(this, store_)); });
  connect(import, &QPushButton::clicked, this, [this] { fillKeyList(askImportClientKey(this, store_)); });
  connect(delete_, &QPushButton::clicked, this, [this] {
    if (askDeleteClientKey(this, store_, chosenKey())) fillKeyList({});
  });
  connect(copy_, &QPushButton::clicked, this,
          [this] { QGuiApplication::clipboard()->setText(publicLine_->text()); });
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  connect(keys_, &QTreeWidget::currentItemChanged, this, [this] { showChosenKey(); });
  resize(720, 360);
  fillKeyList({});
}

QString TformKeyManager::chosenKey() const {
  const QTreeWidgetItem* item = keys_->currentItem();
  return item ? item->text(0) : QString();
}

// Lists the keys and chooses `chosen` (the first key when it is not there).
void TformKeyManager::fillKeyList(const QString& chosen) {
  keys_->clear();
  for (const std::string& name : store_.clientKeyNames()) {
    QString line, fingerprint;
    try {
      line = q(store_.publicLine(name));
      fingerprint = q(store_.fingerprint(name));
    } catch (const TSshError& error) {
      fingerprint = q(error.what());
    }
    auto* item = new QTreeWidgetItem(keys_, {q(name), line.section(' ', 0, 0), fingerprint});
    item->setData(0, kPublicLineRole, line);
    if (q(name) == chosen) keys_->setCurrentItem(item);
  }
  if (!keys_->currentItem() && keys_->topLevelItemCount() > 0) keys_->setCurrentItem(keys_->topLevelItem(0));
  showChosenKey();
}

void TformKeyManager::showChosenKey() {
  const QTreeWidgetItem* item = keys_->currentItem();
  const QString line = item ? item->data(0, kPublicLineRole).toString() : QString();
  publicLine_->setText(line);
  delete_->setEnabled(item != nullptr);
  copy_->setEnabled(!line.isEmpty());
}

}  // namespace lomarin::ui
