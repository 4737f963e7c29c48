#include "ui/designers/form_event_manager.h"

#include "engine/connect/escape.h"
#include "engine/connect/my_connection.h"
#include "engine/designers/bound_sql.h"
#include "engine/designers/database_scope.h"
#include "ui/designers/designer_widgets.h"
#include "ui/designers/program_pages.h"
#include "ui_form_event_manager.h"

namespace lomarin::ui {

namespace {

constexpr int kSourcePage = 2;

QString qs(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

TfrmEventManager::TfrmEventManager(TMyConnection& session, SettingsStore& settings, ErrorReporter report,
                                   const QString& database, const QString& name, QWidget* parent)
    : QDialog(parent),
      session_(session),
      report_(std::move(report)),
      database_(database),
      name_(name),
      ui_(std::make_unique<Ui::TfrmEventManager>()) {
  ui_->setupUi(this);
  fraDefinition_ = addBodyEditor(settings, ui_->definitionLayout, "fraDefinition");
  frameSQL_ = addSourceView(settings, ui_->sourceLayout);
  ui_->cxcoboInterval->addItem(QString());
  for (std::string_view unit : designers::kEventIntervalUnits) {
    const QString text = QString::fromLatin1(unit.data(), qsizetype(unit.size()));
    ui_->cxcoboInterval->addItem(text);
    ui_->cxcoboEvery->addItem(text);
  }
  for (QLineEdit* time : {ui_->cxedCurrent, ui_->cxedStart, ui_->cxedEnd}) time->setText(nowText());
  for (QAbstractButton* box : std::initializer_list<QAbstractButton*>{ui_->cxrdiAt, ui_->cxradiEvery,
                                                                      ui_->cxchkstart, ui_->cxchkEnd})
    connect(box, &QAbstractButton::toggled, this, &TfrmEventManager::scheduleChange);
  scheduleChange();
  connect(ui_->pgcEvent, &QTabWidget::currentChanged, this, &TfrmEventManager::pgcEventChange);
  connect(ui_->btnOk, &QPushButton::clicked, this, &TfrmEventManager::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TfrmEventManager::~TfrmEventManager() = default;

void TfrmEventManager::showEvent(QShowEvent* event) {
  if (!read_) {
    read_ = true;
    if (!name_.isEmpty()) loadEvent();
  }
  QDialog::showEvent(event);
}

// Only the fields of the chosen schedule can be typed in.
void TfrmEventManager::scheduleChange() {
  const bool once = ui_->cxrdiAt->isChecked();
  for (QWidget* field :
       std::initializer_list<QWidget*>{ui_->cxedCurrent, ui_->cxedinterval, ui_->cxcoboInterval})
    field->setEnabled(once);
  for (QWidget* field :
       std::initializer_list<QWidget*>{ui_->cxeditEvery, ui_->cxcoboEvery, ui_->cxchkstart, ui_->cxchkEnd})
    field->setEnabled(!once);
  ui_->cxedStart->setEnabled(!once && ui_->cxchkstart->isChecked());
  ui_->cxedEnd->setEnabled(!once && ui_->cxchkEnd->isChecked());
}

void TfrmEventManager::loadEvent() {
  explorer::ResultTable result;
  try {
    result = designers::ReadBound(session_, designers::kLoadEventSql,
                                  {{"db", database_.toStdString()}, {"event", name_.toStdString()}});
  } catch (const ServerError&) {
    return;  // the session's error handling has shown it
  }
  if (result.rows.empty()) return;
  const std::vector<std::string>& row = result.rows.front();
  ui_->cxEventName->setText(qs(row[1]));
  setFrameText(fraDefinition_, row[2]);
  const bool recurring = row[3] == "RECURRING";
  (recurring ? ui_->cxradiEvery : ui_->cxrdiAt)->setChecked(true);
  if (recurring) {
    ui_->cxeditEvery->setText(qs(row[5]));
    ui_->cxcoboEvery->setCurrentText(qs(row[6]));
    ui_->cxchkstart->setChecked(!row[7].empty());
    if (!row[7].empty()) ui_->cxedStart->setText(qs(row[7]));
    ui_->cxchkEnd->setChecked(!row[8].empty());
    if (!row[8].empty()) ui_->cxedEnd->setText(qs(row[8]));
  } else {
    ui_->cxedCurrent->setText(qs(row[4]));
  }
  ui_->cxchkEnabled->setChecked(row[9] == "ENABLED");
  ui_->cxchkCompletion->setChecked(row[10] != "PRESERVE");
  ui_->cxmemoComment->setPlainText(qs(row[14]));
  holdEvent(qs(row[0]), qs(row[1]));
}

void TfrmEventManager::holdEvent(const QString& database, const QString& name) {
  database_ = database;
  name_ = name;
  alter_ = true;
  setWindowTitle(qs(designers::EventEditCaption(database.toStdString(), name.toStdString())));
}

designers::TEventState TfrmEventManager::state() const {
  designers::TEventState state;
  state.Name = text(ui_->cxEventName);
  state.Enabled = ui_->cxchkEnabled->isChecked();
  state.Recurring = ui_->cxradiEvery->isChecked();
  state.At = text(ui_->cxedCurrent);
  state.AtInterval = text(ui_->cxedinterval);
  state.AtIntervalUnit = text(ui_->cxcoboInterval);
  state.EveryValue = text(ui_->cxeditEvery);
  state.EveryUnit = text(ui_->cxcoboEvery);
  state.HasStart = ui_->cxchkstart->isChecked();
  state.Starts = text(ui_->cxedStart);
  state.HasEnd = ui_->cxchkEnd->isChecked();
  state.Ends = text(ui_->cxedEnd);
  state.NotPreserve = ui_->cxchkCompletion->isChecked();
  state.Comment = ui_->cxmemoComment->toPlainText().toStdString();
  state.Body = frameText(fraDefinition_);
  state.Alter = alter_;
  if (alter_) state.AlterName = name_.toStdString();
  return state;
}

void TfrmEventManager::pgcEventChange(int index) {
  if (index != kSourcePage) return;
  setFrameText(frameSQL_, designers::BuildEventSql(state(), [this](std::string_view value) {
                 return EscapeString(session_, value);
               }));
}

void TfrmEventManager::btnOkClick() {
  const designers::TEventState event = state();
  if (const std::string problem = designers::CheckEvent(event); !problem.empty()) {
    report_(qs(problem));
    return;
  }
  const std::string sql = designers::BuildEventSql(
      event, [this](std::string_view value) { return EscapeString(session_, value); });
  try {
    // The text names no database: the event's own is made current for it. A compound body holds
    // ";", so the text goes as one statement.
    designers::TDatabaseScope scope(session_, database_.toStdString());
    if (!ExecSQLText(session_, sql)) return;
    holdEvent(alter_ ? database_ : qs(session_.CurrentDatabase()), qs(event.Name));
  } catch (const ServerError&) {
    return;  // the session's error handling has shown it
  }
  ui_->btnOk->setEnabled(false);
}

}  // namespace lomarin::ui
