#include "engine/app/settings_store.h"

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#if __has_include(<pwd.h>)
#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>
#endif

namespace lomarin {
namespace {

constexpr int kSchemaVersion = 1;
constexpr int kApplicationId = 0x4C6D5374;  // "LmSt": tells our files from other SQLite files
constexpr int kBusyTimeoutMs = 10000;
constexpr auto kRetryFor = std::chrono::seconds(30);
constexpr std::int64_t kRootKey = 1;

constexpr const char* kSchema = R"sql(
CREATE TABLE settings_key (
  id INTEGER PRIMARY KEY,
  parent INTEGER REFERENCES settings_key (id) ON DELETE CASCADE,
  name TEXT NOT NULL COLLATE NOCASE,
  UNIQUE (parent, name)
);
INSERT INTO settings_key (id, parent, name) VALUES (1, NULL, '');
-- Rows of one key in id order are its values in first-write order.
CREATE TABLE settings_value (
  id INTEGER PRIMARY KEY,
  key_id INTEGER NOT NULL REFERENCES settings_key (id) ON DELETE CASCADE,
  name TEXT NOT NULL COLLATE NOCASE,
  type TEXT NOT NULL CHECK (type IN ('string', 'integer')),
  data NOT NULL,
  UNIQUE (key_id, name)
);
)sql";

// An SQLite call failed; turned into SettingsError or a default at the public boundary.
struct SqlFailure {
  int code;
  std::string message;
};

bool isDamage(int code) {
  const int primary = code & 0xff;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

std::vector<std::string_view> splitKeyPath(std::string_view path) {
  std::vector<std::string_view> parts;
  while (!path.empty()) {
    const auto cut = path.find('\\');
    const auto part = path.substr(0, cut);
    if (!part.empty()) parts.push_back(part);
    if (cut == std::string_view::npos) break;
    path.remove_prefix(cut + 1);
  }
  return parts;
}

class Statement {
 public:
  Statement(sqlite3* db, const char* sql) : db_(db) {
    if (const int rc = sqlite3_prepare_v2(db, sql, -1, &stmt_, nullptr); rc != SQLITE_OK) fail(rc);
  }
  ~Statement() { sqlite3_finalize(stmt_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  Statement& bind(int index, std::string_view text) {
    check(sqlite3_bind_text(stmt_, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT));
    return *this;
  }
  Statement& bind(int index, std::int64_t number) {
    check(sqlite3_bind_int64(stmt_, index, number));
    return *this;
  }

  // True while there is a row.
  bool step() {
    const int rc = sqlite3_step(stmt_);
    if (rc == SQLITE_ROW) return true;
    if (rc != SQLITE_DONE) fail(rc);
    return false;
  }

  std::int64_t integer(int column) const { return sqlite3_column_int64(stmt_, column); }
  std::string text(int column) const {
    const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, column));
    return data ? std::string(data, sqlite3_column_bytes(stmt_, column)) : std::string();
  }

 private:
  void check(int rc) const {
    if (rc != SQLITE_OK) fail(rc);
  }
  [[noreturn]] void fail(int rc) const { throw SqlFailure{rc, sqlite3_errmsg(db_)}; }

  sqlite3* db_;
  sqlite3_stmt* stmt_ = nullptr;
};

void execute(sqlite3* db, const char* sql) {
  char* error = nullptr;
  if (const int rc = sqlite3_exec(db, sql, nullptr, nullptr, &error); rc != SQLITE_OK) {
    SqlFailure failure{rc, error ? error : sqlite3_errstr(rc)};
    sqlite3_free(error);
    throw failure;
  }
}

// Rolls back unless committed.
class Transaction {
 public:
  Transaction(sqlite3* db, bool write) : db_(db) { execute(db, write ? "BEGIN IMMEDIATE" : "BEGIN"); }
  ~Transaction() {
    if (db_) sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
  }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  void commit() {
    execute(db_, "COMMIT");
    db_ = nullptr;
  }

 private:
  sqlite3* db_;
};

std::int64_t pragmaNumber(sqlite3* db, const char* sql) {
  Statement query(db, sql);
  return query.step() ? query.integer(0) : 0;
}

std::optional<std::int64_t> findKey(sqlite3* db, std::string_view path) {
  std::int64_t id = kRootKey;
  for (const auto part : splitKeyPath(path)) {
    Statement query(db, "SELECT id FROM settings_key WHERE parent = ?1 AND name = ?2");
    query.bind(1, id).bind(2, part);
    if (!query.step()) return std::nullopt;
    id = query.integer(0);
  }
  return id;
}

std::int64_t createKey(sqlite3* db, std::string_view path) {
  std::int64_t id = kRootKey;
  for (const auto part : splitKeyPath(path)) {
    Statement query(db, "SELECT id FROM settings_key WHERE parent = ?1 AND name = ?2");
    query.bind(1, id).bind(2, part);
    if (query.step()) {
      id = query.integer(0);
      continue;
    }
    Statement insert(db, "INSERT INTO settings_key (parent, name) VALUES (?1, ?2)");
    insert.bind(1, id).bind(2, part).step();
    id = sqlite3_last_insert_rowid(db);
  }
  return id;
}

// The file holds account passwords: only its owner may read the folder and its files. SQLite gives
// its journal files the database file's mode.
void keepPrivate(const std::filesystem::path& folder) {
  namespace fs = std::filesystem;
  constexpr auto kOthers = fs::perms::group_all | fs::perms::others_all;
  std::error_code ignored;
  fs::permissions(folder, kOthers, fs::perm_options::remove, ignored);
  for (const auto& entry : fs::directory_iterator(folder, ignored))
    if (entry.is_regular_file(ignored))
      fs::permissions(entry.path(), kOthers, fs::perm_options::remove, ignored);
}

// Created owner-only from the start, so no other user can open it in between.
void createPrivateFile(const std::filesystem::path& file) {
#if __has_include(<pwd.h>)
  const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (fd >= 0) ::close(fd);
#else
  (void)file;
#endif
}

std::vector<std::string> listNames(sqlite3* db, std::string_view keyPath, const char* sql) {
  std::vector<std::string> names;
  Transaction transaction(db, false);
  if (const auto key = findKey(db, keyPath)) {
    Statement query(db, sql);
    query.bind(1, *key);
    while (query.step()) names.push_back(query.text(0));
  }
  transaction.commit();
  return names;
}

}  // namespace

SettingsError::SettingsError(const std::filesystem::path& file, std::string_view reason)
    : std::runtime_error(file.string() + ": " + std::string(reason)), file_(file) {}

struct SettingsStore::Impl {
  std::filesystem::path file;
  sqlite3* db = nullptr;  // null when the file is missing and cannot be created: defaults only
  std::mutex mutex;

  ~Impl() { sqlite3_close_v2(db); }

  // Registry semantics for everything but damage: the caller's default or false.
  template <typename Body, typename Result>
  Result guarded(Body&& body, Result fallback) {
    std::lock_guard lock(mutex);
    if (!db) return fallback;
    // SQLite gives up on a lock without waiting when waiting could deadlock; a write must not be
    // lost to that, so the whole call is tried again (every call is one idempotent transaction).
    const auto deadline = std::chrono::steady_clock::now() + kRetryFor;
    for (;;) {
      try {
        return body();
      } catch (const SqlFailure& failure) {
        if (isDamage(failure.code)) throw SettingsError(file, failure.message);
        if ((failure.code & 0xff) != SQLITE_BUSY || std::chrono::steady_clock::now() > deadline)
          return fallback;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }

  void open(SettingsStore::Access access);
  void verify();
  void createSchema();
};

void SettingsStore::Impl::open(SettingsStore::Access access) {
  std::error_code ignored;
  const bool exists = std::filesystem::exists(file, ignored);
  int flags = access == Access::ReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
  if (!exists) {
    if (access == Access::ReadOnly) return;
    // Only a missing file is created: an existing one is never replaced.
    std::filesystem::create_directories(file.parent_path(), ignored);
    createPrivateFile(file);
    flags |= SQLITE_OPEN_CREATE;
  }
  if (access == Access::ReadWrite) keepPrivate(file.parent_path());
  const int rc = sqlite3_open_v2(file.c_str(), &db, flags | SQLITE_OPEN_FULLMUTEX, nullptr);
  if (rc != SQLITE_OK) {
    const std::string reason = db ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
    sqlite3_close_v2(std::exchange(db, nullptr));
    if (exists) throw SettingsError(file, reason);
    return;
  }
  sqlite3_busy_timeout(db, kBusyTimeoutMs);
  try {
    execute(db, "PRAGMA foreign_keys = ON");
    verify();
    if (access == Access::ReadWrite && pragmaNumber(db, "PRAGMA user_version") == 0) createSchema();
  } catch (const SqlFailure& failure) {
    throw SettingsError(file, failure.message);
  }
}

// Reads only, so a damaged file is reported before anything could be written to it.
void SettingsStore::Impl::verify() {
  Statement check(db, "PRAGMA quick_check");
  if (check.step() && check.text(0) != "ok") throw SettingsError(file, "damaged: " + check.text(0));
  const auto version = pragmaNumber(db, "PRAGMA user_version");
  const auto applicationId = pragmaNumber(db, "PRAGMA application_id");
  if (version == 0 && applicationId == 0 && pragmaNumber(db, "SELECT count(*) FROM sqlite_schema") == 0)
    return;
  if (applicationId != kApplicationId) throw SettingsError(file, "not a settings file");
  if (version > kSchemaVersion)
    throw SettingsError(file, "written by a newer version (schema " + std::to_string(version) + ")");
}

void SettingsStore::Impl::createSchema() {
  Transaction transaction(db, true);
  // Another process may have created it since verify().
  if (pragmaNumber(db, "SELECT count(*) FROM sqlite_schema") == 0) {
    execute(db, kSchema);
    execute(db, ("PRAGMA application_id = " + std::to_string(kApplicationId)).c_str());
    execute(db, ("PRAGMA user_version = " + std::to_string(kSchemaVersion)).c_str());
  }
  transaction.commit();
  verify();
}

SettingsStore::SettingsStore(std::filesystem::path file, Access access) : impl_(std::make_unique<Impl>()) {
  impl_->file = std::move(file);
  impl_->open(access);
}

SettingsStore::~SettingsStore() = default;
SettingsStore::SettingsStore(SettingsStore&&) noexcept = default;
SettingsStore& SettingsStore::operator=(SettingsStore&&) noexcept = default;

std::filesystem::path SettingsStore::defaultFile() {
  const auto env = [](const char* name) -> std::string {
    const char* value = std::getenv(name);
    return value ? value : "";
  };
  std::filesystem::path folder = env("LOMARIN_CONFIG_DIR");
  if (folder.empty()) {
    std::filesystem::path base = env("XDG_CONFIG_HOME");
    if (!base.is_absolute()) {  // relative values are invalid and ignored
      std::filesystem::path home = env("HOME");
#if __has_include(<pwd.h>)
      if (home.empty())
        if (const passwd* entry = getpwuid(getuid())) home = entry->pw_dir;
#endif
      base = home / ".config";
    }
    folder = base / "Kestrova" / "Lomarin for MySQL";
  }
  return folder / "settings.sqlite";
}

const std::filesystem::path& SettingsStore::file() const { return impl_->file; }

std::string SettingsStore::readString(std::string_view name, std::string_view def,
                                      std::string_view keyPath) const {
  return impl_->guarded(
      [&]() -> std::string {
        sqlite3* db = impl_->db;
        Transaction transaction(db, false);
        std::string result(def);
        if (const auto key = findKey(db, keyPath)) {
          Statement query(
              db, "SELECT data FROM settings_value WHERE key_id = ?1 AND name = ?2 AND type = 'string'");
          query.bind(1, *key).bind(2, name);
          if (query.step()) result = query.text(0);
        }
        transaction.commit();
        return result;
      },
      std::string(def));
}

bool SettingsStore::readBool(std::string_view name, bool def, std::string_view keyPath) const {
  return impl_->guarded(
      [&] {
        sqlite3* db = impl_->db;
        Transaction transaction(db, false);
        bool result = def;
        if (const auto key = findKey(db, keyPath)) {
          Statement query(
              db, "SELECT data FROM settings_value WHERE key_id = ?1 AND name = ?2 AND type = 'integer'");
          query.bind(1, *key).bind(2, name);
          if (query.step()) result = query.integer(0) != 0;
        }
        transaction.commit();
        return result;
      },
      def);
}

namespace {

// Re-writing keeps the row, its id and so its place in the enumeration, and the name's first spelling.
template <typename Value>
bool writeValue(sqlite3* db, std::string_view keyPath, std::string_view name, const char* type, Value value) {
  Transaction transaction(db, true);
  const auto key = createKey(db, keyPath);
  Statement upsert(db,
                   "INSERT INTO settings_value (key_id, name, type, data) VALUES (?1, ?2, ?3, ?4)"
                   " ON CONFLICT (key_id, name) DO UPDATE SET type = excluded.type, data = excluded.data");
  upsert.bind(1, key).bind(2, name).bind(3, std::string_view(type)).bind(4, value).step();
  transaction.commit();
  return true;
}

}  // namespace

bool SettingsStore::writeString(std::string_view name, std::string_view text, std::string_view keyPath) {
  return impl_->guarded([&] { return writeValue(impl_->db, keyPath, name, "string", text); }, false);
}

bool SettingsStore::writeBool(std::string_view name, bool flag, std::string_view keyPath) {
  return impl_->guarded(
      [&] { return writeValue(impl_->db, keyPath, name, "integer", std::int64_t{flag ? 1 : 0}); }, false);
}

std::vector<std::string> SettingsStore::subKeyNames(std::string_view keyPath) const {
  return impl_->guarded(
      [&] {
        return listNames(impl_->db, keyPath, "SELECT name FROM settings_key WHERE parent = ?1 ORDER BY name");
      },
      std::vector<std::string>());
}

std::vector<std::string> SettingsStore::valueNames(std::string_view keyPath) const {
  return impl_->guarded(
      [&] {
        return listNames(impl_->db, keyPath, "SELECT name FROM settings_value WHERE key_id = ?1 ORDER BY id");
      },
      std::vector<std::string>());
}

bool SettingsStore::deleteKey(std::string_view keyPath) {
  return impl_->guarded(
      [&] {
        sqlite3* db = impl_->db;
        Transaction transaction(db, true);
        const auto key = findKey(db, keyPath);
        if (!key || *key == kRootKey) return false;
        Statement remove(db, "DELETE FROM settings_key WHERE id = ?1");  // sub-keys and values cascade
        remove.bind(1, *key).step();
        transaction.commit();
        return true;
      },
      false);
}

}  // namespace lomarin
