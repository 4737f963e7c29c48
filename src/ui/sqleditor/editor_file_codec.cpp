#include "ui/sqleditor/editor_file_codec.h"

#include <Qsci/qsciscintilla.h>

#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QSaveFile>
#include <QSignalBlocker>
#include <QStringDecoder>
#include <QStringEncoder>

namespace lomarin::ui {

namespace {

using Kind = TTextEncoding::Kind;

QString encodingName(const TTextEncoding& encoding) {
  switch (encoding.kind) {
    case Kind::Utf8:
      return QStringLiteral("UTF-8");
    case Kind::Utf16LE:
      return QStringLiteral("UTF-16LE");
    case Kind::Utf16BE:
      return QStringLiteral("UTF-16BE");
    case Kind::CodePage:
      return QString::fromStdString(encoding.codePage);
  }
  return {};
}

// QStringDecoder or QStringEncoder for the encoding.
template <typename Converter>
Converter converterFor(const TTextEncoding& encoding) {
  constexpr auto flags = QStringConverter::Flag::Stateless;
  if (encoding.kind == Kind::Utf16LE) return Converter(QStringConverter::Utf16LE, flags);
  if (encoding.kind == Kind::Utf16BE) return Converter(QStringConverter::Utf16BE, flags);
  return Converter(encoding.codePage.c_str(), flags);
}

// The text of bytes in an encoding other than UTF-8; none when it cannot read every byte (or the
// system has no converter for it).
std::optional<QString> decode(std::string_view bytes, const TTextEncoding& encoding) {
  const bool utf16 = encoding.kind == Kind::Utf16LE || encoding.kind == Kind::Utf16BE;
  if (utf16 && bytes.size() % 2 != 0) return std::nullopt;
  auto decoder = converterFor<QStringDecoder>(encoding);
  if (!decoder.isValid()) return std::nullopt;
  QString text = decoder.decode(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
  if (decoder.hasError() || (utf16 && !text.isValidUtf16())) return std::nullopt;
  return text;
}

// The file's bytes for UTF-8 text; none when the encoding cannot hold all of it.
std::optional<QByteArray> encode(std::string_view utf8, const TTextEncoding& encoding) {
  const std::string_view bom = BomBytes(encoding);
  QByteArray bytes(bom.data(), static_cast<qsizetype>(bom.size()));
  if (encoding.kind == Kind::Utf8) return bytes.append(utf8.data(), static_cast<qsizetype>(utf8.size()));
  auto encoder = converterFor<QStringEncoder>(encoding);
  if (!encoder.isValid()) return std::nullopt;
  const QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
  const QByteArray body = encoder.encode(text);
  // Some code pages map a character they lack to a look-alike without reporting it: read back.
  if (encoder.hasError() || decode({body.constData(), static_cast<size_t>(body.size())}, encoding) != text)
    return std::nullopt;
  return bytes.append(body);
}

QsciScintilla::EolMode eolMode(TLineEnd end) {
  switch (end) {
    case TLineEnd::CrLf:
      return QsciScintilla::EolWindows;
    case TLineEnd::Lf:
      return QsciScintilla::EolUnix;
    case TLineEnd::Cr:
      return QsciScintilla::EolMac;
  }
  return QsciScintilla::EolUnix;
}

}  // namespace

TEditorFileCodec::TEditorFileCodec(QsciScintilla* memo) : QObject(memo), memo_(memo) {
  setObjectName("TEditorFileCodec");
}

TEditorFileCodec& TEditorFileCodec::of(QsciScintilla* memo) {
  if (auto* codec = memo->findChild<TEditorFileCodec*>(QString(), Qt::FindDirectChildrenOnly)) return *codec;
  return *new TEditorFileCodec(memo);
}

bool TEditorFileCodec::load(const QString& fileName, const TEditorFileChoices& choices) {
  QFile file(fileName);
  if (!file.open(QIODevice::ReadOnly)) return false;
  // Nobody listening hears of the text in pieces.
  const QSignalBlocker quiet(memo_);
  const std::optional<TLineEnd> fixed = FixedLineEnd(choices.Format);
  const QByteArray head = file.peek(4);
  const TTextEncoding guess =
      EncodingOfBom({head.constData(), static_cast<size_t>(head.size())})
          .value_or(ChosenEncoding(choices.Encoding, choices.Charset, LocaleCodeset()));
  if (guess.kind == Kind::Utf8) {
    const Streamed streamed = streamUtf8(file, static_cast<qint64>(BomBytes(guess).size()), fixed);
    if (streamed == Streamed::ReadError) return false;
    if (streamed == Streamed::Done) {
      encoding_ = guess;
      return true;
    }
  }

  if (!file.seek(0)) return false;
  const QByteArray all = file.readAll();
  if (all.size() != file.size()) return false;
  const std::string_view bytes(all.constData(), static_cast<size_t>(all.size()));
  TTextEncoding encoding = ReadingEncoding(bytes, choices.Encoding, choices.Charset, LocaleCodeset());
  const std::string_view body = bytes.substr(BomBytes(encoding).size());
  std::string converted;
  std::string_view text = body;
  if (encoding.kind != Kind::Utf8 || !IsValidUtf8(body)) {
    std::optional<QString> decoded = encoding.kind == Kind::Utf8 ? std::nullopt : decode(body, encoding);
    if (!decoded) {
      encoding = ByteForByteEncoding();
      decoded = QString::fromLatin1(all);
    }
    converted = decoded->toStdString();
    text = converted;
  }
  if (fixed && HasOtherLineEnds(text, *fixed)) {
    converted = ConvertLineEnds(text, *fixed);
    text = converted;
  }
  beginFill(text.size());
  insertAtStart(text);
  endFill(fixed.value_or(FirstLineEnd(text).value_or(TLineEnd::Lf)));
  encoding_ = encoding;
  return true;
}

// UTF-8 goes from the file into the memo in pieces, the last first, each inserted at the start: a
// piece added further on would cost time in proportion to all the text before it, and the file
// is never in memory twice.
TEditorFileCodec::Streamed TEditorFileCodec::streamUtf8(QFile& file, qint64 from,
                                                        std::optional<TLineEnd> fixed) {
  constexpr qint64 kPiece = 4 << 20;
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  beginFill(static_cast<size_t>(file.size() - from));
  QByteArray piece;
  std::string converted;
  std::string_view first;
  for (qint64 end = file.size(); end > from;) {
    const qint64 start = std::max(from, end - kPiece);
    // One byte more in front shows whether the piece starts inside a character or a CR LF.
    const qint64 readFrom = start > from ? start - 1 : start;
    piece.resize(end - readFrom);
    if (!file.seek(readFrom) || file.read(piece.data(), piece.size()) != piece.size()) {
      endFill(TLineEnd::Lf);
      return Streamed::ReadError;
    }
    const std::string_view bytes(piece.constData(), static_cast<size_t>(piece.size()));
    size_t skip = static_cast<size_t>(start - readFrom);
    // Pieces meet between characters and never inside a CR LF.
    while (start > from && skip < bytes.size() &&
           (continues(bytes[skip]) || (bytes[skip] == '\n' && bytes[skip - 1] == '\r')))
      ++skip;
    std::string_view text = bytes.substr(skip);
    if (skip > 4 || !IsValidUtf8(text)) {
      endFill(TLineEnd::Lf);
      return Streamed::NotUtf8;
    }
    if (fixed && HasOtherLineEnds(text, *fixed)) {
      converted = ConvertLineEnds(text, *fixed);
      text = converted;
    }
    insertAtStart(text);
    first = text;
    end = readFrom + static_cast<qint64>(skip);
  }
  endFill(fixed.value_or(FirstLineEnd(first).value_or(TLineEnd::Lf)));
  return Streamed::Done;
}

void TEditorFileCodec::beginFill(size_t size) {
  // Loading is no undo step.
  memo_->SendScintilla(QsciScintillaBase::SCI_SETUNDOCOLLECTION, false);
  memo_->SendScintilla(QsciScintillaBase::SCI_CLEARALL);
  memo_->SendScintilla(QsciScintillaBase::SCI_ALLOCATE, static_cast<unsigned long>(size) + 1);
}

void TEditorFileCodec::insertAtStart(std::string_view utf8) {
  memo_->SendScintilla(QsciScintillaBase::SCI_SETEMPTYSELECTION, 0UL);
  memo_->SendScintilla(QsciScintillaBase::SCI_ADDTEXT, static_cast<unsigned long>(utf8.size()), utf8.data());
}

void TEditorFileCodec::endFill(TLineEnd lineEnd) {
  memo_->SendScintilla(QsciScintillaBase::SCI_SETUNDOCOLLECTION, true);
  memo_->SendScintilla(QsciScintillaBase::SCI_EMPTYUNDOBUFFER);
  memo_->SendScintilla(QsciScintillaBase::SCI_GOTOPOS, 0);
  memo_->setEolMode(eolMode(lineEnd));
  memo_->setModified(false);
}

TEditorFileCodec::Saved TEditorFileCodec::save(const QString& fileName, const TEditorFileChoices& choices) {
  const auto* data =
      reinterpret_cast<const char*>(memo_->SendScintilla(QsciScintillaBase::SCI_GETCHARACTERPOINTER));
  std::string_view text(data, static_cast<size_t>(memo_->SendScintilla(QsciScintillaBase::SCI_GETLENGTH)));
  std::string converted;
  if (const auto fixed = FixedLineEnd(choices.Format); fixed && HasOtherLineEnds(text, *fixed)) {
    converted = ConvertLineEnds(text, *fixed);
    text = converted;
  }
  TTextEncoding encoding =
      encoding_.value_or(ChosenEncoding(choices.Encoding, choices.Charset, LocaleCodeset()));
  std::optional<QByteArray> bytes = encode(text, encoding);
  if (!bytes) {
    if (!askForUtf8(encoding)) return Saved::Cancelled;
    encoding = TTextEncoding{};
    bytes = encode(text, encoding);
  }
  QSaveFile file(fileName);
  if (!file.open(QIODevice::WriteOnly) || file.write(*bytes) != bytes->size() || !file.commit())
    return Saved::Failed;
  encoding_ = encoding;
  memo_->setModified(false);
  return Saved::Yes;
}

bool TEditorFileCodec::askForUtf8(const TTextEncoding& encoding) const {
  QMessageBox question(QMessageBox::Warning, tr("Save"),
                       tr("Some characters of the text cannot be stored in %1.").arg(encodingName(encoding)),
                       QMessageBox::Cancel, memo_);
  question.setObjectName("EncodingQuestion");
  question.setInformativeText(tr("Save the file as UTF-8 instead? Cancel leaves the file as it was."));
  QPushButton* utf8 = question.addButton(tr("Save as UTF-8"), QMessageBox::AcceptRole);
  utf8->setObjectName("btnSaveUtf8");
  question.setDefaultButton(QMessageBox::Cancel);
  question.exec();
  return question.clickedButton() == utf8;
}

}  // namespace lomarin::ui
