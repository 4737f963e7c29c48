#include "engine/sqleditor/sql_analyzer.h"

#include <gtest/gtest.h>

#include "engine/sqleditor/sql_html.h"

namespace lomarin {
namespace {

// "type:text" of each token, for compact expectations.
std::vector<std::string> tokens(std::string_view text) {
  std::vector<std::string> out;
  for (const TSqlToken& t : TokenizeSql(text))
    out.push_back(std::string(TokenTypeName(t.Type)) + ":" + std::string(text.substr(t.Start, t.Length)));
  return out;
}

TEST(SqlAnalyzer, TokenTypes) {
  EXPECT_EQ(
      tokens("select count(*), 'it''s', \"q\" from db1.orders o where a>=1.5e3 -- tail\n/* c */ 7 1abc @"),
      (std::vector<std::string>{"Main KeyWords:select",
                                "Function:count",
                                "Symbol:(",
                                "Unknown:*",
                                "Symbol:),",
                                "String:'it'",
                                "String:'s'",
                                "Symbol:,",
                                "String:\"q\"",
                                "Main KeyWords:from",
                                "Identifier:db1",
                                "Symbol:.",
                                "Table name:orders",
                                "Alias:o",
                                "Main KeyWords:where",
                                "Identifier:a",
                                "Symbol:>=",
                                "Float const:1.5e3",
                                "Comment:-- tail",
                                "Comment:/* c */",
                                "Integer const:7",
                                "Identifier:1abc",
                                "Unknown:@"}));
  // Unterminated quotes end at the line end, comments at the end of the text.
  EXPECT_EQ(tokens("'open\nx /* never"),
            (std::vector<std::string>{"String:'open", "Identifier:x", "Comment:/* never"}));
  // A word that is a function name is a plain name when no bracket follows.
  EXPECT_EQ(tokens("select count from t"),
            (std::vector<std::string>{"Main KeyWords:select", "Identifier:count", "Main KeyWords:from",
                                      "Table name:t"}));
}

TEST(SqlAnalyzer, StatementTreeSectionsTablesAndAliases) {
  const std::string text =
      "SELECT o.id, c.name FROM lomarin_demo.orders o JOIN customers AS c ON c.id = o.customer_id "
      "WHERE o.id > (select max(id) from t2) ORDER BY o.id;\n\n"
      "delete from products where id = 1;";
  const std::vector<TSqlTreeNode> tree = BuildStatementTree(text);
  ASSERT_EQ(tree.size(), 2u);
  EXPECT_EQ(tree[0].Caption, "SELECT");
  EXPECT_EQ(tree[0].Start, 0);
  EXPECT_EQ(text.substr(static_cast<size_t>(tree[1].Start), static_cast<size_t>(tree[1].End - tree[1].Start)),
            "delete from products where id = 1");
  std::vector<std::string> sections;
  for (const TSqlTreeNode& section : tree[0].Children) sections.push_back(section.Caption);
  EXPECT_EQ(sections, (std::vector<std::string>{"Select", "From", "From", "Where", "Order"}));
  std::vector<std::string> from;
  for (const TSqlTreeNode& n : tree[0].Children[1].Children) from.push_back(n.Caption);
  for (const TSqlTreeNode& n : tree[0].Children[2].Children) from.push_back(n.Caption);
  EXPECT_EQ(from, (std::vector<std::string>{"lomarin_demo.orders", "lomarin_demo.orders = o", "customers",
                                            "customers = c"}));
  // Other sections list their items as written, brackets (and sub-queries) kept whole.
  auto items = [&](size_t section) {
    std::vector<std::string> out;
    for (const TSqlTreeNode& n : tree[0].Children[section].Children) out.push_back(n.Caption);
    return out;
  };
  EXPECT_EQ(items(0), (std::vector<std::string>{"o.id", "c.name"}));
  EXPECT_EQ(items(3), (std::vector<std::string>{"o.id > (select max(id) from t2)"}));
  EXPECT_EQ(items(4), (std::vector<std::string>{"o.id"}));
  const std::vector<TSqlTreeNode> grouped =
      BuildStatementTree("select a,\n  sum(b, c) from t group by a limit 5");
  ASSERT_EQ(grouped[0].Children.size(), 3u);
  EXPECT_EQ(grouped[0].Children[0].Children[1].Caption, "sum(b, c)");
  EXPECT_EQ(grouped[0].Children[2].Children.size(), 1u);
  EXPECT_EQ(tree[1].Caption, "delete");
  EXPECT_TRUE(BuildStatementTree(" -- only a comment\n ; ;").empty());
}

TEST(SqlAnalyzer, AliasesOfTheStatementAtAPosition) {
  const std::string text = "select * from orders t;\nselect t. from customers t, products p";
  EXPECT_EQ(AliasesAt(text, 5), (std::map<std::string, std::string>{{"t", "orders"}}));
  // The statement being typed reaches up to the end of the text.
  EXPECT_EQ(AliasesAt(text, text.size()),
            (std::map<std::string, std::string>{{"t", "customers"}, {"p", "products"}}));
  // Keywords after a table are no aliases; AS is skipped.
  EXPECT_EQ(AliasesAt("select 1 from a where x=1", 0), (std::map<std::string, std::string>{}));
  EXPECT_EQ(AliasesAt("update orders as O set x=1", 0),
            (std::map<std::string, std::string>{{"o", "orders"}}));
}

TEST(SqlAnalyzer, HtmlExportEscapesAndColours) {
  const std::string html = SqlToHtml("select '<b>' & 1", "a&b.html");
  EXPECT_NE(html.find("<title>a&amp;b.html</title>"), std::string::npos);
  EXPECT_NE(html.find("<pre><span class=\"k\">select</span> <span class=\"s\">'&lt;b&gt;'</span> &amp; "
                      "<span class=\"n\">1</span></pre>"),
            std::string::npos);
}

}  // namespace
}  // namespace lomarin
