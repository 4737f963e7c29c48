#include "ui/sqleditor/sql_completer.h"

#include <Qsci/qsciscintilla.h>

#include <QPainter>
#include <QPixmap>

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

int imageOf(TDbObjectItem::Kind kind) { return ImgTable + static_cast<int>(kind); }

std::string wordBefore(const QsciScintilla& memo) {
  int line = 0;
  int index = 0;
  memo.getCursorPosition(&line, &index);
  const QString text = memo.text(line).left(index);
  qsizetype start = text.size();
  while (start > 0 && (text[start - 1].isLetterOrNumber() || text[start - 1] == '_')) --start;
  return text.mid(start).toStdString();
}

}  // namespace

TSqlCompleter::TSqlCompleter(QsciScintilla* memo, std::vector<TCompletionItem> keywords,
                             TCompletionSources sources)
    : QObject(memo), memo_(memo), keywords_(std::move(keywords)), sources_(std::move(sources)) {
  registerImages();
  // Lists keep the order they are given in, and typing still narrows them.
  memo_->SendScintilla(QsciScintillaBase::SCI_AUTOCSETORDER, 2);
  memo_->SendScintilla(QsciScintillaBase::SCI_AUTOCSETIGNORECASE, 1);
  // Letters typed while a list is up go on into the word; the list stays until a choice.
  memo_->SendScintilla(QsciScintillaBase::SCI_AUTOCSETAUTOHIDE, 0);
  connect(memo_, &QsciScintilla::userListActivated, this, &TSqlCompleter::activated);
}

void TSqlCompleter::registerImages() {
  const std::pair<Image, std::pair<char, QColor>> images[] = {
      {ImgKeyword, {'K', QColor(0, 0, 160)}},   {ImgTable, {'T', QColor(0, 128, 0)}},
      {ImgView, {'V', QColor(0, 128, 128)}},    {ImgProcedure, {'P', QColor(128, 0, 128)}},
      {ImgFunction, {'F', QColor(160, 80, 0)}}, {ImgTrigger, {'R', QColor(160, 0, 0)}},
      {ImgEvent, {'E', QColor(90, 90, 90)}},    {ImgColumn, {'C', QColor(0, 90, 180)}},
      {ImgSnippet, {'S', QColor(120, 120, 0)}}};
  for (const auto& [id, look] : images) memo_->registerImage(id, letterImage(QChar(look.first), look.second));
}

void TSqlCompleter::showKeywords() {
  // The list holds what continues the word before the caret; choosing replaces that word.
  const QString typed = QString::fromStdString(wordBefore(*memo_));
  auto fits = [&](const std::string& text) {
    return QString::fromStdString(text).startsWith(typed, Qt::CaseInsensitive);
  };
  std::vector<TCompletionItem> items;
  std::vector<int> images;
  for (const TCompletionItem& keyword : keywords_) {
    if (!fits(keyword.Text)) continue;
    items.push_back(keyword);
    images.push_back(ImgKeyword);
  }
  if (sources_.DatabaseObjects) {
    for (const TDbObjectItem& object : sources_.DatabaseObjects()) {
      if (!fits(object.Name.toStdString())) continue;
      items.push_back({object.Name.toStdString(), object.Name.toStdString()});
      images.push_back(imageOf(object.ObjectKind));
    }
  }
  if (!items.empty()) show(KeywordList, std::move(items), images);
}

void TSqlCompleter::showSnippets() {
  std::vector<TCompletionItem> items;
  for (std::string_view snippet : SqlSnippets())
    items.push_back({std::string(snippet), std::string(snippet)});
  show(SnippetList, items, std::vector<int>(items.size(), ImgSnippet));
}

bool TSqlCompleter::showColumns() {
  if (!sources_.DescribeTable) return false;
  std::vector<std::string> tables;
  if (sources_.DatabaseObjects)
    for (const TDbObjectItem& object : sources_.DatabaseObjects())
      tables.push_back(object.Name.toStdString());
  const QByteArray text = memo_->text().toUtf8();
  const auto caret = static_cast<size_t>(memo_->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS));
  const std::optional<std::string> table =
      ColumnSourceTable(std::string_view(text.constData(), text.size()), caret, tables);
  if (!table) return false;
  std::vector<TCompletionItem> items = ColumnItems(sources_.DescribeTable(*table));
  show(ColumnList, items, std::vector<int>(items.size(), ImgColumn));
  return true;
}

void TSqlCompleter::show(ListId id, std::vector<TCompletionItem> items, const std::vector<int>& images) {
  QStringList list;
  textOfDisplay_.clear();
  for (size_t i = 0; i < items.size(); ++i) {
    const QString display = QString::fromStdString(items[i].Display);
    textOfDisplay_.insert(display, QString::fromStdString(items[i].Text));
    list << display + "?" + QString::number(images[i]);
  }
  shown_ = std::move(items);
  memo_->showUserList(id, list);
}

void TSqlCompleter::activated(int id, const QString& display) {
  const QString text = textOfDisplay_.value(display, display);
  if (id != ColumnList) {
    // The typed start of the word is replaced by the chosen item.
    const auto typed = static_cast<int>(QString::fromStdString(wordBefore(*memo_)).toUtf8().size());
    const int end = static_cast<int>(memo_->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS));
    memo_->SendScintilla(QsciScintillaBase::SCI_SETSEL, end - typed, end);
  }
  memo_->replaceSelectedText(text);
  if (id == SnippetList && CaretInsideBrackets(text.toStdString())) {
    const int pos = static_cast<int>(memo_->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS));
    memo_->SendScintilla(QsciScintillaBase::SCI_GOTOPOS, pos - 1);
  }
}

}  // namespace lomarin::ui
