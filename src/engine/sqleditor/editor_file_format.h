#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace lomarin {

class SettingsStore;

// The three choices that decide how an editor file is read and written: the charset (the code page
// of "ANSI"), the line-end format and the encoding, as the account and the options name them.
struct TEditorFileChoices {
  std::string Charset;
  std::string Format;
  std::string Encoding;
};

// Per value, the connection's choice when it gave one, else the "Editor …" option.
TEditorFileChoices EffectiveFileChoices(const TEditorFileChoices& connection, const SettingsStore& settings);

enum class TLineEnd { CrLf, Lf, Cr };

// The line end a format fixes; none for "Default", which keeps the file's own.
std::optional<TLineEnd> FixedLineEnd(std::string_view format);

struct TTextEncoding {
  enum class Kind { Utf8, Utf16LE, Utf16BE, CodePage };
  Kind kind = Kind::Utf8;
  // The converter name of a code page (windows-1251, Shift_JIS, ISO-8859-1, ...).
  std::string codePage;
  bool bom = false;

  friend bool operator==(const TTextEncoding&, const TTextEncoding&) = default;
};

// The encoding a file that could not be read otherwise is read and written in: every byte is one
// character, so the bytes come back unchanged.
TTextEncoding ByteForByteEncoding();

// The code page of an "ANSI" file under a charset; "default" and unknown names give the locale's
// (localeCodeset as nl_langinfo names it), which is UTF-8 on most systems.
TTextEncoding AnsiEncoding(std::string_view charset, std::string_view localeCodeset);

// The encoding of a new file: "Unicode" UTF-16LE and "Swapped Unicode" UTF-16BE, both with a
// BOM; "UTF-8" without one, since SQL files go to clients and servers that read a BOM as text;
// "ANSI" and unknown names the charset's code page.
TTextEncoding ChosenEncoding(std::string_view encoding, std::string_view charset,
                             std::string_view localeCodeset);

// The encoding a byte-order mark at the start of bytes names, with bom set.
std::optional<TTextEncoding> EncodingOfBom(std::string_view bytes);
// The encoding a file's bytes are read in: its byte-order mark's, else the chosen one (without a
// BOM, as found). A UTF-16 choice holds only for bytes with a zero byte: text without one was not
// written in UTF-16 and is read as "ANSI".
TTextEncoding ReadingEncoding(std::string_view bytes, std::string_view encoding, std::string_view charset,
                              std::string_view localeCodeset);
// The bytes of the encoding's byte-order mark; empty when it has none.
std::string_view BomBytes(const TTextEncoding& encoding);

// The character set the program's locale uses (LC_CTYPE).
std::string LocaleCodeset();

bool IsValidUtf8(std::string_view bytes);

// The first line end of an ASCII-compatible text; none when it has a single line.
std::optional<TLineEnd> FirstLineEnd(std::string_view text);
// Whether some line end of text is not `to`.
bool HasOtherLineEnds(std::string_view text, TLineEnd to);
// Every CR LF, lone CR and lone LF of text made `to`.
std::string ConvertLineEnds(std::string_view text, TLineEnd to);

}  // namespace lomarin
