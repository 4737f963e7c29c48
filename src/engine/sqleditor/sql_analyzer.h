#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace lomarin {

enum class TTokenType {
  Unknown,
  Comment,
  Identifier,
  Symbol,
  String,
  IntegerConst,
  FloatConst,
  TableName,
  Alias,
  Function,
  MainKeyWords
};

// The name the editor shows for a token type ("Integer const", "Main KeyWords", ...).
std::string_view TokenTypeName(TTokenType type);

struct TSqlToken {
  TTokenType Type = TTokenType::Unknown;
  size_t Start = 0;  // byte offset in the text
  size_t Length = 0;
};

// Splits SQL into tokens (white space is skipped). Identifiers that name tables after FROM, JOIN,
// UPDATE and INTO become TableName and the word after them Alias; known words become MainKeyWords
// or, before "(", Function.
std::vector<TSqlToken> TokenizeSql(std::string_view text);

// A node of the statement tree. Statement nodes carry the byte range of their statement.
struct TSqlTreeNode {
  std::string Caption;
  int Start = -1;
  int End = -1;
  std::vector<TSqlTreeNode> Children;
};

// One node per statement (captioned by its first word as written) with its "Select", "From",
// "Where", "Group" and "Order" sections; the "From" section lists "database.table", "table" and
// "table = alias" nodes.
std::vector<TSqlTreeNode> BuildStatementTree(std::string_view text);

// Aliases of the tables of the statement that holds byte offset `position`, alias -> table,
// keys in lower case.
std::map<std::string, std::string> AliasesAt(std::string_view text, size_t position);

}  // namespace lomarin
