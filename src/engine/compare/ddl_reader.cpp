#include "engine/compare/ddl_reader.h"

#include <algorithm>
#include <cctype>

#include "engine/compare/ddl_normalise.h"
#include "engine/compare/sql_tokens.h"

namespace lomarin {

namespace {

std::string upper(std::string_view text) {
  std::string out(text);
  for (auto& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

std::string trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  const size_t last = text.find_last_not_of(" \t\r\n");
  return std::string(text.substr(first, last - first + 1));
}

// The tokens of one statement and a read position over them.
class Cursor {
 public:
  explicit Cursor(std::string_view statement)
      : text_(UnwrapVersionComments(statement)), tokens_(Tokenize(text_)) {}
  Cursor(const Cursor&) = delete;
  Cursor& operator=(const Cursor&) = delete;

  bool atEnd() const { return pos_ >= tokens_.size(); }
  const TSqlToken& peek(size_t ahead = 0) const {
    static const TSqlToken none{TSqlToken::Symbol, {}, 0, 0};
    return pos_ + ahead < tokens_.size() ? tokens_[pos_ + ahead] : none;
  }
  size_t pos() const { return pos_; }
  void skip(size_t count = 1) { pos_ += count; }
  bool accept(std::string_view keyword) {
    if (!peek().is(keyword)) return false;
    ++pos_;
    return true;
  }
  bool acceptAll(std::initializer_list<std::string_view> keywords) {
    size_t i = 0;
    for (auto keyword : keywords)
      if (!peek(i++).is(keyword)) return false;
    pos_ += keywords.size();
    return true;
  }
  bool acceptSymbol(char c) {
    if (!peek().isSymbol(c)) return false;
    ++pos_;
    return true;
  }
  std::string name() {
    if (atEnd()) return {};
    return tokens_[pos_++].value();
  }
  // "db.name" gives name.
  std::string qualifiedName() {
    std::string last = name();
    while (peek().isSymbol('.')) {
      ++pos_;
      last = name();
    }
    return last;
  }
  // At "(": the token range inside the balanced parentheses; the cursor moves past ")".
  std::pair<size_t, size_t> group() {
    const size_t from = ++pos_;
    int depth = 1;
    for (; pos_ < tokens_.size(); ++pos_) {
      if (tokens_[pos_].isSymbol('(')) ++depth;
      if (tokens_[pos_].isSymbol(')') && --depth == 0) break;
    }
    const size_t to = pos_;
    if (pos_ < tokens_.size()) ++pos_;
    return {from, to};
  }
  std::string normalised(size_t from, size_t to, std::string_view database = {}) const {
    return NormaliseTokens(tokens_, from, to, database);
  }
  std::string groupText() {
    auto [from, to] = group();
    return normalised(from, to);
  }
  // The text as written from token `from` up to (not including) token `to`.
  std::string_view raw(size_t from, size_t to) const {
    if (from >= tokens_.size()) return {};
    const size_t end = to < tokens_.size() ? tokens_[to].begin : text_.size();
    return std::string_view(text_).substr(tokens_[from].begin, end - tokens_[from].begin);
  }
  // Moves to the "," or ")" that ends the current definition of a table.
  void skipDefinition() {
    while (!atEnd() && !peek().isSymbol(',') && !peek().isSymbol(')')) {
      if (peek().isSymbol('('))
        group();
      else
        ++pos_;
    }
  }
  void skipDefiner() {
    acceptSymbol('=');
    ++pos_;
    if (peek().is("@") || (peek().kind == TSqlToken::Word && peek().text.starts_with('@'))) {
      if (peek().text == "@") ++pos_;
      ++pos_;
    }
    if (peek().isSymbol('(')) group();
  }
  size_t size() const { return tokens_.size(); }

 private:
  std::string text_;
  std::vector<TSqlToken> tokens_;
  size_t pos_ = 0;
};

bool isAny(const TSqlToken& token, std::initializer_list<std::string_view> words) {
  for (auto word : words)
    if (token.is(word)) return true;
  return false;
}

std::string uniqueIndexName(const TDBTable& table, const std::string& base) {
  std::string name = base;
  for (int n = 2; FindByName(table.Indexes, name, false); ++n) name = base + "_" + std::to_string(n);
  return name;
}

// A default or ON UPDATE value: a literal, a function call, or such terms joined by operators.
std::string readValue(Cursor& c) {
  const size_t from = c.pos();
  auto term = [&c](auto& self) -> void {
    if (c.peek().isSymbol('(')) {
      c.group();
    } else if (c.peek().isSymbol('-') || c.peek().isSymbol('+')) {
      c.skip();
      self(self);
    } else if (c.peek().kind == TSqlToken::Word && c.peek(1).isSymbol('(')) {
      c.skip();
      c.group();
    } else if (c.peek().kind == TSqlToken::Word && c.peek(1).kind == TSqlToken::String) {
      c.skip(2);  // an introducer: _utf8mb4'x', b'01', x'ff'
    } else {
      c.skip();
    }
  };
  term(term);
  while (c.peek().kind == TSqlToken::Symbol &&
         std::string_view("+-*/|&%").find(c.peek().text[0]) != std::string_view::npos &&
         !c.peek().isSymbol(',')) {
    c.skip();
    term(term);
  }
  return c.normalised(from, c.pos());
}

void readIndexColumns(Cursor& c, TDBIndex& index) {
  if (!c.peek().isSymbol('(')) return;
  c.skip();
  while (!c.atEnd() && !c.acceptSymbol(')')) {
    TDBIndexColumn column;
    if (c.peek().isSymbol('('))
      column.Name = "(" + c.groupText() + ")";
    else
      column.Name = c.name();
    if (c.peek().isSymbol('(')) column.Length = c.groupText();
    if (c.accept("DESC"))
      column.Descending = true;
    else
      c.accept("ASC");
    index.Columns.push_back(std::move(column));
    c.acceptSymbol(',');
  }
}

void readIndexOptions(Cursor& c, TDBIndex& index) {
  while (!c.atEnd() && !c.peek().isSymbol(',') && !c.peek().isSymbol(')')) {
    if (c.accept("USING")) {
      index.Using = upper(c.name());
    } else if (c.accept("COMMENT")) {
      index.Comment = c.normalised(c.pos(), c.pos() + 1);
      c.skip();
    } else if (c.peek().isSymbol('(')) {
      c.group();
    } else {
      c.skip();
    }
  }
  if (index.Using == "BTREE") index.Using.clear();
}

// PRIMARY KEY, UNIQUE, KEY/INDEX, FULLTEXT, SPATIAL after their leading words.
void readIndex(Cursor& c, TDBTable& table, TIndexKind kind, std::string constraintName) {
  TDBIndex index;
  index.Kind = kind;
  if (kind != TIndexKind::Primary && !c.peek().isSymbol('(') && !c.peek().is("USING"))
    constraintName = c.name();
  if (c.accept("USING")) index.Using = upper(c.name());
  readIndexColumns(c, index);
  readIndexOptions(c, index);
  if (kind == TIndexKind::Primary)
    index.Name = "PRIMARY";
  else
    index.Name = constraintName.empty() && !index.Columns.empty()
                     ? uniqueIndexName(table, index.Columns[0].Name)
                     : constraintName;
  table.Indexes.push_back(std::move(index));
}

std::vector<std::string> nameList(Cursor& c) {
  std::vector<std::string> names;
  if (!c.acceptSymbol('(')) return names;
  while (!c.atEnd() && !c.acceptSymbol(')')) {
    names.push_back(c.name());
    c.acceptSymbol(',');
  }
  return names;
}

std::string readAction(Cursor& c) {
  if (c.acceptAll({"SET", "NULL"})) return "SET NULL";
  if (c.acceptAll({"SET", "DEFAULT"})) return "SET DEFAULT";
  if (c.acceptAll({"NO", "ACTION"})) return {};
  return NormaliseForeignKeyAction(c.name());
}

void readForeignKey(Cursor& c, TDBTable& table, std::string constraintName) {
  TDBForeignKey key;
  if (!c.peek().isSymbol('(')) {
    std::string indexName = c.name();
    if (constraintName.empty()) constraintName = indexName;
  }
  key.Name = constraintName;
  key.Columns = nameList(c);
  if (c.accept("REFERENCES")) {
    key.RefTable = c.qualifiedName();
    key.RefColumns = nameList(c);
  }
  while (!c.atEnd() && !c.peek().isSymbol(',') && !c.peek().isSymbol(')')) {
    if (c.acceptAll({"ON", "DELETE"}))
      key.OnDelete = readAction(c);
    else if (c.acceptAll({"ON", "UPDATE"}))
      key.OnUpdate = readAction(c);
    else
      c.skip();
  }
  table.ForeignKeys.push_back(std::move(key));
}

void readColumn(Cursor& c, TDBTable& table) {
  TDBColumn column;
  column.Name = c.name();
  std::string typeName = c.name();
  if (c.peek().is("PRECISION") || c.peek().is("VARYING")) typeName += " " + c.name();
  if (typeName == "character varying" || typeName == "CHARACTER VARYING") typeName = "varchar";
  std::string args;
  if (c.peek().isSymbol('(')) {
    auto [from, to] = c.group();
    args = std::string(c.raw(from, to));
  }
  while (!c.atEnd() && !c.peek().isSymbol(',') && !c.peek().isSymbol(')')) {
    if (c.accept("UNSIGNED")) {
      column.Unsigned = true;
    } else if (c.accept("ZEROFILL")) {
      column.Zerofill = true;
    } else if (c.accept("BINARY")) {
      column.Binary = true;
    } else if (c.acceptAll({"CHARACTER", "SET"}) || c.accept("CHARSET")) {
      column.Charset = c.name();
    } else if (c.accept("COLLATE")) {
      column.Collation = c.name();
    } else if (c.acceptAll({"NOT", "NULL"})) {
      column.NotNull = true;
    } else if (c.accept("NULL")) {
      column.NotNull = false;
    } else if (c.accept("DEFAULT")) {
      column.Default = readValue(c);
    } else if (c.acceptAll({"ON", "UPDATE"})) {
      column.OnUpdate = NormaliseDefault(readValue(c), "").value_or("");
    } else if (c.accept("AUTO_INCREMENT")) {
      column.AutoIncrement = true;
    } else if (c.accept("INVISIBLE")) {
      column.Invisible = true;
    } else if (c.accept("COMMENT")) {
      column.Comment = c.normalised(c.pos(), c.pos() + 1);
      c.skip();
    } else if (c.acceptAll({"PRIMARY", "KEY"}) || c.accept("KEY")) {
      table.Indexes.push_back({"PRIMARY", TIndexKind::Primary, {{column.Name, {}, false}}, {}, {}});
    } else if (c.accept("UNIQUE")) {
      c.accept("KEY");
      table.Indexes.push_back(
          {uniqueIndexName(table, column.Name), TIndexKind::Unique, {{column.Name, {}, false}}, {}, {}});
    } else if (c.accept("AS")) {
      column.Generated = c.groupText();
    } else if (c.accept("STORED") || c.accept("PERSISTENT")) {
      column.Stored = true;
    } else if (c.accept("CHECK")) {
      column.Check = c.groupText();
    } else if (c.accept("REFERENCES")) {
      c.skipDefinition();
    } else if (c.peek().isSymbol('(')) {
      c.group();
    } else {
      c.skip();  // VISIBLE, VIRTUAL, GENERATED ALWAYS, CONSTRAINT name, COLUMN_FORMAT x, …
    }
  }
  column.Type = NormaliseType(typeName, args);
  if (column.Default) column.Default = NormaliseDefault(*column.Default, column.Type);
  table.Columns.push_back(std::move(column));
}

// One item of a table's definition list, or of ALTER TABLE … ADD.
void readDefinition(Cursor& c, TDBTable& table, bool columnFirst) {
  std::string constraintName;
  if (c.accept("CONSTRAINT")) {
    if (!isAny(c.peek(), {"PRIMARY", "UNIQUE", "FOREIGN", "CHECK"})) constraintName = c.name();
  }
  if (c.acceptAll({"PRIMARY", "KEY"})) {
    readIndex(c, table, TIndexKind::Primary, {});
  } else if (c.accept("UNIQUE")) {
    if (!c.accept("KEY")) c.accept("INDEX");
    readIndex(c, table, TIndexKind::Unique, constraintName);
  } else if (c.peek().is("FULLTEXT") || c.peek().is("SPATIAL")) {
    const bool fulltext = c.accept("FULLTEXT") || !c.accept("SPATIAL");
    if (!c.accept("KEY")) c.accept("INDEX");
    readIndex(c, table, fulltext ? TIndexKind::Fulltext : TIndexKind::Spatial, {});
  } else if (!columnFirst && (c.accept("KEY") || c.accept("INDEX"))) {
    readIndex(c, table, TIndexKind::Index, {});
  } else if (c.acceptAll({"FOREIGN", "KEY"})) {
    readForeignKey(c, table, constraintName);
  } else if (c.accept("CHECK")) {
    table.Checks.push_back({constraintName, c.groupText()});
  } else if (c.peek().is("PERIOD")) {
    c.skipDefinition();
  } else {
    readColumn(c, table);
  }
  c.skipDefinition();
}

void readTableOptions(Cursor& c, TDBTable& table) {
  while (!c.atEnd()) {
    if (c.acceptSymbol(',')) continue;
    if (c.acceptAll({"WITH", "SYSTEM", "VERSIONING"})) {
      table.SystemVersioning = true;
      continue;
    }
    if (c.peek().is("PARTITION")) {
      table.Partitioning = c.normalised(c.pos(), c.size());
      return;
    }
    c.accept("DEFAULT");
    if (c.accept("ENGINE") || c.accept("TYPE")) {
      c.acceptSymbol('=');
      table.Engine = c.name();
    } else if (c.accept("CHARSET") || c.acceptAll({"CHARACTER", "SET"})) {
      c.acceptSymbol('=');
      table.Charset = c.name();
    } else if (c.accept("COLLATE")) {
      c.acceptSymbol('=');
      table.Collation = c.name();
    } else if (c.accept("ROW_FORMAT")) {
      c.acceptSymbol('=');
      table.RowFormat = upper(c.name());
    } else if (c.accept("SEQUENCE")) {
      c.acceptSymbol('=');
      table.Sequence = c.name() != "0";
    } else if (c.accept("PACK_KEYS")) {
      c.acceptSymbol('=');
      table.PackKeys = c.name();
    } else if (c.accept("COMMENT")) {
      c.acceptSymbol('=');
      table.Comment = c.normalised(c.pos(), c.pos() + 1);
      c.skip();
    } else {
      c.skip();  // AUTO_INCREMENT and the options that do not count
      c.acceptSymbol('=');
      if (c.peek().isSymbol('('))
        c.group();
      else
        c.skip();
    }
  }
}

int ibfkNumber(const TDBTable& table, const TDBForeignKey& key) {
  const std::string prefix = table.Name + "_ibfk_";
  if (!key.Name.starts_with(prefix) || key.Name.size() == prefix.size()) return 0;
  for (char c : key.Name.substr(prefix.size()))
    if (!std::isdigit(static_cast<unsigned char>(c))) return 0;
  return std::stoi(key.Name.substr(prefix.size()));
}

// What the server adds to keys and checks written without a name, so that they can be dropped:
// foreign keys are numbered "<table>_ibfk_N" (in their order in CREATE TABLE, after the highest
// number in ALTER TABLE), checks get the lowest free "CONSTRAINT_N", and a foreign key no index
// leads with gets one, named after the constraint or else its first column.
void addImpliedNames(TDBTable& table, bool created) {
  int highest = 0;
  for (const auto& key : table.ForeignKeys) highest = std::max(highest, ibfkNumber(table, key));
  int counter = 0;
  for (auto& key : table.ForeignKeys) {
    if (!key.Name.empty()) continue;
    key.Name = table.Name + "_ibfk_" + std::to_string(created ? ++counter : ++highest);
    key.NameImplied = true;
  }
  for (auto& check : table.Checks) {
    if (!check.Name.empty()) continue;
    int n = 1;
    while (FindByName(table.Checks, "CONSTRAINT_" + std::to_string(n), false)) ++n;
    check.Name = "CONSTRAINT_" + std::to_string(n);
    check.NameImplied = true;
  }
  for (const auto& key : table.ForeignKeys) {
    if (key.Columns.empty() || std::ranges::any_of(table.Indexes, [&](const TDBIndex& index) {
          return index.leadsWith(key.Columns);
        }))
      continue;
    TDBIndex index;
    index.Name = key.NameImplied ? uniqueIndexName(table, key.Columns[0]) : key.Name;
    for (const auto& column : key.Columns) index.Columns.push_back({column, {}, false});
    table.Indexes.push_back(std::move(index));
  }
}

}  // namespace

namespace {

class StatementReader {
 public:
  StatementReader(TDBStructure& structure, bool caseSensitive, std::string_view statement)
      : s_(structure), caseSensitive_(caseSensitive), c_(statement) {}

  TDdlReader::Outcome read() {
    using enum TDdlReader::Outcome;
    if (c_.atEnd()) return Ignored;
    if (c_.accept("CREATE")) return create();
    if (c_.accept("DROP")) return drop();
    if (c_.accept("ALTER")) return alter();
    if (c_.accept("USE")) {
      s_.Database = c_.name();
      return Modelled;
    }
    for (auto word : {"SET", "INSERT", "REPLACE", "LOCK", "UNLOCK", "COMMIT", "START", "BEGIN", "ROLLBACK",
                      "TRUNCATE", "FLUSH", "SELECT", "DELIMITER"})
      if (c_.peek().is(word)) return Ignored;
    return NotModelled;
  }

 private:
  TDdlReader::Outcome create() {
    using enum TDdlReader::Outcome;
    c_.acceptAll({"OR", "REPLACE"});
    if (c_.accept("DATABASE") || c_.accept("SCHEMA")) {
      c_.acceptAll({"IF", "NOT", "EXISTS"});
      if (s_.Database.empty()) s_.Database = c_.name();
      return Modelled;
    }
    if (c_.accept("TABLE")) return createTable();
    if (c_.peek().is("SEQUENCE")) {
      const size_t keyword = c_.pos();
      c_.skip();
      return createCode(s_.Sequences, keyword, false);
    }
    std::string algorithm, security;
    while (!c_.atEnd()) {
      if (c_.accept("ALGORITHM")) {
        c_.acceptSymbol('=');
        algorithm = upper(c_.name());
      } else if (c_.accept("DEFINER")) {
        c_.skipDefiner();
      } else if (c_.acceptAll({"SQL", "SECURITY"})) {
        security = upper(c_.name());
      } else {
        break;
      }
    }
    if (c_.accept("VIEW")) return createView(algorithm, security);
    const size_t keyword = c_.pos();
    c_.accept("AGGREGATE");
    if (c_.accept("PROCEDURE")) return createCode(s_.Procedures, keyword, false);
    if (c_.accept("FUNCTION")) return createCode(s_.Functions, keyword, false);
    if (c_.accept("TRIGGER")) return createCode(s_.Triggers, keyword, true);
    if (c_.accept("EVENT")) return createCode(s_.Events, keyword, false);
    if (c_.accept("UNIQUE")) return createIndex(TIndexKind::Unique);
    if (c_.accept("FULLTEXT")) return createIndex(TIndexKind::Fulltext);
    if (c_.accept("SPATIAL")) return createIndex(TIndexKind::Spatial);
    return createIndex(TIndexKind::Index);
  }

  TDdlReader::Outcome createTable() {
    using enum TDdlReader::Outcome;
    c_.acceptAll({"IF", "NOT", "EXISTS"});
    TDBTable table;
    table.Name = c_.qualifiedName();
    if (!c_.acceptSymbol('(')) return NotModelled;  // LIKE, AS SELECT
    while (!c_.atEnd() && !c_.acceptSymbol(')')) {
      readDefinition(c_, table, false);
      c_.acceptSymbol(',');
    }
    readTableOptions(c_, table);
    // A sequence's table form says nothing of its values; its CREATE SEQUENCE does.
    if (table.Sequence) return NotModelled;
    addImpliedNames(table, true);
    FinishTable(table);
    RemoveByName(s_.Views, table.Name, caseSensitive_);
    if (auto* old = FindByName(s_.Tables, table.Name, caseSensitive_))
      *old = std::move(table);
    else
      s_.Tables.push_back(std::move(table));
    return Modelled;
  }

  TDdlReader::Outcome createView(const std::string& algorithm, const std::string& security) {
    using enum TDdlReader::Outcome;
    c_.acceptAll({"IF", "NOT", "EXISTS"});
    TDBView view;
    view.Name = c_.qualifiedName();
    view.Algorithm = algorithm == "UNDEFINED" ? std::string() : algorithm;
    view.Security = security == "DEFINER" ? std::string() : security;
    if (c_.peek().isSymbol('(')) {
      auto [from, to] = c_.group();
      view.Columns = c_.raw(from, to);
    }
    if (!c_.accept("AS")) return NotModelled;
    const size_t from = c_.pos();
    size_t to = c_.size();
    if (to >= from + 3 && c_.peek(to - from - 1).is("OPTION") && c_.peek(to - from - 2).is("CHECK")) {
      to -= 2;
      view.CheckOption = "CASCADED";
      if (c_.peek(to - from - 1).is("LOCAL") || c_.peek(to - from - 1).is("CASCADED")) {
        view.CheckOption = upper(c_.peek(to - from - 1).text);
        --to;
      }
      --to;  // WITH
    }
    view.Definition = trimmed(c_.raw(from, to));
    view.Compared = c_.normalised(from, to, s_.Database);
    RemoveByName(s_.Tables, view.Name, caseSensitive_);
    if (auto* old = FindByName(s_.Views, view.Name, caseSensitive_))
      *old = std::move(view);
    else
      s_.Views.push_back(std::move(view));
    return Modelled;
  }

  TDdlReader::Outcome createCode(std::vector<TDBCode>& into, size_t keyword, bool trigger) {
    c_.acceptAll({"IF", "NOT", "EXISTS"});
    TDBCode code;
    code.Name = c_.qualifiedName();
    if (trigger) {
      c_.skip(2);  // timing and event
      c_.accept("ON");
      code.Table = c_.qualifiedName();
    }
    code.CreateText = "CREATE " + trimmed(c_.raw(keyword, c_.size()));
    code.Compared = c_.normalised(keyword, c_.size(), s_.Database);
    if (auto* old = FindByName(into, code.Name, caseSensitive_))
      *old = std::move(code);
    else
      into.push_back(std::move(code));
    return TDdlReader::Outcome::Modelled;
  }

  TDdlReader::Outcome createIndex(TIndexKind kind) {
    using enum TDdlReader::Outcome;
    if (!c_.accept("INDEX")) return NotModelled;
    std::string name = c_.name();
    std::string method;
    if (c_.accept("USING")) method = upper(c_.name());
    if (!c_.accept("ON")) return NotModelled;
    auto* table = FindByName(s_.Tables, c_.qualifiedName(), caseSensitive_);
    if (!table) return NotModelled;
    readIndex(c_, *table, kind, name);
    if (!method.empty() && method != "BTREE") table->Indexes.back().Using = method;
    return Modelled;
  }

  TDdlReader::Outcome drop() {
    using enum TDdlReader::Outcome;
    c_.accept("TEMPORARY");
    const auto& kind = c_.peek();
    std::vector<TDBCode>* code = kind.is("PROCEDURE")  ? &s_.Procedures
                                 : kind.is("FUNCTION") ? &s_.Functions
                                 : kind.is("TRIGGER")  ? &s_.Triggers
                                 : kind.is("EVENT")    ? &s_.Events
                                 : kind.is("SEQUENCE") ? &s_.Sequences
                                                       : nullptr;
    const bool tables = kind.is("TABLE") || kind.is("TABLES") || kind.is("VIEW");
    if (kind.is("INDEX")) {
      c_.skip();
      const std::string name = c_.name();
      if (!c_.accept("ON")) return NotModelled;
      if (auto* table = FindByName(s_.Tables, c_.qualifiedName(), caseSensitive_))
        RemoveByName(table->Indexes, name, false);
      return Modelled;
    }
    if (!code && !tables) return NotModelled;
    c_.skip();
    c_.acceptAll({"IF", "EXISTS"});
    while (!c_.atEnd()) {
      const std::string name = c_.qualifiedName();
      if (code) {
        RemoveByName(*code, name, caseSensitive_);
      } else {
        // A dump stands a table in for a view until the view can be created.
        RemoveByName(s_.Tables, name, caseSensitive_);
        RemoveByName(s_.Views, name, caseSensitive_);
      }
      if (!c_.acceptSymbol(',')) break;
    }
    return Modelled;
  }

  TDdlReader::Outcome alter() {
    using enum TDdlReader::Outcome;
    c_.accept("ONLINE");
    c_.accept("IGNORE");
    if (!c_.accept("TABLE")) return c_.peek().is("DATABASE") ? Ignored : NotModelled;
    auto* table = FindByName(s_.Tables, c_.qualifiedName(), caseSensitive_);
    if (!table) return NotModelled;
    bool modelled = false;
    while (!c_.atEnd()) {
      if (c_.accept("ADD")) {
        const bool column = c_.accept("COLUMN");
        readDefinition(c_, *table, column);
        modelled = true;
      } else if ((c_.accept("DISABLE") || c_.accept("ENABLE")) && c_.accept("KEYS")) {
      } else {
        return NotModelled;
      }
      if (!c_.acceptSymbol(',')) break;
    }
    addImpliedNames(*table, false);
    FinishTable(*table);
    return modelled ? Modelled : Ignored;
  }

  TDBStructure& s_;
  bool caseSensitive_;
  Cursor c_;
};

}  // namespace

TDdlReader::Outcome TDdlReader::read(std::string_view statement) {
  return StatementReader(structure_, caseSensitive_, statement).read();
}

}  // namespace lomarin
