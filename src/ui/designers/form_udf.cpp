#include "ui/designers/form_udf.h"

#include <QFileDialog>
#include <QFileInfo>
#include <algorithm>

#include "engine/connect/my_connection.h"
#include "engine/designers/bound_sql.h"
#include "ui/designers/designer_widgets.h"
#include "ui/designers/program_pages.h"
#include "ui_form_udf.h"

namespace lomarin::ui {

namespace {

constexpr int kSourcePage = 1;

// mysql.func's "ret" counts the return types in the dialog's order; "type" names an aggregate.
constexpr std::string_view kLoadUdfSql = "select name, ret, dl, type from mysql.func where name = :name";

}  // namespace

TformUDF::TformUDF(TMyConnection& session, SettingsStore& settings, ErrorReporter report, const QString& name,
                   QWidget* parent)
    : QDialog(parent),
      session_(session),
      report_(std::move(report)),
      replaced_(name),
      ui_(std::make_unique<Ui::TformUDF>()) {
  ui_->setupUi(this);
  frameSQL_ = addSourceView(settings, ui_->sourceLayout);
  for (std::string_view type : designers::kUdfReturnTypes)
    ui_->coboretuns->addItem(QString::fromLatin1(type.data(), qsizetype(type.size())));
  connect(ui_->btnBrowse, &QToolButton::clicked, this, &TformUDF::btnBrowseClick);
  connect(ui_->pgcUdf, &QTabWidget::currentChanged, this, &TformUDF::pgcUdfChange);
  connect(ui_->btnOk, &QPushButton::clicked, this, &TformUDF::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TformUDF::~TformUDF() = default;

void TformUDF::showEvent(QShowEvent* event) {
  if (!read_) {
    read_ = true;
    if (!replaced_.isEmpty()) loadFunction();
  }
  QDialog::showEvent(event);
}

void TformUDF::loadFunction() {
  explorer::ResultTable result;
  try {
    result = designers::ReadBound(session_, kLoadUdfSql, {{"name", replaced_.toStdString()}});
  } catch (const ServerError&) {
    return;  // the session's error handling has shown it
  }
  if (result.rows.empty()) return;
  const std::vector<std::string>& row = result.rows.front();
  ui_->edName->setText(QString::fromStdString(row[0]));
  ui_->coboretuns->setCurrentIndex(std::clamp(std::atoi(row[1].c_str()), 0, ui_->coboretuns->count() - 1));
  ui_->rxFilename->setText(QString::fromStdString(row[2]));
  ui_->chkAggrgate->setChecked(row[3] == "aggregate");
}

designers::TUdfState TformUDF::state() const {
  designers::TUdfState state;
  state.Name = text(ui_->edName);
  state.Library = text(ui_->rxFilename);
  state.ReturnType = text(ui_->coboretuns);
  state.Aggregate = ui_->chkAggrgate->isChecked();
  state.ReplacedName = replaced_.toStdString();
  return state;
}

// The server loads libraries from its plugin folder only, so the file's name is what counts.
void TformUDF::btnBrowseClick() {
  const QString file = QFileDialog::getOpenFileName(this, tr("Library"), {}, tr("Libraries (*.so *.dll)"));
  if (!file.isEmpty()) ui_->rxFilename->setText(QFileInfo(file).fileName());
}

void TformUDF::pgcUdfChange(int index) {
  if (index == kSourcePage) setFrameText(frameSQL_, designers::BuildCreateUdfSql(state()));
}

void TformUDF::btnOkClick() {
  const designers::TUdfState udf = state();
  if (const std::string problem = designers::CheckUdf(udf); !problem.empty()) {
    report_(QString::fromStdString(problem));
    return;
  }
  if (const std::string drop = designers::BuildDropUdfSql(udf); !drop.empty() && !ExecSQLText(session_, drop))
    return;
  if (ExecSQLText(session_, designers::BuildCreateUdfSql(udf))) accept();
}

}  // namespace lomarin::ui
