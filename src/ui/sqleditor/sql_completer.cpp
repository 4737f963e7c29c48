#include "ui/sqleditor/sql_completer.h"

#include <Qsci/qsciscintilla.h>

#include <QPainter>
#include <QPixmap>

#include "ui/sqleditor/completion_popup.h"

namespace lomarin::ui {

namespace {

// Images of the lists: keyword, then one per object kind, then column and snippet.
enum Image {
  ImgKeyword = 1,
  ImgTable,
  ImgView,
  ImgProcedure,
  ImgFunction,
  ImgTrigger,
  ImgEvent,
  ImgColumn,
  ImgSnippet
};

// QScintilla's user list of the snippets.
constexpr int kSnippetList = 3;

QPixmap letterImage(QChar letter, QColor colour) {
  QPixmap pixmap(14, 14);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(colour);
  painter.setPen(Qt::NoPen);
  painter.drawRoundedRect(QRectF(0.5, 0.5, 13, 13), 3, 3);
  painter.setPen(Qt::white);
  QFont font = painter.font();
  font.setPixelSize(10);
  font.setBold(true);
  painter.setFont(font);
  painter.drawText(pixmap.rect(), Qt::AlignCenter, QString(letter));
  return pixmap;
}

QPixmap imageFor(Image id) {
  static const std::pair<char, QColor> looks[] = {
      {'K', QColor(0, 0, 160)},   {'T', QColor(0, 128, 0)},  {'V', QColor(0, 128, 128)},
      {'P', QColor(128, 0, 128)}, {'F', QColor(160, 80, 0)}, {'R', QColor(160, 0, 0)},
      {'E', QColor(90, 90, 90)},  {'C', QColor(0, 90, 180)}, {'S', QColor(120, 120, 0)}};
  const auto& [letter, colour] = looks[id - ImgKeyword];
  return letterImage(QChar(letter), colour);
}

int imageOf(TDbObjectKind kind) { return ImgTable + static_cast<int>(kind); }

std::vector<TPopupRow> rowsOf(const std::vector<TCompletionItem>& items, const QIcon& icon) {
  std::vector<TPopupRow> rows;
  rows.reserve(items.size());
  for (const TCompletionItem& item : items)
    rows.push_back({QString::fromStdString(item.Text), QString::fromStdString(item.Display), icon});
  return rows;
}

}  // namespace

TSqlCompleter::TSqlCompleter(QsciScintilla* memo, std::vector<TCompletionItem> keywords,
                             TCompletionSources sources)
    : QObject(memo),
      memo_(memo),
      keywordPopup_(new TCompletionPopup(memo, "AutoCompletePopup1")),
      columnPopup_(new TCompletionPopup(memo, "AutoCompletePopup2")),
      keywords_(std::move(keywords)),
      sources_(std::move(sources)) {
  for (int id = ImgKeyword; id <= ImgSnippet; ++id) icons_.push_back(QIcon(imageFor(static_cast<Image>(id))));
  memo_->registerImage(ImgSnippet, imageFor(ImgSnippet));
  // The snippet list keeps its order, and typing still narrows it.
  memo_->SendScintilla(QsciScintillaBase::SCI_AUTOCSETORDER, 2);
  memo_->SendScintilla(QsciScintillaBase::SCI_AUTOCSETIGNORECASE, 1);
  memo_->SendScintilla(QsciScintillaBase::SCI_AUTOCSETAUTOHIDE, 0);
  connect(memo_, &QsciScintilla::userListActivated, this, &TSqlCompleter::snippetChosen);
}

void TSqlCompleter::showKeywords() {
  std::vector<TPopupRow> rows = rowsOf(keywords_, icon(ImgKeyword));
  if (sources_.DatabaseObjects)
    for (const TDbObjectItem& object : sources_.DatabaseObjects())
      rows.push_back({object.Name, object.Name, icon(imageOf(object.ObjectKind))});
  columnPopup_->hide();
  keywordPopup_->popup(rows);
}

void TSqlCompleter::showSnippets() {
  QStringList list;
  for (std::string_view snippet : SqlSnippets())
    list << QString::fromUtf8(snippet.data(), static_cast<qsizetype>(snippet.size())) + "?" +
                QString::number(ImgSnippet);
  memo_->showUserList(kSnippetList, list);
}

bool TSqlCompleter::showColumns() {
  if (!sources_.DescribeTable) return false;
  std::vector<std::string> tables;
  if (sources_.DatabaseObjects)
    for (const TDbObjectItem& object : sources_.DatabaseObjects())
      if (object.ObjectKind == TDbObjectKind::Table || object.ObjectKind == TDbObjectKind::View)
        tables.push_back(object.Name.toStdString());
  const QByteArray text = memo_->text().toUtf8();
  const auto caret = static_cast<size_t>(memo_->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS));
  const std::optional<std::string> table =
      ColumnSourceTable(std::string_view(text.constData(), text.size()), caret, tables);
  if (!table) return false;
  keywordPopup_->hide();
  return columnPopup_->popup(rowsOf(ColumnItems(sources_.DescribeTable(*table)), icon(ImgColumn)));
}

const QIcon& TSqlCompleter::icon(int image) const { return icons_[static_cast<size_t>(image - ImgKeyword)]; }

void TSqlCompleter::snippetChosen(int id, const QString& text) {
  if (id != kSnippetList) return;
  // The typed start of the word is replaced by the chosen snippet.
  memo_->SendScintilla(QsciScintillaBase::SCI_SETSEL, WordStartBeforeCaret(*memo_),
                       memo_->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS));
  memo_->replaceSelectedText(text);
  if (CaretInsideBrackets(text.toStdString())) {
    const int pos = static_cast<int>(memo_->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS));
    memo_->SendScintilla(QsciScintillaBase::SCI_GOTOPOS, pos - 1);
  }
}

}  // namespace lomarin::ui
