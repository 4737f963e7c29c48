#pragma once

#include <array>
#include <string_view>

namespace lomarin {

// The fixed lists of the connect dialog's choice boxes; the first entry is the default.
inline constexpr std::array<std::string_view, 37> kClientCharsets{
    "default", "big5",    "dec8",   "cp850",   "hp8",     "koi8r",  "latin1",   "latin2",
    "swe7",    "ascii",   "ujis",   "sjis",    "hebrew",  "tis620", "euckr",    "koi8u",
    "gb2312",  "greek",   "cp1250", "gbk",     "latin5",  "armscii8", "utf8",   "ucs2",
    "cp866",   "keybcs2", "macce",  "macroman", "cp852",  "latin7", "cp1251",   "cp1256",
    "cp1257",  "binary",  "geostd8", "cp932",  "eucjpms"};

inline constexpr std::array<std::string_view, 19> kFontCharsets{
    "default", "Western", "Russian", "Hebrew", "Arabic", "Greek", "Turkish", "Baltic",
    "Central Europe", "Vietnamese", "JOHAB", "THAI", "GB2312", "CHINESEBIG5",
    "SHIFTJI  (Japanese shift-JIS characters)", "HANGEUL", "MAC", "OEM", "Symbol"};

inline constexpr std::array<std::string_view, 4> kFontFormats{"Default", "Windows (CR/NL)", "Unix (CR)",
                                                              "Macintosh (NL)"};

inline constexpr std::array<std::string_view, 4> kFontEncodings{"ANSI", "Unicode", "Swapped Unicode", "UTF-8"};

}  // namespace lomarin
