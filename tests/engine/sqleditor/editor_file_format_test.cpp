#include "engine/sqleditor/editor_file_format.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/connect/accounts_choices.h"

namespace lomarin {
namespace {

using Kind = TTextEncoding::Kind;

std::string pageOf(std::string_view charset) { return AnsiEncoding(charset, "UTF-8").codePage; }

TEST(EditorFileFormat, EveryAccountCharsetHasACodePage) {
  for (std::string_view charset : kFontCharsets) {
    if (charset == "default") continue;
    const TTextEncoding encoding = AnsiEncoding(charset, "UTF-8");
    EXPECT_EQ(encoding.kind, Kind::CodePage) << charset;
    EXPECT_FALSE(encoding.bom) << charset;
  }
  EXPECT_EQ(pageOf("SHIFTJI  (Japanese shift-JIS characters)"), "Shift_JIS");
  EXPECT_EQ(pageOf("OEM"), "IBM437");
  // Names an older options dialog stored, in any case.
  EXPECT_EQ(pageOf("Cyrillic"), "windows-1251");
  EXPECT_EQ(pageOf("Chinese"), "GBK");
  EXPECT_EQ(pageOf("ANSI"), "windows-1252");
  EXPECT_EQ(pageOf("russian"), "windows-1251");
}

TEST(EditorFileFormat, DefaultCharsetFollowsTheLocale) {
  for (std::string_view charset : {"default", "Default", "no such charset"}) {
    EXPECT_EQ(AnsiEncoding(charset, "UTF-8"), TTextEncoding{}) << charset;
    EXPECT_EQ(AnsiEncoding(charset, "ANSI_X3.4-1968"), TTextEncoding{}) << "the C locale reads UTF-8";
    EXPECT_EQ(AnsiEncoding(charset, "KOI8-R"), (TTextEncoding{Kind::CodePage, "KOI8-R", false}));
  }
  EXPECT_FALSE(LocaleCodeset().empty());
}

TEST(EditorFileFormat, EncodingNames) {
  EXPECT_EQ(ChosenEncoding("Unicode", "Russian", "UTF-8"), (TTextEncoding{Kind::Utf16LE, {}, true}));
  EXPECT_EQ(ChosenEncoding("UTF-16", "default", "UTF-8"), (TTextEncoding{Kind::Utf16LE, {}, true}));
  EXPECT_EQ(ChosenEncoding("Swapped Unicode", "default", "UTF-8"), (TTextEncoding{Kind::Utf16BE, {}, true}));
  EXPECT_EQ(ChosenEncoding("UTF-8", "Russian", "KOI8-R"), TTextEncoding{}) << "no BOM on new UTF-8 files";
  EXPECT_EQ(ChosenEncoding("ANSI", "Russian", "UTF-8").codePage, "windows-1251");
  EXPECT_EQ(ChosenEncoding("", "Greek", "UTF-8").codePage, "windows-1253");
  // The account's four choices are four different encodings.
  std::vector<TTextEncoding> seen;
  for (auto encoding : kFontEncodings) seen.push_back(ChosenEncoding(encoding, "Russian", "UTF-8"));
  for (size_t i = 0; i < seen.size(); ++i)
    for (size_t j = i + 1; j < seen.size(); ++j) EXPECT_NE(seen[i], seen[j]) << i << " " << j;
}

TEST(EditorFileFormat, ByteOrderMarkWinsOverTheChoice) {
  EXPECT_EQ(ReadingEncoding("\xEF\xBB\xBFselect", "ANSI", "Russian", "UTF-8"),
            (TTextEncoding{Kind::Utf8, {}, true}));
  EXPECT_EQ(ReadingEncoding(std::string_view("\xFF\xFEs\0", 4), "UTF-8", "default", "UTF-8"),
            (TTextEncoding{Kind::Utf16LE, {}, true}));
  EXPECT_EQ(ReadingEncoding(std::string_view("\xFE\xFF\0s", 4), "ANSI", "default", "UTF-8"),
            (TTextEncoding{Kind::Utf16BE, {}, true}));
  EXPECT_EQ(BomBytes({Kind::Utf16BE, {}, true}), "\xFE\xFF");
  EXPECT_EQ(BomBytes({Kind::Utf16BE, {}, false}), "");
  EXPECT_EQ(BomBytes({Kind::Utf8, {}, true}), "\xEF\xBB\xBF");

  // Without a mark the choice holds, and the file keeps having none.
  EXPECT_EQ(ReadingEncoding(std::string_view("s\0", 2), "Unicode", "default", "UTF-8"),
            (TTextEncoding{Kind::Utf16LE, {}, false}));
  EXPECT_EQ(ReadingEncoding("select 1", "ANSI", "Russian", "UTF-8").codePage, "windows-1251");
  // Text without a zero byte was never UTF-16: it is read as ANSI.
  EXPECT_EQ(ReadingEncoding("select 1", "Swapped Unicode", "Greek", "UTF-8").codePage, "windows-1253");
  EXPECT_EQ(ReadingEncoding("", "Unicode", "default", "UTF-8"), TTextEncoding{});
}

TEST(EditorFileFormat, FormatsMeanThePlatformsLineEnds) {
  const std::vector<std::pair<std::string_view, std::optional<TLineEnd>>> formats{
      {"Windows (CR/NL)", TLineEnd::CrLf}, {"Unix (CR)", TLineEnd::Lf}, {"Macintosh (NL)", TLineEnd::Cr},
      {"Windows", TLineEnd::CrLf},         {"Unix", TLineEnd::Lf},      {"Mac", TLineEnd::Cr},
      {"Default", std::nullopt},           {"", std::nullopt}};
  for (const auto& [format, lineEnd] : formats) EXPECT_EQ(FixedLineEnd(format), lineEnd) << format;
}

TEST(EditorFileFormat, Utf8Validation) {
  EXPECT_TRUE(IsValidUtf8(""));
  EXPECT_TRUE(IsValidUtf8("select 'Привет', '€', '😀' from dual; -- long enough for whole blocks"));
  EXPECT_TRUE(IsValidUtf8("\xF4\x8F\xBF\xBF"));  // U+10FFFF
  for (std::string_view bad : {"caf\xE9", "abcdefgh\xC3", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80",
                               "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\x80", "abc\xE2\x82"}) {
    EXPECT_FALSE(IsValidUtf8(bad)) << bad;
    // The same fault after a run of ASCII that is passed eight bytes at a time.
    EXPECT_FALSE(IsValidUtf8(std::string(21, 'x') + std::string(bad))) << bad;
  }
}

TEST(EditorFileFormat, LineEnds) {
  EXPECT_EQ(FirstLineEnd("a\r\nb\nc"), TLineEnd::CrLf);
  EXPECT_EQ(FirstLineEnd("a\nb\r\n"), TLineEnd::Lf);
  EXPECT_EQ(FirstLineEnd("a\rb\n"), TLineEnd::Cr);
  EXPECT_EQ(FirstLineEnd("a\r"), TLineEnd::Cr);
  EXPECT_EQ(FirstLineEnd("one line"), std::nullopt);

  const std::string_view mixed = "a\r\nb\nc\rd\r\n\r\n\re";
  EXPECT_EQ(ConvertLineEnds(mixed, TLineEnd::Lf), "a\nb\nc\nd\n\n\ne");
  EXPECT_EQ(ConvertLineEnds(mixed, TLineEnd::CrLf), "a\r\nb\r\nc\r\nd\r\n\r\n\r\ne");
  EXPECT_EQ(ConvertLineEnds(mixed, TLineEnd::Cr), "a\rb\rc\rd\r\r\re");
  EXPECT_EQ(ConvertLineEnds("end\r", TLineEnd::CrLf), "end\r\n");
  EXPECT_EQ(ConvertLineEnds("", TLineEnd::CrLf), "");

  for (TLineEnd to : {TLineEnd::CrLf, TLineEnd::Lf, TLineEnd::Cr}) {
    EXPECT_TRUE(HasOtherLineEnds(mixed, to));
    EXPECT_FALSE(HasOtherLineEnds(ConvertLineEnds(mixed, to), to));
    EXPECT_FALSE(HasOtherLineEnds("no line end", to));
  }
  EXPECT_TRUE(HasOtherLineEnds("a\r\nb\r", TLineEnd::CrLf));
  EXPECT_TRUE(HasOtherLineEnds("\na", TLineEnd::CrLf));
}

TEST(EditorFileFormat, ConnectionChoicesWinValueByValue) {
  const auto folder = std::filesystem::temp_directory_path() / "lomarin_editor_file_choices";
  std::filesystem::remove_all(folder);
  {
    SettingsStore settings(folder / "settings.db");
    TEditorFileChoices none = EffectiveFileChoices({}, settings);
    EXPECT_EQ(none.Charset, "Default");
    EXPECT_EQ(none.Format, "Default");
    EXPECT_EQ(none.Encoding, "ANSI");

    settings.write(opt::EditorEncoding, "UTF-8");
    settings.write(opt::EditorFormat, "Unix (CR)");
    const TEditorFileChoices mixed = EffectiveFileChoices({"Russian", "", ""}, settings);
    EXPECT_EQ(mixed.Charset, "Russian");
    EXPECT_EQ(mixed.Format, "Unix (CR)");
    EXPECT_EQ(mixed.Encoding, "UTF-8");
  }
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace lomarin
