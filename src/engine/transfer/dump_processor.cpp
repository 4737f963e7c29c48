#include "engine/transfer/dump_processor.h"

#include <algorithm>
#include <ctime>

#include "engine/connect/my_query.h"
#include "engine/transfer/dump_session.h"
#include "engine/transfer/insert_writer.h"
#include "engine/transfer/sql_text.h"

namespace lomarin {

namespace {

constexpr const char* kEngineVersion = "5.90.0.60";

std::string scriptDate(std::chrono::system_clock::time_point when) {
  const std::time_t t = std::chrono::system_clock::to_time_t(when);
  std::tm local{};
  localtime_r(&t, &local);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  return text;
}

// "$$", lengthened until the code holds it nowhere: a name like v$$ would end the block early.
std::string blockDelimiter(const std::string& code) {
  std::string delimiter = "$$";
  while (code.find(delimiter) != std::string::npos) delimiter += '$';
  return delimiter;
}

std::string currentDatabase(const TMyDump& dump) {
  return dump.Database.empty() ? dump.Connection->CurrentDatabase() : dump.Database;
}

}  // namespace

TMyDumpProcessor::TMyDumpProcessor(const TMyDump& dump, TDumpSink& sink)
    : dump_(dump),
      sink_(sink),
      connection_(*dump.Connection),
      options_(dump.Options),
      database_(currentDatabase(dump)),
      catalog_(connection_, database_, options_.QuoteNames) {}

void TMyDumpProcessor::line(std::string_view text) {
  buffer_.assign(text);
  buffer_ += "\r\n";
  sink_.write(buffer_);
}

void TMyDumpProcessor::comment(const std::string& title) {
  if (!options_.GenerateHeader) return;
  sink_.write("-- \r\n-- " + CommentText(title) + "\r\n-- \r\n\r\n");
}

void TMyDumpProcessor::checkStop() const {
  if (dump_.StopRequested && dump_.StopRequested()) throw DumpError("Export stopped");
}

void TMyDumpProcessor::progress(const std::string& object, int percent) {
  checkStop();
  if (percent == lastPercent_ && object == object_) return;
  object_ = object;
  lastPercent_ = percent;
  if (dump_.OnBackupProgress) dump_.OnBackupProgress(object, objectNum_, objectCount_, percent);
}

void TMyDumpProcessor::nextObject(const std::string& object) {
  ++objectNum_;
  progress(object, 0);
}

std::vector<std::string> TMyDumpProcessor::wanted(const std::string& list, std::vector<std::string> all,
                                                  const char* kind) const {
  const auto names = SplitNames(list, database_);
  if (names.empty()) return all;
  for (const auto& name : names)
    if (std::find(all.begin(), all.end(), name) == all.end())
      throw DumpError(std::string(kind) + " " + name + " does not exist in database " + database_);
  return names;
}

void TMyDumpProcessor::backup() {
  const TMyDumpObjects objects = dump_.Objects;
  using enum TMyDumpObject;
  const bool anyTables = objects.has(doTables) || objects.has(doData) || objects.has(doViews);
  const bool needsDatabase = objects.bits() & ~static_cast<uint8_t>(doUsers);
  if (needsDatabase && database_.empty()) throw DumpError("No database selected");
  TDumpSession session(connection_, database_);

  // Everything is read up front: once rows stream, the session can run nothing else.
  std::vector<std::pair<std::string, std::string>> routineNames;
  std::vector<std::string> eventNames;
  if (objects.has(doStoredProcs)) {
    for (const auto& name : wanted(dump_.StoredProcNames, catalog_.routineNames(), "Routine"))
      for (const auto& kind : catalog_.routineKinds(name)) routineNames.emplace_back(kind, name);
    if (connection_.ServerVersionNumber() >= 51) {
      // Events have no object bit of their own; they travel with the stored routines.
      const auto names = SplitNames(dump_.StoredProcNames, database_);
      for (auto& event : catalog_.eventNames())
        if (names.empty() || std::find(names.begin(), names.end(), event) != names.end())
          eventNames.push_back(std::move(event));
    }
  }
  std::vector<std::string> baseTables, views;
  if (anyTables) {
    const auto listed = catalog_.tables();
    std::vector<std::string> all;
    for (const auto& table : listed) all.push_back(table.name);
    for (const auto& name : wanted(dump_.TableNames, all, "Table")) {
      const bool isView = std::find_if(listed.begin(), listed.end(), [&](const auto& t) {
                            return t.name == name && t.isView;
                          }) != listed.end();
      if (!isView && (objects.has(doTables) || objects.has(doData))) baseTables.push_back(name);
      if (isView && objects.has(doViews)) views.push_back(name);
    }
  }
  // Views come after the base tables, each after the views it reads: the server checks a view's
  // tables when it is created, so a script in listing order would not restore.
  std::vector<std::string> viewTexts;
  for (const auto& view : views) viewTexts.push_back(catalog_.createTable(view));
  const auto viewOrder = ViewOrder(views, viewTexts);
  std::vector<std::string> triggers;
  if (objects.has(doTriggers)) triggers = wanted(dump_.TriggerNames, catalog_.triggerNames(), "Trigger");

  // Code is written in the character set it was created with, which its own settings name.
  std::vector<Routine> routines;
  std::vector<TDumpCatalog::Code> triggerDefinitions;
  std::vector<Event> events;
  if (!routineNames.empty() || !triggers.empty() || !eventNames.empty()) {
    session.rawTexts(true);
    for (auto& [kind, name] : routineNames)
      routines.push_back({kind, name, catalog_.createRoutine(kind, name)});
    for (const auto& trigger : triggers) triggerDefinitions.push_back(catalog_.createTrigger(trigger));
    for (auto& name : eventNames) events.push_back({name, catalog_.createEvent(name)});
    session.rawTexts(false);
  }
  objectCount_ =
      static_cast<int>(routines.size() + baseTables.size() + views.size() + triggers.size() + events.size());

  writeHeader();
  openScript(anyTables);
  if (objects.has(doDatabase)) writeDatabase();
  if (objects.has(doUsers)) writeUsers();
  for (const auto& routine : routines) writeRoutine(routine);
  for (const auto& table : baseTables) writeTable(table, {}, false);
  for (size_t i : viewOrder) writeTable(views[i], viewTexts[i], true);
  for (size_t i = 0; i < triggers.size(); ++i) writeTrigger(triggers[i], triggerDefinitions[i]);
  for (const auto& event : events) writeEvent(event);
  closeScript();
}

void TMyDumpProcessor::backupQuery(const std::string& sql) {
  if (sql.find_first_not_of(" \t\r\n") == std::string::npos) throw DumpError("No SQL statement provided");
  const auto names = SplitNames(dump_.TableNames, database_);
  if (names.size() > 1)
    throw DumpError("To execute BackupQuery TableNames must have not more than one table");
  // The query's names are the user's, read against the session's current database.
  TDumpSession session(connection_, {});
  TMyQuery query(connection_);
  query.SQL = sql;
  query.UniDirectional = true;
  query.FetchAll = false;
  query.Open();
  std::string table;
  bool oneTable = !query.Fields().empty();
  std::vector<std::string> columns;
  for (const auto& field : query.Fields()) {
    if (field.OrgTable.empty() || (!table.empty() && field.OrgTable != table)) oneTable = false;
    table = field.OrgTable;
    columns.push_back(catalog_.name(field.OrgName));
  }
  if (!oneTable) throw DumpError("Query must contain one table");
  if (!names.empty()) table = names.front();
  // FLOAT columns: the rows are read again through the query, widened to DOUBLE.
  std::vector<bool> floatColumns;
  std::string selectList;
  for (const auto& field : query.Fields()) {
    floatColumns.push_back(field.Type == TMyFieldType::Float);
    selectList += (selectList.empty() ? "" : ", ") + ScriptName(field.Name, true) +
                  (floatColumns.back() ? " * 1e0" : "");
  }
  if (std::find(floatColumns.begin(), floatColumns.end(), true) != floatColumns.end()) {
    query.Close();
    const std::string inner = sql.substr(0, sql.find_last_not_of(" \t\r\n;") + 1);
    // The line break ends a trailing "--" comment of the user's query.
    query.SQL = "SELECT " + selectList + " FROM (" + inner + "\n) AS lomarin_rows";
    query.Open();
  }
  objectCount_ = 1;
  nextObject(table);
  writeHeader();
  openScript(true);
  writeRows(catalog_.name(table), query, columns, false, floatColumns, 0);
  closeScript();
  progress(table, 100);
}

void TMyDumpProcessor::writeHeader() {
  if (!options_.GenerateHeader) return;
  const auto now = dump_.Clock ? dump_.Clock() : std::chrono::system_clock::now();
  const std::string& server = connection_.Settings.Server;
  line(std::string("-- Lomarin data access version: ") + kEngineVersion);
  line("-- MySQL server version: " + CommentText(connection_.ServerVersion()));
  line("-- MySQL client version: " + CommentText(connection_.ClientVersion()));
  line("-- Script date " + scriptDate(now));
  line("-- ---------------------------------------------------------------------- ");
  line("-- Server: " + CommentText(server.empty() ? "localhost" : server));
  line("-- Database: " + CommentText(database_));
  line("");
}

void TMyDumpProcessor::openScript(bool foreignKeys) {
  std::string charset = connection_.CharsetName();
  if (charset.empty()) charset = "utf8";
  line("/*!40101 SET @OLD_CHARACTER_SET_CLIENT=@@CHARACTER_SET_CLIENT */;");
  line("/*!40101 SET @OLD_CHARACTER_SET_RESULTS=@@CHARACTER_SET_RESULTS */;");
  line("/*!40101 SET @OLD_COLLATION_CONNECTION=@@COLLATION_CONNECTION */;");
  line("/*!40101 SET NAMES " + charset + " */;");
  foreignKeyLine_ = foreignKeys;
  if (foreignKeys)
    line("/*!40014 SET @OLD_FOREIGN_KEY_CHECKS=@@FOREIGN_KEY_CHECKS, FOREIGN_KEY_CHECKS=0 */;");
  // Values are written in UTC; zero ids and zero dates must load as they were stored.
  line("/*!40103 SET @OLD_TIME_ZONE=@@TIME_ZONE, TIME_ZONE='+00:00' */;");
  line("/*!40101 SET @OLD_SQL_MODE=@@SQL_MODE, SQL_MODE='NO_AUTO_VALUE_ON_ZERO' */;");
  line("");
}

void TMyDumpProcessor::closeScript() {
  if (foreignKeyLine_) line("/*!40014 SET FOREIGN_KEY_CHECKS=@OLD_FOREIGN_KEY_CHECKS */;");
  line("/*!40101 SET CHARACTER_SET_CLIENT=@OLD_CHARACTER_SET_CLIENT */;");
  line("/*!40101 SET CHARACTER_SET_RESULTS=@OLD_CHARACTER_SET_RESULTS */;");
  line("/*!40101 SET COLLATION_CONNECTION=@OLD_COLLATION_CONNECTION */;");
  line("/*!40101 SET SQL_MODE=@OLD_SQL_MODE */;");
  line("/*!40103 SET TIME_ZONE=@OLD_TIME_ZONE */;");
}

void TMyDumpProcessor::writeDatabase() {
  const std::string db = ScriptName(database_, options_.QuoteNames);
  comment("Database " + db + " structure");
  if (options_.AddDrop) {
    line("USE mysql;");
    line("DROP DATABASE IF EXISTS " + db + ";");
  }
  const std::string options = catalog_.databaseOptions();
  line("CREATE DATABASE " + db + (options.empty() ? "" : " " + options) + ";");
  line("USE " + db + ";");
  line("");
}

void TMyDumpProcessor::writeUsers() {
  std::vector<std::string> accounts;
  {
    TMyQuery query(connection_);
    query.SQL = "SELECT * FROM mysql.user";
    query.Open();
    const int user = query.FieldIndex("User");
    const int host = query.FieldIndex("Host");
    const int role = query.FieldIndex("is_role");
    if (user < 0 || host < 0) throw DumpError("mysql.user has no User and Host columns");
    while (query.Next()) {
      if (role >= 0 && query.Value(static_cast<size_t>(role)) == "Y") continue;
      accounts.push_back(ScriptName(query.Value(static_cast<size_t>(user)), true) + "@" +
                         ScriptName(query.Value(static_cast<size_t>(host)), true));
    }
  }
  comment("User permissions");
  for (const auto& account : accounts) {
    checkStop();
    TMyQuery grants(connection_);
    grants.SQL = "SHOW GRANTS FOR " + account;
    grants.Open();
    while (grants.Next()) line(std::string(grants.Value(0)) + ";");
  }
  line("");
}

void TMyDumpProcessor::codeModes(const TDumpCatalog::CodeModes& modes) {
  const bool zone = !modes.timeZone.empty();
  line(std::string("/*!50003 SET @OLD_CODE_SQL_MODE=@@SQL_MODE, "
                   "@OLD_CODE_CHARACTER_SET_CLIENT=@@CHARACTER_SET_CLIENT, "
                   "@OLD_CODE_COLLATION_CONNECTION=@@COLLATION_CONNECTION") +
       (zone ? ", @OLD_CODE_TIME_ZONE=@@TIME_ZONE" : "") + " */;");
  std::string set = "/*!50003 SET SQL_MODE=" + QuotedString(connection_, modes.sqlMode);
  if (!modes.charsetClient.empty()) set += ", CHARACTER_SET_CLIENT=" + modes.charsetClient;
  if (!modes.collation.empty()) set += ", COLLATION_CONNECTION=" + modes.collation;
  if (zone) set += ", TIME_ZONE=" + QuotedString(connection_, modes.timeZone);
  line(set + " */;");
}

void TMyDumpProcessor::scriptModes(const TDumpCatalog::CodeModes& modes) {
  line(std::string(
           "/*!50003 SET SQL_MODE=@OLD_CODE_SQL_MODE, CHARACTER_SET_CLIENT=@OLD_CODE_CHARACTER_SET_CLIENT, "
           "COLLATION_CONNECTION=@OLD_CODE_COLLATION_CONNECTION") +
       (modes.timeZone.empty() ? "" : ", TIME_ZONE=@OLD_CODE_TIME_ZONE") + " */;");
}

void TMyDumpProcessor::writeRoutine(const Routine& routine) {
  nextObject(routine.name);
  const std::string name = catalog_.name(routine.name);
  codeModes(routine.create.modes);
  comment("StoredProc  " + name);
  writeCode("", options_.AddDrop ? "DROP " + routine.kind + " IF EXISTS " + name : "", routine.create.text);
  scriptModes(routine.create.modes);
  line("");
  progress(routine.name, 100);
}

void TMyDumpProcessor::writeCode(const std::string& title, const std::string& drop, const std::string& create) {
  const std::string delimiter = blockDelimiter(drop + "\n" + create);
  line("DELIMITER " + delimiter);
  if (!title.empty()) comment(title);
  if (!drop.empty()) line(drop + " " + delimiter);
  line(create + " " + delimiter);
  line("DELIMITER ;");
}

void TMyDumpProcessor::writeTable(const std::string& table, const std::string& createText, bool isView) {
  nextObject(table);
  const std::string name = catalog_.name(table);
  if (isView || dump_.Objects.has(TMyDumpObject::doTables)) {
    const std::string create = isView ? createText : catalog_.createTable(table);
    comment("Table structure for table  " + name);
    if (options_.AddDrop) line((isView ? "DROP VIEW IF EXISTS " : "DROP TABLE IF EXISTS ") + name + ";");
    line(create + ";");
    line("");
  } else if (options_.AddDrop) {
    line("TRUNCATE TABLE " + name + ";");
    line("");
  }
  if (!isView && dump_.Objects.has(TMyDumpObject::doData)) writeTableData(table);
  progress(table, 100);
}

void TMyDumpProcessor::writeTableData(const std::string& table) {
  const auto columns = catalog_.columns(table);
  const uint64_t count = catalog_.rowCount(table);
  if (count == 0) return;
  // Generated columns cannot be given values: they are left out of the SELECT and the INSERTs.
  // Invisible ones are missing from SELECT *, so they are named. FLOAT is read widened to DOUBLE,
  // whose text holds every digit of it.
  const bool listRequired = std::any_of(columns.begin(), columns.end(),
                                        [](const auto& c) { return c.generated || c.invisible; });
  const bool floats = std::any_of(columns.begin(), columns.end(), [](const auto& c) { return c.isFloat; });
  std::vector<std::string> names;
  std::vector<bool> floatColumns;
  std::string selectList;
  for (const auto& column : columns) {
    if (column.generated) continue;
    names.push_back(catalog_.name(column.name));
    floatColumns.push_back(column.isFloat);
    selectList +=
        (selectList.empty() ? "" : ", ") + ScriptName(column.name, true) + (column.isFloat ? " * 1e0" : "");
  }
  TMyQuery query(connection_);
  query.SQL = "SELECT " + (listRequired || floats ? selectList : std::string("*")) + " FROM " +
              catalog_.qualified(table);
  query.UniDirectional = true;
  query.FetchAll = false;
  query.Open();
  writeRows(catalog_.name(table), query, names, listRequired, floatColumns, count);
}

void TMyDumpProcessor::writeRows(const std::string& table, TMyQuery& query,
                                 const std::vector<std::string>& columns, bool listRequired,
                                 const std::vector<bool>& floatColumns, uint64_t expectedRows) {
  if (!query.Next()) return;
  comment("Dumping data for table " + table);
  const bool lock = options_.AddLock && !options_.UseDelayedIns;
  if (lock) line("LOCK TABLES " + table + " WRITE;");
  if (options_.DisableKeys) line("/*!40000 ALTER TABLE " + table + " DISABLE KEYS */;");
  TInsertWriter writer(sink_, connection_, options_, table, columns, listRequired, floatColumns);
  uint64_t rows = 0;
  do {
    writer.row(query);
    if ((++rows & 4095) == 0 && expectedRows > 0)
      progress(object_, static_cast<int>(std::min<uint64_t>(99, rows * 100 / expectedRows)));
  } while (query.Next());
  writer.finish();
  if (options_.DisableKeys) line("/*!40000 ALTER TABLE " + table + " ENABLE KEYS */;");
  if (lock) line("UNLOCK TABLES;");
  line("");
}

void TMyDumpProcessor::writeTrigger(const std::string& trigger, const TDumpCatalog::Code& create) {
  nextObject(trigger);
  const std::string name = catalog_.name(trigger);
  codeModes(create.modes);
  writeCode("Trigger  " + name, options_.AddDrop ? "DROP TRIGGER IF EXISTS " + name : "", create.text);
  scriptModes(create.modes);
  line("");
  progress(trigger, 100);
}

void TMyDumpProcessor::writeEvent(const Event& event) {
  nextObject(event.name);
  const std::string name = catalog_.name(event.name);
  codeModes(event.create.modes);
  comment("Event  " + name);
  writeCode("", options_.AddDrop ? "DROP EVENT IF EXISTS " + name : "", event.create.text);
  scriptModes(event.create.modes);
  line("");
  progress(event.name, 100);
}

}  // namespace lomarin
