#include "engine/compare/sync_script.h"

#include <algorithm>

#include "engine/compare/ddl_normalise.h"
#include "engine/compare/ddl_writer.h"
#include "engine/transfer/dump_catalog.h"

namespace lomarin {

namespace {

using enum TCmpObjType;

template <class T>
struct Matched {
  std::vector<std::pair<const T*, const T*>> both;  // master, target
  std::vector<const T*> onlyMaster;
  std::vector<const T*> onlyTarget;
};

template <class T, class Same>
Matched<T> match(const std::vector<T>& master, const std::vector<T>& target, Same same) {
  Matched<T> m;
  std::vector<bool> used(target.size(), false);
  for (const auto& item : master) {
    size_t found = target.size();
    for (size_t i = 0; i < target.size() && found == target.size(); ++i)
      if (!used[i] && same(item, target[i])) found = i;
    if (found == target.size()) {
      m.onlyMaster.push_back(&item);
    } else {
      used[found] = true;
      m.both.emplace_back(&item, &target[found]);
    }
  }
  for (size_t i = 0; i < target.size(); ++i)
    if (!used[i]) m.onlyTarget.push_back(&target[i]);
  return m;
}

template <class T>
Matched<T> matchByName(const std::vector<T>& master, const std::vector<T>& target, bool caseSensitive) {
  return match(master, target,
               [caseSensitive](const T& a, const T& b) { return SameName(a.Name, b.Name, caseSensitive); });
}

// Unnamed foreign keys and checks are matched on their definition.
Matched<TDBForeignKey> matchForeignKeys(const TDBTable& master, const TDBTable& target) {
  return match(master.ForeignKeys, target.ForeignKeys, [](const TDBForeignKey& a, const TDBForeignKey& b) {
    return a.named() && b.named() ? SameName(a.Name, b.Name, false) : a.sameDefinition(b);
  });
}

Matched<TDBCheck> matchChecks(const TDBTable& master, const TDBTable& target) {
  return match(master.Checks, target.Checks, [](const TDBCheck& a, const TDBCheck& b) {
    return a.named() && b.named() ? SameName(a.Name, b.Name, false) : a.Expression == b.Expression;
  });
}

bool isPlainIndex(const TDBIndex& index) {
  return index.Kind != TIndexKind::Primary && index.Kind != TIndexKind::Unique;
}

std::vector<TDBIndex> indexesOf(const TDBTable& table, bool plain) {
  std::vector<TDBIndex> out;
  for (const auto& index : table.Indexes)
    if (isPlainIndex(index) == plain && index.Kind != TIndexKind::Primary) out.push_back(index);
  return out;
}

// The plain (or the unique) indexes of a table pair, matched by name.
struct IndexPairs {
  IndexPairs(const TDBTable& m, const TDBTable& t, bool plain)
      : master(indexesOf(m, plain)),
        target(indexesOf(t, plain)),
        matched(matchByName(master, target, false)) {}
  IndexPairs(const IndexPairs&) = delete;
  IndexPairs& operator=(const IndexPairs&) = delete;

  const std::vector<TDBIndex> master;
  const std::vector<TDBIndex> target;
  const Matched<TDBIndex> matched;
};

bool sameColumn(TDBColumn a, TDBColumn b) {
  a.Name = b.Name;
  a.Type = ComparableType(a.Type, a.Zerofill);
  b.Type = ComparableType(b.Type, b.Zerofill);
  // A script that names no character set leaves it to the database: it matches any.
  if (a.Charset.empty() || b.Charset.empty()) {
    a.Charset = b.Charset;
    a.Collation = b.Collation;
  }
  return a == b;
}

bool sameView(const TDBView& a, const TDBView& b) {
  return a.Algorithm == b.Algorithm && a.Security == b.Security && a.CheckOption == b.CheckOption &&
         a.Columns == b.Columns && a.Compared == b.Compared;
}

std::string alterTable(const TDBTable& table) { return "ALTER TABLE " + QuotedName(table.Name); }

bool primaryKeyChanged(const TDBTable& m, const TDBTable& t) {
  return t.primaryKey() && (!m.primaryKey() || !m.primaryKey()->sameDefinition(*t.primaryKey()));
}

// Columns an index must lead with on a table, for a foreign key of the target that the script keeps.
struct KeyNeed {
  std::string Table;
  std::vector<std::string> Columns;
};

class Writer {
 public:
  Writer(const TDBStructure& master, const TDBStructure& target, const TSyncScriptSettings& settings)
      : master_(master),
        target_(target),
        s_(settings),
        tables_(matchByName(master.Tables, target.Tables, settings.CaseSensitive)),
        needs_(keptKeyNeeds()) {}

  TSyncScript run() {
    sessionStatements();
    if (s_.Objects.any({coPrimaryKey, coForeignKey, coUnique, coCheck})) dropConstraints();
    if (has(coFunction)) section("Prepare functions for drop...");
    if (has(coTrigger)) section("Empty trigger body before drop...");
    if (has(coProcedure)) dropProcedures();
    if (has(coTrigger)) dropTriggers();
    if (has(coIndex)) dropIndexes();
    if (has(coView)) dropViews();
    if (has(coFunction)) functions();
    if (has(coTable)) tables();
    if (has(coProcedure)) createProcedures();
    if (has(coView)) createViews();
    if (has(coIndex)) createIndexes();
    if (s_.Objects.any({coPrimaryKey, coForeignKey, coUnique, coCheck})) createConstraints();
    dropDeferred();
    if (has(coProcedure)) section("Alter Procedure...");
    if (has(coTrigger)) createTriggers();
    if (has(coView)) section("Create Views...");
    if (has(coTrigger)) {
      section("Alter created trigger...");
      section("Alter exist trigger...");
    }
    if (has(coProcedure)) section("Alter Procedure...");
    if (has(coTable)) section("Table descriptions...");
    events();
    return out_;
  }

 private:
  bool has(TCmpObjType kind) const { return s_.Objects.has(kind); }
  void log(const std::string& text) const {
    if (s_.Log) s_.Log(text);
  }
  void line(const std::string& text) { out_.Text += text + "\r\n"; }
  void section(const std::string& text) const { log(text); }
  void commentSection(const std::string& text) {
    log(text);
    line(text);
  }
  void statement(const std::string& sql) {
    line(sql + ";");
    ++out_.Statements;
    if (s_.ShowFullLog) log(sql);
  }
  // A routine, trigger or event: its body holds semicolons.
  void compound(const std::string& sql) {
    const std::string delimiter = sql.find("$$") == std::string::npos ? "$$" : ";;";
    line("DELIMITER " + delimiter);
    line(sql + delimiter);
    line("DELIMITER ;");
    ++out_.Statements;
    if (s_.ShowFullLog) log(sql);
  }

  void sessionStatements() {
    const auto& charset = s_.Server.CharSet;
    if (!charset.empty() && charset != "default") line("SET CHARACTER SET " + charset + ";");
    if (!s_.Server.Names.empty()) line("SET NAMES " + s_.Server.Names + ";");
    if (!target_.Database.empty()) line("USE " + QuotedName(target_.Database) + ";");
  }

  void dropConstraints() {
    section("Drop constraints...");
    if (has(coForeignKey)) {
      for (auto [m, t] : tables_.both) {
        const auto keys = matchForeignKeys(*m, *t);
        for (const auto* key : keys.onlyTarget) dropForeignKey(*t, *key);
        for (auto [mk, tk] : keys.both)
          if (!mk->sameDefinition(*tk)) dropForeignKey(*t, *tk);
      }
      // Tables about to go lose their keys first, so no drop waits on another.
      if (has(coTable))
        for (const auto* t : tables_.onlyTarget)
          for (const auto& key : t->ForeignKeys) dropForeignKey(*t, key);
    }
    for (auto [m, t] : tables_.both) {
      if (has(coCheck)) {
        const auto checks = matchChecks(*m, *t);
        for (const auto* check : checks.onlyTarget) dropCheck(*t, *check);
        for (auto [mc, tc] : checks.both)
          if (mc->Expression != tc->Expression) dropCheck(*t, *tc);
      }
      if (has(coUnique)) {
        const IndexPairs unique(*m, *t, false);
        const auto& keys = unique.matched;
        for (const auto* key : keys.onlyTarget)
          dropIndex(*t, *key, alterTable(*t) + " DROP INDEX " + QuotedName(key->Name));
        for (auto [mk, tk] : keys.both)
          if (!mk->sameDefinition(*tk) && !neededByKey(*t, *tk))
            statement(alterTable(*t) + " DROP INDEX " + QuotedName(tk->Name));
      }
      if (has(coPrimaryKey) && primaryKeyChanged(*m, *t)) {
        if (!m->primaryKey())
          dropIndex(*t, *t->primaryKey(), alterTable(*t) + " DROP PRIMARY KEY");
        else if (!neededByKey(*t, *t->primaryKey()))
          statement(alterTable(*t) + " DROP PRIMARY KEY");
      }
    }
  }
  void dropForeignKey(const TDBTable& table, const TDBForeignKey& key) {
    if (!key.Name.empty()) statement(alterTable(table) + " DROP FOREIGN KEY " + QuotedName(key.Name));
  }
  void dropCheck(const TDBTable& table, const TDBCheck& check) {
    if (!check.Name.empty()) statement(alterTable(table) + " DROP CONSTRAINT " + QuotedName(check.Name));
  }

  std::vector<KeyNeed> keptKeyNeeds() const {
    std::vector<KeyNeed> needs;
    auto keep = [&needs](const TDBTable& table, const TDBForeignKey& key) {
      needs.push_back({table.Name, key.Columns});
      needs.push_back({key.RefTable, key.RefColumns});
    };
    for (auto [m, t] : tables_.both) {
      if (!has(coForeignKey)) {
        for (const auto& key : t->ForeignKeys) keep(*t, key);
        continue;
      }
      const auto keys = matchForeignKeys(*m, *t);
      for (auto [mk, tk] : keys.both)
        if (mk->sameDefinition(*tk)) keep(*t, *tk);
    }
    if (!has(coForeignKey) || !has(coTable))
      for (const auto* t : tables_.onlyTarget)
        for (const auto& key : t->ForeignKeys) keep(*t, key);
    return needs;
  }
  // The server refuses to drop the last index a foreign key can use.
  bool neededByKey(const TDBTable& table, const TDBIndex& index) const {
    return std::ranges::any_of(needs_, [&](const KeyNeed& need) {
      return SameName(need.Table, table.Name, s_.CaseSensitive) && index.leadsWith(need.Columns);
    });
  }
  // An index a kept foreign key uses goes once its replacement exists.
  void dropIndex(const TDBTable& table, const TDBIndex& index, const std::string& sql) {
    if (neededByKey(table, index))
      deferredDrops_.push_back(sql);
    else
      statement(sql);
  }
  void dropDeferred() {
    for (const auto& sql : deferredDrops_) statement(sql);
    deferredDrops_.clear();
  }

  // Vanished and changed code objects are dropped; new and changed ones created later.
  void dropCode(const std::vector<TDBCode>& master, const std::vector<TDBCode>& target,
                const std::string& kind) {
    const auto code = matchByName(master, target, s_.CaseSensitive);
    for (const auto* t : code.onlyTarget) statement("DROP " + kind + " " + QuotedName(t->Name));
    for (auto [m, t] : code.both)
      if (m->Compared != t->Compared) statement("DROP " + kind + " " + QuotedName(t->Name));
  }
  void createCode(const std::vector<TDBCode>& master, const std::vector<TDBCode>& target) {
    const auto code = matchByName(master, target, s_.CaseSensitive);
    for (const auto* m : code.onlyMaster) compound(m->CreateText);
    for (auto [m, t] : code.both)
      if (m->Compared != t->Compared) compound(m->CreateText);
  }

  void dropProcedures() {
    section("Alter Procedure (Before Drop)...");
    section("Drop Procedure...");
    dropCode(master_.Procedures, target_.Procedures, "PROCEDURE");
  }
  void dropTriggers() {
    section("Drop Trigger...");
    dropCode(master_.Triggers, target_.Triggers, "TRIGGER");
  }
  void functions() {
    section("Drop Function...");
    dropCode(master_.Functions, target_.Functions, "FUNCTION");
    section("Create Function...");
    createCode(master_.Functions, target_.Functions);
  }
  void createProcedures() {
    section("Create Procedure...");
    createCode(master_.Procedures, target_.Procedures);
  }
  void createTriggers() {
    section("Create trigger...");
    createCode(master_.Triggers, target_.Triggers);
  }

  void dropIndexes() {
    commentSection("/* Drop Index... */");
    for (auto [m, t] : tables_.both) {
      const IndexPairs indexes(*m, *t, true);
      for (const auto* index : indexes.matched.onlyTarget)
        dropIndex(*t, *index, "DROP INDEX " + QuotedName(index->Name) + " ON " + QuotedName(t->Name));
    }
  }
  void createIndexes() {
    commentSection("/* Create index... */");
    for (const auto* m : tables_.onlyMaster)
      for (const auto& index : indexesOf(*m, true))
        statement(alterTable(*m) + " ADD " + IndexDefinition(index));
    for (auto [m, t] : tables_.both) {
      const IndexPairs indexes(*m, *t, true);
      for (const auto* index : indexes.matched.onlyMaster)
        statement(alterTable(*m) + " ADD " + IndexDefinition(*index));
    }
    commentSection("/* Alter index (Drop, Create)... */");
    for (auto [m, t] : tables_.both) {
      const IndexPairs indexes(*m, *t, true);
      for (auto [mi, ti] : indexes.matched.both)
        if (!mi->sameDefinition(*ti))
          statement(alterTable(*m) + " DROP INDEX " + QuotedName(ti->Name) + ", ADD " + IndexDefinition(*mi));
    }
  }

  void dropViews() {
    section("Drop View...");
    const auto views = matchByName(master_.Views, target_.Views, s_.CaseSensitive);
    for (const auto* view : views.onlyTarget) statement("DROP VIEW " + QuotedName(view->Name));
  }
  void createViews() {
    const auto views = matchByName(master_.Views, target_.Views, s_.CaseSensitive);
    section("Create Views...");
    // A view is created after the views it reads.
    std::vector<std::string> names, texts;
    for (const auto* view : views.onlyMaster) {
      names.push_back(view->Name);
      texts.push_back(CreateView(*view));
    }
    for (size_t i : ViewOrder(names, texts)) statement(texts[i]);
    section("Alter View (Drop, Create)...");
    for (auto [m, t] : views.both)
      if (!sameView(*m, *t)) {
        statement("DROP VIEW " + QuotedName(t->Name));
        statement(CreateView(*m));
      }
  }

  void tables() {
    const auto sequences = matchByName(master_.Sequences, target_.Sequences, s_.CaseSensitive);
    section("Create Table...");
    for (const auto* m : tables_.onlyMaster) statement(CreateTable(*m));
    for (const auto* m : sequences.onlyMaster) statement(m->CreateText);
    section("Alter Table...");
    for (auto [m, t] : tables_.both) alterTableOptions(*m, *t);
    for (auto [m, t] : tables_.both) alterColumns(*m, *t);
    for (auto [m, t] : sequences.both)
      if (m->Compared != t->Compared) statement("CREATE OR REPLACE" + m->CreateText.substr(6));
    section("Drop table-fields...");
    for (auto [m, t] : tables_.both) {
      for (const auto& column : t->Columns)
        if (!m->column(column.Name)) {
          line("/* Data loss: the values of column " + QuotedName(t->Name) + "." + QuotedName(column.Name) +
               " */");
          keepHistory(*m, *t);
          statement(alterTable(*t) + " DROP " + QuotedName(column.Name));
        }
      if (m->SystemVersioning && !t->SystemVersioning) statement(alterTable(*m) + " ADD SYSTEM VERSIONING");
    }
    section("Drop tables...");
    for (const auto* t : tables_.onlyTarget) {
      line("/* Data loss: the rows of table " + QuotedName(t->Name) + " */");
      statement("DROP TABLE " + QuotedName(t->Name));
    }
    for (const auto* t : sequences.onlyTarget) statement("DROP SEQUENCE " + QuotedName(t->Name));
  }

  // The server refuses to change the columns of a versioned table unless told to keep its history.
  void keepHistory(const TDBTable& m, const TDBTable& t) {
    if (!m.SystemVersioning || !t.SystemVersioning || historyKept_) return;
    statement("SET @@system_versioning_alter_history = KEEP");
    historyKept_ = true;
  }

  void alterTableOptions(const TDBTable& m, const TDBTable& t) {
    std::string options;
    if (!SameName(m.Engine, t.Engine, false) && !m.Engine.empty()) options += " ENGINE=" + m.Engine;
    if (m.PackKeys != t.PackKeys && !m.PackKeys.empty()) options += " PACK_KEYS=" + m.PackKeys;
    if ((m.Charset != t.Charset || m.Collation != t.Collation) && !m.Charset.empty()) {
      options += " DEFAULT CHARSET=" + m.Charset;
      if (!m.Collation.empty()) options += " COLLATE=" + m.Collation;
    }
    if (m.RowFormat != t.RowFormat)
      options += " ROW_FORMAT=" + (m.RowFormat.empty() ? std::string("DEFAULT") : m.RowFormat);
    if (m.Comment != t.Comment) options += " COMMENT=" + (m.Comment.empty() ? std::string("''") : m.Comment);
    if (!options.empty()) statement(alterTable(m) + options);
    if (!m.SystemVersioning && t.SystemVersioning) statement(alterTable(m) + " DROP SYSTEM VERSIONING");
    if (m.Partitioning != t.Partitioning)
      statement(alterTable(m) + (m.Partitioning.empty() ? " REMOVE PARTITIONING" : " " + m.Partitioning));
  }

  // Columns are added and changed in place, in the source's order; dropped ones go later, so
  // positions are counted without them.
  void alterColumns(const TDBTable& m, const TDBTable& t) {
    std::vector<std::string> order;
    for (const auto& column : t.Columns)
      if (m.column(column.Name)) order.push_back(column.Name);
    std::string previous;
    auto position = [&previous] {
      return previous.empty() ? std::string(" FIRST") : " AFTER " + QuotedName(previous);
    };
    auto at = [&order](const std::string& name) {
      return std::find_if(order.begin(), order.end(),
                          [&](const auto& n) { return SameName(n, name, false); });
    };
    for (const auto& column : m.Columns) {
      const auto* old = t.column(column.Name);
      if (!old) {
        keepHistory(m, t);
        statement(alterTable(m) + " ADD " + ColumnDefinition(column, m) + position());
        order.insert(previous.empty() ? order.begin() : at(previous) + 1, column.Name);
      } else {
        const auto it = at(column.Name);
        const bool moved = previous.empty() ? it != order.begin()
                                            : (it == order.begin() || !SameName(*(it - 1), previous, false));
        const bool renamed = old->Name != column.Name;
        // The server cannot turn a column into or out of a generated one, or a generated one
        // between VIRTUAL and STORED, in place; such a column holds no data of its own.
        const bool rebuilt = column.Generated.empty() != old->Generated.empty() ||
                             (!column.Generated.empty() && column.Stored != old->Stored);
        if (rebuilt) {
          keepHistory(m, t);
          statement(alterTable(m) + " DROP " + QuotedName(old->Name) + ", ADD " +
                    ColumnDefinition(column, m) + position());
        } else if (moved || renamed || !sameColumn(column, *old)) {
          const std::string how = renamed ? " CHANGE " + QuotedName(old->Name) + " " : " MODIFY ";
          keepHistory(m, t);
          statement(alterTable(m) + how + ColumnDefinition(column, m) + (moved ? position() : ""));
        }
        if (moved || rebuilt) {
          order.erase(it);
          order.insert(previous.empty() ? order.begin() : at(previous) + 1, column.Name);
        }
      }
      previous = column.Name;
    }
  }

  void createConstraints() {
    commentSection("/* Create check(not null)... */");
    commentSection("/* Create Default... */");
    if (has(coPrimaryKey)) {
      commentSection("/* Create Primary Key... */");
      for (auto [m, t] : tables_.both) {
        if (!m->primaryKey() || (t->primaryKey() && !primaryKeyChanged(*m, *t))) continue;
        const bool replaced = t->primaryKey() && neededByKey(*t, *t->primaryKey());
        statement(alterTable(*m) + (replaced ? " DROP PRIMARY KEY," : "") + " ADD " +
                  IndexDefinition(*m->primaryKey()));
      }
    }
    if (has(coUnique)) {
      commentSection("/* Create Unique... */");
      for (auto [m, t] : tables_.both) {
        const IndexPairs unique(*m, *t, false);
        const auto& keys = unique.matched;
        for (const auto* key : keys.onlyMaster) statement(alterTable(*m) + " ADD " + IndexDefinition(*key));
        for (auto [mk, tk] : keys.both)
          if (!mk->sameDefinition(*tk))
            statement(alterTable(*m) +
                      (neededByKey(*t, *tk) ? " DROP INDEX " + QuotedName(tk->Name) + "," : "") + " ADD " +
                      IndexDefinition(*mk));
      }
    }
    dropDeferred();
    if (has(coForeignKey)) {
      commentSection("/* Create Foreign Key... */");
      for (const auto* m : tables_.onlyMaster)
        for (const auto& key : m->ForeignKeys)
          statement(alterTable(*m) + " ADD " + ForeignKeyDefinition(key));
      for (auto [m, t] : tables_.both) {
        const auto keys = matchForeignKeys(*m, *t);
        for (const auto* key : keys.onlyMaster)
          statement(alterTable(*m) + " ADD " + ForeignKeyDefinition(*key));
        for (auto [mk, tk] : keys.both)
          if (!mk->sameDefinition(*tk)) statement(alterTable(*m) + " ADD " + ForeignKeyDefinition(*mk));
      }
    }
    if (has(coCheck)) {
      commentSection("/* Create Check... */");
      for (const auto* m : tables_.onlyMaster)
        for (const auto& check : m->Checks) statement(alterTable(*m) + " ADD " + CheckDefinition(check));
      for (auto [m, t] : tables_.both) {
        const auto checks = matchChecks(*m, *t);
        for (const auto* check : checks.onlyMaster)
          statement(alterTable(*m) + " ADD " + CheckDefinition(*check));
        for (auto [mc, tc] : checks.both)
          if (mc->Expression != tc->Expression) statement(alterTable(*m) + " ADD " + CheckDefinition(*mc));
      }
    }
  }

  void events() {
    const auto events = matchByName(master_.Events, target_.Events, s_.CaseSensitive);
    commentSection("/* Create event... */");
    for (const auto* m : events.onlyMaster) compound(m->CreateText);
    commentSection("/* Alter event... */");
    for (auto [m, t] : events.both)
      if (m->Compared != t->Compared) compound("ALTER" + m->CreateText.substr(6));
    commentSection("/* Drop event... */");
    for (const auto* t : events.onlyTarget) statement("DROP EVENT " + QuotedName(t->Name));
  }

  const TDBStructure& master_;
  const TDBStructure& target_;
  const TSyncScriptSettings& s_;
  const Matched<TDBTable> tables_;
  const std::vector<KeyNeed> needs_;
  std::vector<std::string> deferredDrops_;
  bool historyKept_ = false;
  TSyncScript out_;
};

}  // namespace

TSyncScript WriteSyncScript(const TDBStructure& master, const TDBStructure& target,
                            const TSyncScriptSettings& settings) {
  return Writer(master, target, settings).run();
}

}  // namespace lomarin
