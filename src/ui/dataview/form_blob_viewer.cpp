#include "ui/dataview/form_blob_viewer.h"

#include <Qsci/qsciscintilla.h>

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QTableView>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>

#include "engine/app/data_folder.h"
#include "engine/dataview/blob_file.h"
#include "ui/dataview/data_model.h"
#include "ui/dataview/frame_data.h"
#include "ui/dataview/hex_editor.h"
#include "ui/focus_return.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/memo_commands.h"

namespace lomarin::ui {

namespace {

// A BLOB is untrusted data, so its HTML goes to a rich-text view rather than a browser engine:
// nothing in it runs, and no image, style sheet or link it names is fetched, from the network
// or from local files.
class TBlobHtmlView : public QTextBrowser {
 public:
  explicit TBlobHtmlView(QWidget* parent) : QTextBrowser(parent) {
    setObjectName("HtmlView");
    setOpenLinks(false);
    setOpenExternalLinks(false);
  }
  // Empty but not null: a null answer would let the document read a local file itself.
  QVariant loadResource(int, const QUrl&) override { return QByteArray(""); }
};

QPushButton* button(QWidget* parent, const char* name, const QString& text) {
  auto* b = new QPushButton(text, parent);
  b->setObjectName(name);
  b->setAutoDefault(false);
  return b;
}

std::string_view view(const QByteArray& bytes) {
  return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

}  // namespace

TformBlobViewer::TformBlobViewer(TframeData& frame, int column, SettingsStore& settings, QWidget* parent)
    : QDialog(parent), frame_(frame), column_(column) {
  setObjectName("TformBlobViewer");
  setWindowTitle(tr("Blob Viewer"));
  buildUi(settings);
  resize(720, 520);
  showRecord();
}

TformBlobViewer::~TformBlobViewer() = default;

void TformBlobViewer::buildUi(SettingsStore& settings) {
  auto* fileBar = new QToolBar(tr("File bar"), this);
  fileBar->setObjectName("FileBar");
  const auto addAction = [&](const char* name, const QString& text, void (TformBlobViewer::*slot)()) {
    QAction* action = fileBar->addAction(text);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, slot);
  };
  addAction("actEditText", tr("Edit text"), &TformBlobViewer::actEditTextClick);
  addAction("actSaveText", tr("Save text"), &TformBlobViewer::actSaveTextClick);
  addAction("actClearText", tr("Clear Text"), &TformBlobViewer::actClearTextClick);
  fileBar->addSeparator();
  addAction("actSaveBytes", tr("Save bytes"), &TformBlobViewer::actSaveBytesClick);

  pages_ = new QTabWidget(this);
  pages_->setObjectName("pgcBlob");
  text_ = TframeecSQL::createReadOnly(settings, pages_);
  text_->setObjectName("frameText");
  pages_->addTab(text_, tr("Text"));
  image_ = new QLabel(pages_);
  image_->setObjectName("imgBlob");
  image_->setAlignment(Qt::AlignCenter);
  auto* imageScroll = new QScrollArea(pages_);
  imageScroll->setWidget(image_);
  imageScroll->setWidgetResizable(true);
  pages_->addTab(imageScroll, tr("Image"));
  html_ = new TBlobHtmlView(pages_);
  pages_->addTab(html_, tr("HTML"));
  hex_ = new THexEditor(pages_);
  pages_->addTab(hex_, tr("Hexadecimal"));

  record_ = new QLabel(this);
  record_->setObjectName("lblRecord");
  QPushButton* btnClose = button(this, "btnClose", tr("&Close"));
  QPushButton* btnUnload = button(this, "btnUnload", tr("&Unload"));
  QPushButton* btnNext = button(this, "btnNext", tr("&Next"));
  QPushButton* btnPrior = button(this, "btnPrior", tr("&Prior"));
  QPushButton* btnLoad = button(this, "btnLoad", tr("&Load"));
  QPushButton* btnClear = button(this, "btnClear", tr("Clear"));
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(record_, 1);
  for (QPushButton* b : {btnPrior, btnNext, btnLoad, btnUnload, btnClear, btnClose}) buttons->addWidget(b);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(fileBar);
  layout->addWidget(pages_, 1);
  layout->addLayout(buttons);

  connect(btnClose, &QPushButton::clicked, this, &QDialog::accept);
  connect(btnUnload, &QPushButton::clicked, this, &TformBlobViewer::btnUnloadClick);
  connect(btnNext, &QPushButton::clicked, this, &TformBlobViewer::btnNextClick);
  connect(btnPrior, &QPushButton::clicked, this, &TformBlobViewer::btnPriorClick);
  connect(btnLoad, &QPushButton::clicked, this, &TformBlobViewer::btnLoadClick);
  connect(btnClear, &QPushButton::clicked, this, &TformBlobViewer::btnClearClick);
}

QString TformBlobViewer::workFile() { return QString::fromStdString((dataFolder() / "myfile").string()); }

void TformBlobViewer::showRecord() {
  const int row = frame_.grid()->currentIndex().row();
  TDataModel* model = frame_.model();
  const QString field = model->headerData(column_, Qt::Horizontal, Qt::DisplayRole).toString();
  value_.clear();
  if (row >= 0) {
    const std::string bytes = model->cell(row, column_).bytes;
    value_ = QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size()));
  }
  record_->setText(row < 0 ? tr("No record")
                           : tr("%1 - record %2 of %3").arg(field).arg(row + 1).arg(model->rowCount()));
  try {
    dataview::WriteOwnerOnlyFile(workFile().toStdString(), view(value_));
  } catch (const std::runtime_error& error) {
    report(QString::fromUtf8(error.what()));
  }
  hex_->setBytes(value_);
  html_->setHtml(QString::fromUtf8(value_));
  text_->memo()->setText(QString::fromUtf8(value_));
  text_->commands()->setReadOnly(true);
  QImage picture;
  if (!value_.isEmpty() && picture.loadFromData(value_)) {
    image_->setPixmap(QPixmap::fromImage(picture));
  } else {
    image_->setPixmap({});
    image_->setText(value_.isEmpty() ? tr("The value is empty.") : tr("The value is not a picture."));
  }
}

void TformBlobViewer::moveBy(int rows) {
  TDataModel* model = frame_.model();
  const int target = frame_.grid()->currentIndex().row() + rows;
  if (target >= model->rowCount() && model->canFetchMore({})) model->fetchMore({});
  if (target < 0 || target >= model->rowCount()) return;
  frame_.grid()->setCurrentIndex(model->index(target, column_));
  showRecord();
}

void TformBlobViewer::btnNextClick() { moveBy(1); }
void TformBlobViewer::btnPriorClick() { moveBy(-1); }

bool TformBlobViewer::store(const QByteArray& bytes) {
  const int row = frame_.grid()->currentIndex().row();
  if (row < 0) return false;
  const bool ok = frame_.model()->setCell(
      row, column_, {false, std::string(bytes.constData(), static_cast<size_t>(bytes.size()))});
  showRecord();
  return ok;
}

void TformBlobViewer::btnClearClick() { store({}); }

bool TformBlobViewer::loadFromFile(const QString& file) {
  try {
    const std::string bytes = dataview::ReadFileBytes(file.toStdString());
    return store(QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())));
  } catch (const std::runtime_error& error) {
    report(QString::fromUtf8(error.what()));
    return false;
  }
}

bool TformBlobViewer::unloadToFile(const QString& file) {
  try {
    dataview::WriteOwnerOnlyFile(file.toStdString(), view(value_));
    return true;
  } catch (const std::runtime_error& error) {
    report(QString::fromUtf8(error.what()));
    return false;
  }
}

void TformBlobViewer::btnLoadClick() {
  const QString file = QFileDialog::getOpenFileName(this, tr("Load"));
  if (!file.isEmpty()) loadFromFile(file);
}

QFileDialog* TformBlobViewer::createUnloadDialog() {
  auto* dialog = new QFileDialog(this, tr("Unload"));
  dialog->setObjectName("dlgUnload");
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setOption(QFileDialog::DontUseNativeDialog);
  dialog->setDefaultSuffix("jpeg");
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  return dialog;
}

void TformBlobViewer::btnUnloadClick() {
  QFileDialog* dialog = createUnloadDialog();
  connect(dialog, &QFileDialog::fileSelected, this, &TformBlobViewer::unloadToFile);
  dialog->open();
}

void TformBlobViewer::actEditTextClick() { text_->commands()->setReadOnly(false); }

void TformBlobViewer::actSaveTextClick() { store(text_->memo()->text().toUtf8()); }

void TformBlobViewer::actClearTextClick() { text_->memo()->clear(); }

void TformBlobViewer::actSaveBytesClick() { store(hex_->bytes()); }

void TformBlobViewer::report(const QString& message) {
  TFocusReturn focus;
  QMessageBox::critical(this, windowTitle(), message);
}

}  // namespace lomarin::ui
