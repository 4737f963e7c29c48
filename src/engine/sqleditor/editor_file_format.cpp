#include "engine/sqleditor/editor_file_format.h"

#include <langinfo.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"

namespace lomarin {

namespace {

bool sameText(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return lower(x) == lower(y);
  });
}

bool startsWithText(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && sameText(text.substr(0, prefix.size()), prefix);
}

TTextEncoding codePage(std::string name) { return {TTextEncoding::Kind::CodePage, std::move(name), false}; }

// The account's charset names, and the names older options dialogs stored, with their code pages.
constexpr std::array<std::pair<std::string_view, std::string_view>, 21> kCharsetCodePages{{
    {"Western", "windows-1252"},
    {"ANSI", "windows-1252"},
    {"Symbol", "windows-1252"},
    {"Russian", "windows-1251"},
    {"Cyrillic", "windows-1251"},
    {"Greek", "windows-1253"},
    {"Turkish", "windows-1254"},
    {"Baltic", "windows-1257"},
    {"Central Europe", "windows-1250"},
    {"Hebrew", "windows-1255"},
    {"Arabic", "windows-1256"},
    {"Vietnamese", "windows-1258"},
    {"THAI", "windows-874"},
    {"GB2312", "GBK"},
    {"Chinese", "GBK"},
    {"CHINESEBIG5", "Big5"},
    // Windows' Korean code page: EUC-KR and the syllables it lacks.
    {"HANGEUL", "windows-949"},
    {"JOHAB", "JOHAB"},
    {"MAC", "macintosh"},
    {"OEM", "IBM437"},
    {"SHIFTJI", "Shift_JIS"},
}};

constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LEBom = "\xFF\xFE";
constexpr std::string_view kUtf16BEBom = "\xFE\xFF";

}  // namespace

TEditorFileChoices EffectiveFileChoices(const TEditorFileChoices& connection, const SettingsStore& settings) {
  const auto pick = [&](const std::string& chosen, const StringOption& option) {
    return chosen.empty() ? settings.read(option) : chosen;
  };
  return {pick(connection.Charset, opt::EditorCharset), pick(connection.Format, opt::EditorFormat),
          pick(connection.Encoding, opt::EditorEncoding)};
}

std::optional<TLineEnd> FixedLineEnd(std::string_view format) {
  // The account's labels name CR and NL the wrong way round; what counts is the platform.
  if (startsWithText(format, "Windows")) return TLineEnd::CrLf;
  if (startsWithText(format, "Unix")) return TLineEnd::Lf;
  if (startsWithText(format, "Mac")) return TLineEnd::Cr;
  return std::nullopt;
}

TTextEncoding ByteForByteEncoding() { return codePage("ISO-8859-1"); }

TTextEncoding AnsiEncoding(std::string_view charset, std::string_view localeCodeset) {
  for (const auto& [name, page] : kCharsetCodePages) {
    const bool matches = name == "SHIFTJI" ? startsWithText(charset, name) : sameText(charset, name);
    if (matches) return codePage(std::string(page));
  }
  // The C locale says ASCII; files are UTF-8 there as everywhere else today.
  if (localeCodeset.empty() || sameText(localeCodeset, "UTF-8") || sameText(localeCodeset, "utf8") ||
      sameText(localeCodeset, "ANSI_X3.4-1968") || sameText(localeCodeset, "ASCII") ||
      sameText(localeCodeset, "US-ASCII"))
    return {};
  return codePage(std::string(localeCodeset));
}

TTextEncoding ChosenEncoding(std::string_view encoding, std::string_view charset,
                             std::string_view localeCodeset) {
  using Kind = TTextEncoding::Kind;
  // "UTF-16" is what older options dialogs stored for "Unicode".
  if (sameText(encoding, "Unicode") || sameText(encoding, "UTF-16")) return {Kind::Utf16LE, {}, true};
  if (sameText(encoding, "Swapped Unicode")) return {Kind::Utf16BE, {}, true};
  if (sameText(encoding, "UTF-8")) return {};
  return AnsiEncoding(charset, localeCodeset);
}

std::optional<TTextEncoding> EncodingOfBom(std::string_view bytes) {
  using Kind = TTextEncoding::Kind;
  if (bytes.starts_with(kUtf8Bom)) return TTextEncoding{Kind::Utf8, {}, true};
  if (bytes.starts_with(kUtf16LEBom)) return TTextEncoding{Kind::Utf16LE, {}, true};
  if (bytes.starts_with(kUtf16BEBom)) return TTextEncoding{Kind::Utf16BE, {}, true};
  return std::nullopt;
}

TTextEncoding ReadingEncoding(std::string_view bytes, std::string_view encoding, std::string_view charset,
                              std::string_view localeCodeset) {
  if (auto marked = EncodingOfBom(bytes)) return *marked;
  TTextEncoding chosen = ChosenEncoding(encoding, charset, localeCodeset);
  if (chosen.kind == TTextEncoding::Kind::Utf16LE || chosen.kind == TTextEncoding::Kind::Utf16BE) {
    if (bytes.find('\0') == std::string_view::npos) return AnsiEncoding(charset, localeCodeset);
    chosen.bom = false;
  }
  return chosen;
}

std::string_view BomBytes(const TTextEncoding& encoding) {
  if (!encoding.bom) return {};
  switch (encoding.kind) {
    case TTextEncoding::Kind::Utf8:
      return kUtf8Bom;
    case TTextEncoding::Kind::Utf16LE:
      return kUtf16LEBom;
    case TTextEncoding::Kind::Utf16BE:
      return kUtf16BEBom;
    case TTextEncoding::Kind::CodePage:
      return {};
  }
  return {};
}

std::string LocaleCodeset() { return nl_langinfo(CODESET); }

bool IsValidUtf8(std::string_view bytes) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto* end = p + bytes.size();
  while (p < end) {
    // Scripts are mostly ASCII: pass it eight bytes at a time.
    while (end - p >= 8) {
      std::uint64_t block;
      std::memcpy(&block, p, sizeof block);
      if (block & 0x8080808080808080ULL) break;
      p += 8;
    }
    if (p == end) break;
    const unsigned char lead = *p;
    if (lead < 0x80) {
      ++p;
      continue;
    }
    int trail = 0;
    unsigned char low = 0x80, high = 0xBF;  // range of the first trail byte
    if (lead >= 0xC2 && lead <= 0xDF) {
      trail = 1;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      trail = 2;
      if (lead == 0xE0) low = 0xA0;   // no overlong forms
      if (lead == 0xED) high = 0x9F;  // no surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      trail = 3;
      if (lead == 0xF0) low = 0x90;
      if (lead == 0xF4) high = 0x8F;  // nothing above U+10FFFF
    } else {
      return false;
    }
    if (end - p <= trail) return false;
    if (p[1] < low || p[1] > high) return false;
    for (int i = 2; i <= trail; ++i)
      if ((p[i] & 0xC0) != 0x80) return false;
    p += trail + 1;
  }
  return true;
}

std::optional<TLineEnd> FirstLineEnd(std::string_view text) {
  const size_t at = text.find_first_of("\r\n");
  if (at == std::string_view::npos) return std::nullopt;
  if (text[at] == '\n') return TLineEnd::Lf;
  return at + 1 < text.size() && text[at + 1] == '\n' ? TLineEnd::CrLf : TLineEnd::Cr;
}

bool HasOtherLineEnds(std::string_view text, TLineEnd to) {
  if (to == TLineEnd::Lf) return text.find('\r') != std::string_view::npos;
  if (to == TLineEnd::Cr) return text.find('\n') != std::string_view::npos;
  size_t feeds = 0;
  for (size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1), ++feeds)
    if (at == 0 || text[at - 1] != '\r') return true;
  size_t returns = 0;
  for (size_t at = text.find('\r'); at != std::string_view::npos; at = text.find('\r', at + 1)) ++returns;
  return returns != feeds;
}

std::string ConvertLineEnds(std::string_view text, TLineEnd to) {
  const std::string_view end = to == TLineEnd::CrLf ? "\r\n" : to == TLineEnd::Lf ? "\n" : "\r";
  std::string out;
  out.reserve(text.size() + (to == TLineEnd::CrLf ? text.size() / 16 : 0));
  size_t from = 0;
  for (size_t at = text.find_first_of("\r\n"); at != std::string_view::npos;
       at = text.find_first_of("\r\n", from)) {
    out.append(text.substr(from, at - from)).append(end);
    from = at + (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n' ? 2 : 1);
  }
  out.append(text.substr(from));
  return out;
}

}  // namespace lomarin
