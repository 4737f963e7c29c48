#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "engine/sqleditor/statement_splitter.h"

namespace lomarin {
namespace {

std::vector<std::string> split(const std::string& script, const std::string& delimiter = ";",
                               size_t chunk = size_t{1} << 20) {
  std::istringstream in(script);
  TStatementSplitter splitter(in, delimiter, chunk);
  std::vector<std::string> out;
  for (std::string s; splitter.next(s);) out.push_back(s);
  return out;
}

struct Case {
  const char* name;
  std::string script;
  std::vector<std::string> statements;
};

const std::vector<Case>& cases() {
  static const std::vector<Case> all = {
      {"plain", "select 1;select 2;", {"select 1", "select 2"}},
      {"last without delimiter", "select 1;\n  select 2  \n", {"select 1", "select 2"}},
      {"empty statements skipped", ";; ;\nselect 1;;\n;", {"select 1"}},
      {"single quotes", "select 'a;b', 'it''s;', 'x\\';y';", {"select 'a;b', 'it''s;', 'x\\';y'"}},
      {"double quotes", "select \"a;\"\"b\", \"c\\\";\";", {"select \"a;\"\"b\", \"c\\\";\""}},
      {"back quotes keep backslashes", "select `a\\`;select `b``;c`;", {"select `a\\`", "select `b``;c`"}},
      {"dash comment needs a blank", "select 1 -- ; no\n;select 2--1;", {"select 1 -- ; no", "select 2--1"}},
      {"dash comment with tab or at end", "select 1 --\t;\n;select 3 --", {"select 1 --\t;", "select 3 --"}},
      {"hash comment", "select 1 # ; x\n;", {"select 1 # ; x"}},
      {"block comment", "select /* ; */ 1; /* only a comment; */", {"select /* ; */ 1"}},
      {"comment-only statements skipped", "-- head\n# more\n;\nselect 1;", {"select 1"}},
      {"code right after an empty statement", ";select 'a';/* c */;select 2;", {"select 'a'", "select 2"}},
      {"comments before a statement stay", "-- head\nselect 1;", {"-- head\nselect 1"}},
      {"version comments are text", "/*!40101 SET a=1 */;/*M!100100 SET b=2 */;", {"/*!40101 SET a=1 */", "/*M!100100 SET b=2 */"}},
      {"delimiter inside version comment ends it", "/*!50003 select 1; */;", {"/*!50003 select 1", "*/"}},
      {"delimiter blocks",
       "DELIMITER $$\nCREATE PROCEDURE p()\nBEGIN\n  SELECT 1;\n  SELECT 2;\nEND$$\ndelimiter ;\nCALL p();",
       {"CREATE PROCEDURE p()\nBEGIN\n  SELECT 1;\n  SELECT 2;\nEND", "CALL p()"}},
      {"delimiter word in mixed case and ;;", "Delimiter ;;\nselect 1;;\nDeLiMiTeR ;\nselect 2;", {"select 1", "select 2"}},
      {"delimiter needs an argument", "delimiter\n;", {"delimiter"}},
      {"delimiter inside a statement is text", "select 1\ndelimiter $$\n;", {"select 1\ndelimiter $$"}},
      {"line breaks stay as written", "select 1,\r\n2;\nselect\n3\r\n,4;", {"select 1,\r\n2", "select\n3\r\n,4"}},
      {"CRLF delimiter lines", "DELIMITER $$\r\nselect 1$$\r\nDELIMITER ;\r\nselect 2;\r\n", {"select 1", "select 2"}},
      {"line breaks inside quotes are data",
       "select 'a\nb\r\nc', \"d\ne\", `f\ng`;",
       {"select 'a\nb\r\nc', \"d\ne\", `f\ng`"}},
      {"line breaks in comments and routine bodies",
       "DELIMITER $$\r\nCREATE PROCEDURE p()\nBEGIN -- x\n  /* a\r\n b */ SELECT 'q\\\nr';\r\nEND$$\r\n",
       {"CREATE PROCEDURE p()\nBEGIN -- x\n  /* a\r\n b */ SELECT 'q\\\nr';\r\nEND"}},
      {"open quote at end", "select 1; select 'abc;\n", {"select 1", "select 'abc;"}},
      {"open comment at end", "select 1; /* never closed;", {"select 1"}},
      {"open comment after code", "select 2 /* never closed;", {"select 2 /* never closed;"}},
      {"byte order mark skipped", "\xEF\xBB\xBFselect 1;", {"select 1"}},
      {"client commands are plain text", "\\! ls;\nsource x.sql;", {"\\! ls", "source x.sql"}},
      {"multi-character delimiter split by chunks", "DELIMITER //\nselect '//' //select 2//", {"select '//'", "select 2"}},
  };
  return all;
}

TEST(StatementSplitter, LexicalRules) {
  for (const Case& c : cases()) {
    EXPECT_EQ(split(c.script), c.statements) << c.name;
    // The smallest chunks put every token across a buffer boundary.
    EXPECT_EQ(split(c.script, ";", 1), c.statements) << c.name << " (tiny chunks)";
  }
}

TEST(StatementSplitter, StartsWithTheGivenDelimiterAndReportsPosition) {
  EXPECT_EQ(split("select 1; select 2$$", "$$"), std::vector<std::string>{"select 1; select 2"});
  std::istringstream in("select 1;\nselect 22;\n");
  TStatementSplitter splitter(in);
  std::string s;
  ASSERT_TRUE(splitter.next(s));
  EXPECT_EQ(splitter.position(), 9u);
  ASSERT_TRUE(splitter.next(s));
  EXPECT_EQ(splitter.position(), 20u);
  EXPECT_FALSE(splitter.next(s));
  EXPECT_FALSE(splitter.next(s));
}

TEST(StatementSplitter, LinesWhereStatementsBegin) {
  std::istringstream in("select 1;\n\n-- note\nselect\n'a\nb';\r\nDELIMITER $$\r\n/* c\n */ select 3$$ select 4$$");
  TStatementSplitter splitter(in, ";", 1);
  std::vector<uint64_t> lines;
  for (std::string s; splitter.next(s);) lines.push_back(splitter.statementLine());
  EXPECT_EQ(lines, (std::vector<uint64_t>{1, 4, 9, 9}));
}

TEST(StatementSplitter, StreamsLargeStatementsAcrossChunks) {
  std::string big = "insert into t values ";
  for (int i = 0; i < 20000; ++i) big += (i ? ",(" : "(") + std::to_string(i) + ",'a;b''c\\'d')";
  const auto out = split(big + ";\n" + big + ";", ";", 4096);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[0], big);
  EXPECT_EQ(out[1], big);
}

}  // namespace
}  // namespace lomarin
