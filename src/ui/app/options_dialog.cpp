#include "ui/app/options_dialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/connect/accounts.h"
#include "engine/connect/accounts_choices.h"
#include "engine/connect/secret_vault.h"
#include "ui/app/exception_dialog.h"

namespace lomarin::ui {
namespace {

QString qs(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

template <size_t N>
QStringList listOf(const std::array<std::string_view, N>& items) {
  QStringList list;
  for (std::string_view item : items) list << qs(item);
  return list;
}

// Options whose value starts a new page of the dialog, and the page's title.
const QHash<QString, QString>& pageStarts() {
  static const QHash<QString, QString> starts{
      {qs(opt::DefaultDatabasePort.name), QObject::tr("General")},
      {qs(opt::EditorFontSize.name), QObject::tr("Editor")},
      {qs(opt::WantsReturns.name), QObject::tr("Data grid")},
      {qs(opt::GutterVisible.name), QObject::tr("Editor")},
      {qs(qb::SyntaxSqlProvider.name), QObject::tr("Query builder")},
      {qs(start::Procedures.name), QObject::tr("Auto-completion")},
  };
  return starts;
}

// Choices offered for the text options that have a known list; any stored text is kept.
const QHash<QString, QStringList>& choices() {
  static const QHash<QString, QStringList> lists{
      {qs(opt::MenuSkin.name), {"Standard", "Flat", "Office"}},
      {qs(opt::SkinType.name), {"0", "1", "2", "3"}},
      // The same choices as an account's.
      {qs(opt::EditorEncoding.name), listOf(kFontEncodings)},
      {qs(opt::EditorFormat.name), listOf(kFontFormats)},
      {qs(opt::EditorCharset.name), listOf(kFontCharsets)},
      {qs(qb::SyntaxSqlProvider.name), {"MySQL", "ANSI SQL"}},
      {qs(qb::LinkPaintingStyle.name), {"MS Access style", "Straight lines"}},
      {qs(qb::AddObjectListStyle.name), {"List style", "Tree style"}},
      {qs(qb::BkImageDarkness.name), {"Light gray on White", "Dark gray on White", "None"}},
      {qs(qb::BorderStyle.name), {"3D style", "Flat style"}},
  };
  return lists;
}

bool isFolder(const StringOption& option) {
  return option.name == opt::ProjectDirectory.name || option.name == opt::MysqlBinDirectory.name ||
         option.name == opt::BackupDirectory.name || option.name == opt::CertificatesPath.name;
}

// What a value without a fixed default shows: the control's own current state.
QString currentDefault(const StringOption& option) {
  if (option.name == opt::DefaultDatabasePort.name) return "3306";
  if (option.name == opt::Font.name) return QApplication::font().family();
  if (option.name == opt::ExtraLines.name) return "0";
  if (option.name == opt::RightEdge.name) return "80";
  if (isFolder(option)) return QDir::homePath();
  if (choices().contains(qs(option.name))) return choices().value(qs(option.name)).first();
  return QString();
}

}  // namespace

TforOptions::TforOptions(SettingsStore& settings, QWidget* parent, SecretVault* keychain)
    : QDialog(parent), settings_(settings), keychain_(keychain) {
  setObjectName("TforOptions");
  setWindowTitle(tr("Options"));
  pages_ = new QTabWidget(this);
  pages_->setObjectName("pgcOptions");

  QFormLayout* current = nullptr;
  for (const Option& option : dialogOptions()) {
    std::visit(
        [&](const auto& o) {
          const QString start = pageStarts().value(qs(o.name));
          if (!start.isEmpty()) current = page(start);
          addOption(current, o);
        },
        option);
  }
  addKeychainOption(page(tr("General")));

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName("btnOk");
  buttons->button(QDialogButtonBox::Cancel)->setObjectName("btnCancel");
  connect(buttons, &QDialogButtonBox::accepted, this, [this] {
    if (save()) accept();
  });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(pages_);
  layout->addWidget(buttons);
  resize(620, 560);
}

QFormLayout* TforOptions::page(const QString& title) {
  if (QFormLayout* existing = pageLayouts_.value(title)) return existing;
  auto* scroll = new QScrollArea(pages_);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  auto* content = new QWidget(scroll);
  auto* form = new QFormLayout(content);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  scroll->setWidget(content);
  pages_->addTab(scroll, title);
  pageLayouts_.insert(title, form);
  return form;
}

void TforOptions::addOption(QFormLayout* form, const BoolOption& option) {
  auto* box = new QCheckBox(qs(option.name).trimmed(), form->parentWidget());
  box->setObjectName(qs(option.name));
  box->setChecked(settings_.read(option));
  form->addRow(box);
  writers_.push_back([this, option, box] { return settings_.write(option, box->isChecked()); });
}

void TforOptions::addOption(QFormLayout* form, const StringOption& option) {
  const QString name = qs(option.name);
  const std::string fallback = option.def ? std::string(*option.def) : currentDefault(option).toStdString();
  const QString value = qs(settings_.read(option, fallback));
  QWidget* parent = form->parentWidget();
  std::function<QString()> text;
  QWidget* field = nullptr;
  if (choices().contains(name)) {
    auto* combo = new QComboBox(parent);
    combo->setEditable(true);
    combo->addItems(choices().value(name));
    combo->setCurrentText(value);
    text = [combo] { return combo->currentText(); };
    field = combo;
    combo->setObjectName(name);
  } else {
    auto* edit = new QLineEdit(value, parent);
    edit->setObjectName(name);
    text = [edit] { return edit->text(); };
    field = edit;
    if (isFolder(option)) {
      auto* row = new QWidget(parent);
      auto* rowLayout = new QHBoxLayout(row);
      rowLayout->setContentsMargins(0, 0, 0, 0);
      auto* browse = new QToolButton(row);
      browse->setText("...");
      connect(browse, &QToolButton::clicked, this, [this, edit] {
        const QString folder = QFileDialog::getExistingDirectory(this, QString(), edit->text());
        if (!folder.isEmpty()) edit->setText(folder);
      });
      edit->setParent(row);
      rowLayout->addWidget(edit);
      rowLayout->addWidget(browse);
      field = row;
    }
  }
  form->addRow(name.trimmed(), field);
  writers_.push_back([this, option, text] { return settings_.write(option, text().toStdString()); });
}

void TforOptions::addKeychainOption(QFormLayout* form) {
  const BoolOption& option = opt::PasswordsInKeychain;
  auto* box = new QCheckBox(tr("Keep account passwords in the system keychain"), form->parentWidget());
  box->setObjectName(qs(option.name));
  const bool wasOn = settings_.read(option);
  box->setChecked(wasOn);
  // Beside the other password option.
  int row = form->rowCount();
  QFormLayout::ItemRole role;
  if (auto* savePassword = findChild<QCheckBox*>(qs(opt::SavePassWord.name))) {
    form->getWidgetPosition(savePassword, &row, &role);
    ++row;
  }
  form->insertRow(row, box);
  if (!keychain_ || !keychain_->available()) {
    auto* note = new QLabel(tr("No system keychain answers: the passwords stay enciphered in the settings file."),
                            form->parentWidget());
    note->setObjectName("lblNoKeychain");
    note->setWordWrap(true);
    note->setEnabled(false);
    form->insertRow(row + 1, note);
  }
  writers_.push_back([this, option, box, wasOn] {
    if (!settings_.write(option, box->isChecked())) return false;
    if (box->isChecked() == wasOn) return true;
    const std::vector<std::string> stayed = TAccountStore(settings_, keychain_).moveSecrets();
    if (!stayed.empty()) {
      QStringList names;
      for (const std::string& name : stayed) names << qs(name);
      ShowServerError(this,
                      tr("The passwords of these accounts could not be moved and stay where they were: %1")
                          .arg(names.join(", ")),
                      QString());
    }
    return true;
  });
}

bool TforOptions::save() {
  try {
    for (const auto& write : writers_) {
      if (!write()) {
        ShowServerError(this,
                        tr("The options could not be written to %1")
                            .arg(QString::fromStdString(settings_.file().string())),
                        QString());
        return false;
      }
    }
  } catch (const std::exception& error) {
    ShowServerError(this, QString::fromUtf8(error.what()), QString());
    return false;
  }
  return true;
}

}  // namespace lomarin::ui
