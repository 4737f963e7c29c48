#include "ui/designers/form_trg_mgr.h"

#include "engine/connect/my_connection.h"
#include "engine/designers/bound_sql.h"
#include "ui/designers/designer_widgets.h"
#include "ui/designers/program_pages.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_form_trg_mgr.h"

namespace lomarin::ui {

namespace {

constexpr int kSourcePage = 2;

template <size_t N>
void fillChoices(QComboBox* combo, const std::array<std::string_view, N>& items) {
  for (std::string_view item : items)
    combo->addItem(QString::fromLatin1(item.data(), qsizetype(item.size())));
  combo->setCurrentIndex(-1);
}

}  // namespace

TformTrgMgr::TformTrgMgr(TMyConnection& session, SettingsStore& settings, ErrorReporter report,
                         const QString& database, const QString& name, QWidget* parent)
    : QDialog(parent),
      session_(session),
      report_(std::move(report)),
      database_(database),
      name_(name),
      ui_(std::make_unique<Ui::TformTrgMgr>()) {
  ui_->setupUi(this);
  fraWhere_ = addBodyEditor(settings, ui_->definitionLayout, "fraWhere");
  frameSQL_ = addSourceView(settings, ui_->sourceLayout);
  fillChoices(ui_->cobotrgtime, designers::kTriggerTimes);
  fillChoices(ui_->cobotrgEvent, designers::kTriggerEvents);
  connect(ui_->cobodb, &QComboBox::currentIndexChanged, this, &TformTrgMgr::cobodbChange);
  connect(ui_->pgcTrigger, &QTabWidget::currentChanged, this, &TformTrgMgr::pgcTriggerChange);
  connect(ui_->btnOk, &QPushButton::clicked, this, &TformTrgMgr::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TformTrgMgr::~TformTrgMgr() = default;

void TformTrgMgr::showEvent(QShowEvent* event) {
  if (!read_) {
    read_ = true;
    fillDatabases(session_, ui_->cobodb, database_);
    if (!name_.isEmpty()) loadTrigger();
  }
  QDialog::showEvent(event);
}

QString TformTrgMgr::database() const { return ui_->cobodb->currentText(); }

void TformTrgMgr::cobodbChange() {
  ui_->coboTable->clear();
  if (database().isEmpty()) return;
  ui_->coboTable->addItems(readColumn(session_, designers::TriggerTablesSql(text(ui_->cobodb)), "name"));
}

void TformTrgMgr::loadTrigger() {
  explorer::ResultTable result;
  try {
    result = designers::ReadBound(session_, designers::kLoadTriggerSql,
                                  {{"db", database_.toStdString()}, {"name", name_.toStdString()}});
  } catch (const ServerError&) {
    return;  // the session's error handling has shown it
  }
  if (result.rows.empty()) return;
  const std::vector<std::string>& row = result.rows.front();
  const designers::TTriggerState trigger{row[0], row[3], row[1], row[8], row[2], row[6]};
  ui_->cobodb->setCurrentText(QString::fromStdString(trigger.Database));
  ui_->coboTable->setCurrentText(QString::fromStdString(trigger.Table));
  ui_->edName->setText(QString::fromStdString(trigger.Name));
  ui_->cobotrgtime->setCurrentText(QString::fromStdString(trigger.Time));
  ui_->cobotrgEvent->setCurrentText(QString::fromStdString(trigger.Event));
  setFrameText(fraWhere_, trigger.Body);
  holdTrigger(trigger);
}

void TformTrgMgr::holdTrigger(const designers::TTriggerState& trigger) {
  loaded_ = trigger;
  setWindowTitle(QString::fromStdString(designers::TriggerEditCaption(trigger.Database, trigger.Name)));
}

designers::TTriggerState TformTrgMgr::state() const {
  return {text(ui_->cobodb),      text(ui_->coboTable),    text(ui_->edName),
          text(ui_->cobotrgtime), text(ui_->cobotrgEvent), frameText(fraWhere_)};
}

void TformTrgMgr::pgcTriggerChange(int index) {
  if (index == kSourcePage) setFrameText(frameSQL_, designers::BuildCreateTriggerSql(state()));
}

void TformTrgMgr::btnOkClick() {
  const designers::TTriggerState trigger = state();
  if (const std::string problem = designers::CheckCreateTrigger(trigger); !problem.empty()) {
    report_(QString::fromStdString(problem));
    return;
  }
  if (loaded_ && !ExecSQLText(session_, designers::BuildDropTriggerSql(loaded_->Database, loaded_->Name)))
    return;
  if (!ExecSQLText(session_, designers::BuildCreateTriggerSql(trigger))) {
    // The server refused the new text after the old trigger was dropped: put the old one back.
    if (loaded_) ExecSQLText(session_, designers::BuildCreateTriggerSql(*loaded_));
    return;
  }
  holdTrigger(trigger);
  ui_->btnOk->setEnabled(false);
}

}  // namespace lomarin::ui
