#include "ui/designers/form_new_view.h"

#include "engine/connect/my_connection.h"
#include "engine/designers/view_udf.h"
#include "ui/designers/designer_widgets.h"
#include "ui/designers/program_pages.h"
#include "ui_form_new_view.h"

namespace lomarin::ui {

namespace {
constexpr int kSourcePage = 2;
}

TformNewView::TformNewView(TMyConnection& session, SettingsStore& settings, QWidget* parent)
    : QDialog(parent), session_(session), ui_(std::make_unique<Ui::TformNewView>()) {
  ui_->setupUi(this);
  fraWhere_ = addBodyEditor(settings, ui_->definitionLayout, "fraWhere");
  frameSQL_ = addSourceView(settings, ui_->sourceLayout);
  connect(ui_->pgcView, &QTabWidget::currentChanged, this, &TformNewView::pgcViewChange);
  connect(ui_->btnOk, &QPushButton::clicked, this, &TformNewView::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TformNewView::~TformNewView() = default;

std::string TformNewView::statement() const {
  return designers::BuildCreateViewSql(text(ui_->edName), frameText(fraWhere_));
}

void TformNewView::pgcViewChange(int index) {
  if (index == kSourcePage) setFrameText(frameSQL_, statement());
}

void TformNewView::btnOkClick() {
  if (ExecSQLText(session_, statement())) accept();
}

}  // namespace lomarin::ui
