#pragma once

#include <QObject>
#include <QString>
#include <optional>

#include "engine/sqleditor/editor_file_format.h"

class QFile;
class QsciScintilla;

namespace lomarin::ui {

// Reads a file into a memo and writes the memo back in the file's encoding and line ends. A memo's
// codec remembers the encoding its file was read or written in, so a save gives back what was read.
class TEditorFileCodec : public QObject {
  Q_OBJECT
 public:
  // The codec of a memo, made on first use; the memo owns it.
  static TEditorFileCodec& of(QsciScintilla* memo);

  // Replaces the memo's text with the file. Bytes the encoding cannot read are read one character
  // each (Latin-1) instead, so they are written back unchanged. False when the file cannot be read.
  bool load(const QString& fileName, const TEditorFileChoices& choices);

  enum class Saved { Yes, Cancelled, Failed };
  // Writes the memo's text to a file beside fileName and renames it over. Text the encoding cannot
  // hold makes it ask whether to write UTF-8 instead; Cancel leaves the file as it was.
  Saved save(const QString& fileName, const TEditorFileChoices& choices);

 private:
  enum class Streamed { Done, NotUtf8, ReadError };

  explicit TEditorFileCodec(QsciScintilla* memo);
  Streamed streamUtf8(QFile& file, qint64 from, std::optional<TLineEnd> fixed);
  void beginFill(size_t size);
  void insertAtStart(std::string_view utf8);
  void endFill(TLineEnd lineEnd);
  bool askForUtf8(const TTextEncoding& encoding) const;

  QsciScintilla* memo_;
  std::optional<TTextEncoding> encoding_;
};

}  // namespace lomarin::ui
