#include "engine/app/settings_store.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <thread>

namespace lomarin {
namespace {

namespace fs = std::filesystem;

// A store cannot turn a text into a Boolean by accident.
template <typename T>
concept WritableAsFlag = requires(SettingsStore& s, T value) {
  s.write(opt::SqlTrace, value);
};
static_assert(WritableAsFlag<bool> && !WritableAsFlag<const char*> && !WritableAsFlag<std::string>);

std::string bytesOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void writeBytes(const fs::path& file, const std::string& bytes, std::streamoff at = 0) {
  std::fstream out(file, std::ios::binary | std::ios::in | std::ios::out);
  if (!out) out.open(file, std::ios::binary | std::ios::out);
  out.seekp(at);
  out << bytes;
}

void sql(const fs::path& file, const char* text) {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(db, text, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
  sqlite3_close(db);
}

std::pair<std::string_view, std::string_view> keyAndName(const Option& option) {
  return std::visit([](const auto& o) { return std::pair(o.keyPath, o.name); }, option);
}

// The stored options as users and earlier versions know them: "name|type|default", one a line,
// blanks kept; "none" where the dialog's current state is the default.
constexpr std::string_view kOptionsValues = R"(Default DataBase Port|string|none
 Auto Commit|bool|false
Safe Transaction|bool|false
SavePassWord|bool|false
 Default Host Option |bool|false
Menu Skin |string|none
FetchAll Records|bool|false
Drop Object|bool|true
SQL Trace|bool|false
SQL Tree Enable|bool|true
Script Execution Optime |bool|false
Allow mark object in the SQL editor|bool|false
Skin Type|string|"1"
Load objects in database change|bool|false
Project Directory |string|none
Mysql Bin Directory |string|""
Backup Directory |string|none
Certificates path |string|none
Font Size |string|"10"
Editor Font |string|"Courier New"
WantsReturns|bool|false
RowAutoHeight|bool|false
AutoSearch|bool|false
GroupFooters |bool|false
ColumnAutoWidth|bool|false
Row Sizing|bool|true
Next cell on pressing Enter|bool|false
Next cell on pressing Tab|bool|false
Focus Firts cell on new record|bool|false
Group Row Style|bool|true
Value List for Foreing Keys|bool|false
Cell Hints|bool|false
Columns Best Fit|bool|true
Deleting Confirmation|bool|false
chkColumn Hiding|bool|false
chkColumn Hiding on Grouping|bool|true
Row Number|bool|false
Filter Value List|bool|false
Show All Databases|bool|false
Font|string|none
Font Charset|string|"4"
Font Size|string|"8"
Use Limit|bool|false
Limit Size|string|"100"
Limit Increment Value|string|"100"
Gutter Visible |bool|true
Auto Size |bool|false
Show Lines |bool|false
Show leading zeros|bool|false
Extra Lines |string|none
Tab Width |string|"8"
Right Edge|string|none
Auto indent|bool|true
Drag and drop editing|bool|false
Drag and drop files|bool|false
Alt sets column mode|bool|false
Maintain caret column|bool|false
Want tabs|bool|false
Smart tabs|bool|false
Smart tab delete|bool|false
Right mouse moves cursor|bool|false
Enhance Home Key|bool|false
Half page scroll|bool|false
Scroll by one less|bool|false
Scroll past end of file|bool|false
Scroll past end of line|bool|false
Show scroll hint|bool|false
Scroll hint follows mouse|bool|false
Tabs to spaces|bool|false
Trim trailing spaces|bool|false
Group undo|bool|false
Disable scroll arrows|bool|false
Show Special Chars|bool|false
Editor Encoding|string|"ANSI"
Editor Format|string|"Default"
Editor Charset|string|"Default"
)";

constexpr std::string_view kQueryBuilderValues = R"(Syntax SQL provider|string|"MySQL"
Link painting style|string|"MS Access style"
Add object list style|string|"List style"
Bk image darkness|string|"Light gray on White"
Border style|string|"3D style"
Enable word wrap|bool|false
Show Fields|bool|true
Show From|bool|true
Include all schemas|bool|false
Schema autoexpand|bool|false
Expand Fields Nodes|bool|true
Expand From Nodes|bool|true
Expand uery Nodes|bool|true
Expand Unions Nodes|bool|true
Tree Grouping|string|"5"
Show User Table|bool|true
Show User View|bool|true
Show User Procedure|bool|false
Show System Table|bool|false
Show System View|bool|false
Show System Procedure|bool|false
)";

constexpr std::string_view kStartingUserValues = R"(Procedures |bool|false
Functions |bool|false
Triggers |bool|false
Tables |bool|true
Wiews |bool|true
UDF |bool|false
)";

// Values of the options key that other windows read.
constexpr std::string_view kOtherOptionsValues = R"(Output with statment |bool|false
Output Size|string|"80"
Encrypt SSH|string|"0"
Default Password |string|none
Default Database Host|string|none
)";

constexpr std::string_view kOptionsKey = R"(\SOFTWARE\Kestrova\Lomarin for MySQL\Options)";

std::vector<std::string> pinnedLines(std::string_view keyPath, std::string_view values) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < values.size();) {
    const std::size_t end = values.find('\n', at);
    lines.push_back(std::string(keyPath) + "|" + std::string(values.substr(at, end - at)));
    at = end + 1;
  }
  return lines;
}

// The same form for the program's own table.
std::string lineOf(const Option& option) {
  if (const auto* flag = std::get_if<BoolOption>(&option))
    return std::string(flag->keyPath) + "|" + std::string(flag->name) + "|bool|" +
           (flag->def ? "true" : "false");
  const auto& text = std::get<StringOption>(option);
  return std::string(text.keyPath) + "|" + std::string(text.name) + "|string|" +
         (text.def ? '"' + std::string(*text.def) + '"' : "none");
}

class SettingsStoreTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = fs::temp_directory_path() / ("lomarin-settings-" + std::to_string(getpid()) + "-" +
                                           ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(folder_);
    file_ = folder_ / "sub" / "settings.sqlite";
  }
  void TearDown() override { fs::remove_all(folder_); }

  fs::path folder_;
  fs::path file_;
};

TEST_F(SettingsStoreTest, FreshStoreReadsEveryDefaultAndWritesNothing) {
  SettingsStore store(file_);
  ASSERT_TRUE(fs::exists(file_));
  for (const auto& option : allOptions()) {
    if (const auto* flag = std::get_if<BoolOption>(&option)) {
      EXPECT_EQ(store.read(*flag), flag->def) << flag->name;
    } else {
      const auto& text = std::get<StringOption>(option);
      if (text.def) {
        EXPECT_EQ(store.read(text), *text.def) << text.name;
      }
      EXPECT_EQ(store.read(text, "caller's"), "caller's") << text.name;
    }
  }
  EXPECT_EQ(store.read(opt::BackupDirectory), "");
  EXPECT_TRUE(store.subKeyNames("").empty());
  EXPECT_TRUE(store.valueNames(key::Options).empty());
}

TEST_F(SettingsStoreTest, TableHoldsTheKnownNamesTypesAndDefaults) {
  std::vector<std::string> expected = pinnedLines(kOptionsKey, kOptionsValues);
  EXPECT_EQ(expected.size(), 76u);
  for (const auto& line :
       pinnedLines(R"(\SOFTWARE\Kestrova\Lomarin for MySQL\Options\QueryBuilder)", kQueryBuilderValues))
    expected.push_back(line);
  for (const auto& line :
       pinnedLines(R"(\SOFTWARE\Kestrova\Lomarin for MySQL\Starting\User)", kStartingUserValues))
    expected.push_back(line);
  std::vector<std::string> dialog;
  for (const auto& option : dialogOptions()) dialog.push_back(lineOf(option));
  EXPECT_EQ(dialog, expected);

  std::set<std::string> all;
  for (const auto& option : allOptions()) all.insert(lineOf(option));
  for (const auto& line : pinnedLines(kOptionsKey, kOtherOptionsValues)) EXPECT_TRUE(all.count(line)) << line;

  std::set<std::pair<std::string_view, std::string>> seen;
  for (const auto& option : allOptions()) {
    auto [keyPath, name] = keyAndName(option);
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), ::tolower);
    EXPECT_TRUE(seen.emplace(keyPath, lower).second) << name;
  }
}

TEST_F(SettingsStoreTest, EveryOptionRoundTripsUnderItsExactName) {
  std::vector<std::string> optionsKeyNames;
  {
    SettingsStore store(file_);
    int n = 0;
    for (const auto& option : allOptions()) {
      if (const auto* flag = std::get_if<BoolOption>(&option)) {
        ASSERT_TRUE(store.write(*flag, !flag->def));
      } else {
        ASSERT_TRUE(store.write(std::get<StringOption>(option), "value " + std::to_string(n)));
      }
      if (keyAndName(option).first == key::Options) optionsKeyNames.emplace_back(keyAndName(option).second);
      ++n;
    }
  }
  SettingsStore store(file_);
  int n = 0;
  for (const auto& option : allOptions()) {
    if (const auto* flag = std::get_if<BoolOption>(&option)) {
      EXPECT_EQ(store.read(*flag), !flag->def) << flag->name;
    } else {
      EXPECT_EQ(store.read(std::get<StringOption>(option)), "value " + std::to_string(n));
    }
    ++n;
  }
  EXPECT_EQ(store.valueNames(key::Options), optionsKeyNames);
  EXPECT_EQ(store.subKeyNames(key::Options), std::vector<std::string>{"QueryBuilder"});
  EXPECT_EQ(store.subKeyNames(key::Vendor), (std::vector<std::string>{"Options", "Starting"}));
}

TEST_F(SettingsStoreTest, NamesMatchCaseInsensitivelyButBlanksCount) {
  SettingsStore store(file_);
  ASSERT_TRUE(store.writeString("Font Size", "8", key::Options));
  ASSERT_TRUE(store.writeString("Font Size ", "12", key::Options));
  EXPECT_EQ(store.readString("Font Size", "", key::Options), "8");
  EXPECT_EQ(store.readString("Font Size ", "", key::Options), "12");
  EXPECT_EQ(store.readString(" Font Size", "none", key::Options), "none");

  // Lookup ignores case and the leading backslash of the key path; stored spelling stays the first one.
  ASSERT_TRUE(store.writeBool("SQL Trace", true, key::Options));
  const auto sameKey = R"(software\KESTROVA\lomarin for mysql\options)";
  EXPECT_TRUE(store.readBool("sql trace", false, sameKey));
  ASSERT_TRUE(store.writeBool("sql TRACE", false, sameKey));
  EXPECT_FALSE(store.read(opt::SqlTrace));
  EXPECT_EQ(store.valueNames(key::Options),
            (std::vector<std::string>{"Font Size", "Font Size ", "SQL Trace"}));
  EXPECT_EQ(store.subKeyNames(key::Vendor), std::vector<std::string>{"Options"});
}

TEST_F(SettingsStoreTest, ValueOfTheOtherTypeReadsAsDefault) {
  SettingsStore store(file_);
  ASSERT_TRUE(store.writeString("Use Limit", "1", key::Options));
  ASSERT_TRUE(store.writeBool("Limit Size", true, key::Options));
  EXPECT_FALSE(store.read(opt::UseLimit));
  EXPECT_EQ(store.read(opt::LimitSize), "100");

  // A re-write may change the type; the newest type wins.
  ASSERT_TRUE(store.write(opt::UseLimit, true));
  EXPECT_TRUE(store.read(opt::UseLimit));
  EXPECT_EQ(store.readString("Use Limit", "gone", key::Options), "gone");
  ASSERT_TRUE(store.write(opt::LimitSize, ""));
  EXPECT_EQ(store.read(opt::LimitSize), "");  // empty is a value, not a missing one
}

TEST_F(SettingsStoreTest, ValuesEnumerateInFirstWriteOrderUntilTheKeyIsDeleted) {
  SettingsStore store(file_);
  const auto account = std::string(key::Accounts) + R"(\local)";
  for (const char* name : {"Login", "Password", "Server", "Database Port"})
    store.writeString(name, "x", account);
  store.writeString("Server", "changed", account);
  store.writeString("login", "changed", account);
  EXPECT_EQ(store.valueNames(account),
            (std::vector<std::string>{"Login", "Password", "Server", "Database Port"}));
  EXPECT_EQ(store.readString("Server", "", account), "changed");

  ASSERT_TRUE(store.deleteKey(account));
  EXPECT_TRUE(store.valueNames(account).empty());
  EXPECT_EQ(store.readString("Server", "missing", account), "missing");
  store.writeString("Server", "y", account);
  store.writeString("Login", "y", account);
  EXPECT_EQ(store.valueNames(account), (std::vector<std::string>{"Server", "Login"}));
}

TEST_F(SettingsStoreTest, SubKeysSortCaseInsensitivelyAndDeleteWithTheirKey) {
  SettingsStore store(file_);
  const std::string accounts(key::Accounts);
  for (const char* name : {"zeta", "alpha", "Beta", R"(beta\nested\deeper)"})
    ASSERT_TRUE(store.writeString("Login", name, accounts + "\\" + name));
  EXPECT_EQ(store.subKeyNames(accounts), (std::vector<std::string>{"alpha", "Beta", "zeta"}));
  EXPECT_EQ(store.subKeyNames(accounts + R"(\BETA)"), std::vector<std::string>{"nested"});
  EXPECT_EQ(store.subKeyNames(R"(\SOFTWARE\Kestrova)"), std::vector<std::string>{"Lomarin for MySQL"});
  EXPECT_EQ(store.subKeyNames(""), std::vector<std::string>{"SOFTWARE"});
  EXPECT_TRUE(store.subKeyNames(accounts + R"(\missing)").empty());

  ASSERT_TRUE(store.deleteKey(accounts + R"(\beta)"));
  EXPECT_EQ(store.subKeyNames(accounts), (std::vector<std::string>{"alpha", "zeta"}));
  EXPECT_EQ(store.readString("Login", "gone", accounts + R"(\beta\nested\deeper)"), "gone");
  ASSERT_TRUE(store.deleteKey(accounts));
  EXPECT_FALSE(store.deleteKey(accounts));
  EXPECT_FALSE(store.deleteKey(""));
  EXPECT_EQ(store.subKeyNames(key::Vendor), std::vector<std::string>{});
}

TEST_F(SettingsStoreTest, WritesOfOtherStoresAreSeenOnTheNextRead) {
  SettingsStore first(file_);
  SettingsStore second(file_);
  EXPECT_EQ(second.read(opt::OutputSize), "80");
  ASSERT_TRUE(first.write(opt::OutputSize, "120"));
  EXPECT_EQ(second.read(opt::OutputSize), "120");
  ASSERT_TRUE(second.deleteKey(key::Options));
  EXPECT_EQ(first.read(opt::OutputSize), "80");
}

TEST_F(SettingsStoreTest, ConcurrentWritersInThreadsAndProcessesLoseNothing) {
  // Enough to interleave; longer tight loops starve one writer past the busy time-out on a loaded machine.
  constexpr int kPerWriter = 100;
  SettingsStore{file_};  // created up front so that every writer opens an existing file
  const auto writeMany = [](SettingsStore& store, const std::string& who) {
    int failures = 0;
    for (int i = 0; i < kPerWriter; ++i)
      failures += !store.writeString(who + std::to_string(i), std::to_string(i * 7), key::Options);
    return failures;
  };

  std::vector<pid_t> children;
  for (const char* who : {"fork-a ", "fork-b "}) {
    const pid_t pid = fork();
    ASSERT_NE(pid, -1);
    if (pid == 0) {
      SettingsStore own(file_);
      _exit(writeMany(own, who) == 0 ? 0 : 1);
    }
    children.push_back(pid);
  }
  SettingsStore shared(file_);  // one object used by two threads at once
  int threadFailures[3] = {};
  std::thread threadA([&] { threadFailures[0] = writeMany(shared, "thread-a "); });
  std::thread threadB([&] { threadFailures[1] = writeMany(shared, "thread-b "); });
  std::thread threadC([&] {
    SettingsStore own(file_);
    threadFailures[2] = writeMany(own, "thread-c ");
  });
  threadA.join();
  threadB.join();
  threadC.join();
  for (const pid_t pid : children) {
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  EXPECT_EQ(threadFailures[0] + threadFailures[1] + threadFailures[2], 0);

  SettingsStore store(file_);
  EXPECT_EQ(store.valueNames(key::Options).size(), 5u * kPerWriter);
  for (const char* who : {"fork-a ", "fork-b ", "thread-a ", "thread-b ", "thread-c "})
    for (int i = 0; i < kPerWriter; ++i)
      ASSERT_EQ(store.readString(who + std::to_string(i), "lost", key::Options), std::to_string(i * 7))
          << who << i;
}

TEST_F(SettingsStoreTest, DamagedFilesAreReportedAndLeftUntouched) {
  fs::create_directories(file_.parent_path());
  const auto expectReported = [&](const std::string& what) {
    const auto before = bytesOf(file_);
    for (auto access : {SettingsStore::Access::ReadWrite, SettingsStore::Access::ReadOnly}) {
      try {
        SettingsStore store(file_, access);
        ADD_FAILURE() << what << ": opened";
      } catch (const SettingsError& error) {
        EXPECT_NE(std::string(error.what()).find(file_.string()), std::string::npos) << error.what();
        EXPECT_EQ(error.file(), file_);
      }
    }
    EXPECT_EQ(bytesOf(file_), before) << what;
    EXPECT_EQ(std::distance(fs::directory_iterator(file_.parent_path()), {}), 1) << what;  // no journal left
    fs::remove_all(file_.parent_path());
    fs::create_directories(file_.parent_path());
  };

  writeBytes(file_, std::string(3000, '\x5a') + "not a database");
  expectReported("garbage");

  sql(file_, "CREATE TABLE other (x); INSERT INTO other VALUES (1);");
  expectReported("another program's database");

  { SettingsStore(file_).write(opt::LimitSize, "50"); }
  sql(file_, "PRAGMA user_version = 2");
  expectReported("newer schema");

  {
    SettingsStore store(file_);
    for (int i = 0; i < 200; ++i)
      store.writeString("v" + std::to_string(i), std::string(100, 'x'), key::Options);
  }
  writeBytes(file_, std::string(4096, '\xff'), 4096);
  expectReported("corrupt pages");
}

TEST_F(SettingsStoreTest, FileDamagedWhileOpenIsReportedOnUse) {
  SettingsStore store(file_);
  ASSERT_TRUE(store.write(opt::SkinType, "2"));
  const std::string garbage(fs::file_size(file_), '\x13');
  writeBytes(file_, garbage);
  EXPECT_THROW(store.read(opt::SkinType), SettingsError);
  EXPECT_THROW(store.write(opt::SkinType, "3"), SettingsError);
  EXPECT_THROW(store.valueNames(key::Options), SettingsError);
  EXPECT_EQ(bytesOf(file_), garbage);
}

TEST_F(SettingsStoreTest, ReadOnlyStoreReadsButDoesNotWrite) {
  {
    SettingsStore missing(file_, SettingsStore::Access::ReadOnly);
    EXPECT_EQ(missing.read(opt::LimitSize), "100");
    EXPECT_FALSE(missing.write(opt::LimitSize, "5"));
    EXPECT_FALSE(fs::exists(file_));
  }
  { SettingsStore(file_).write(opt::LimitSize, "50"); }
  const auto before = bytesOf(file_);
  SettingsStore store(file_, SettingsStore::Access::ReadOnly);
  EXPECT_EQ(store.read(opt::LimitSize), "50");
  EXPECT_FALSE(store.write(opt::LimitSize, "5"));
  EXPECT_FALSE(store.deleteKey(key::Options));
  EXPECT_EQ(store.read(opt::LimitSize), "50");
  EXPECT_EQ(bytesOf(file_), before);
}

unsigned modeOf(const fs::path& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 0777 : 0;
}

class ScopedUmask {
 public:
  explicit ScopedUmask(mode_t mask) : old_(::umask(mask)) {}
  ~ScopedUmask() { ::umask(old_); }

 private:
  mode_t old_;
};

TEST_F(SettingsStoreTest, OnlyTheOwnerReachesTheFolderAndItsFiles) {
  const ScopedUmask everyoneReads(022);
  const fs::path folder = file_.parent_path();
  { SettingsStore(file_).write(opt::DefaultPassword, "secret"); }
  EXPECT_EQ(modeOf(folder), 0700u);
  EXPECT_EQ(modeOf(file_), 0600u);

  // The journals SQLite writes beside the file while a change is under way, in both journal modes.
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(file_.c_str(), &db), SQLITE_OK);
  const auto exec = [db](const char* text) {
    EXPECT_EQ(sqlite3_exec(db, text, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
  };
  exec("BEGIN IMMEDIATE; UPDATE settings_value SET data = 'other'");
  EXPECT_EQ(modeOf(folder / "settings.sqlite-journal"), 0600u);
  exec("ROLLBACK; PRAGMA journal_mode = WAL; BEGIN IMMEDIATE; UPDATE settings_value SET data = 'other'");
  EXPECT_EQ(modeOf(folder / "settings.sqlite-wal"), 0600u);
  EXPECT_EQ(modeOf(folder / "settings.sqlite-shm"), 0600u);
  exec("ROLLBACK; PRAGMA journal_mode = DELETE");
  sqlite3_close(db);

  // What an earlier version left readable to all is tightened at the next start.
  writeBytes(folder / "known_hosts", "host key\n");
  fs::permissions(folder / "known_hosts", fs::perms(0644));
  fs::permissions(file_, fs::perms(0644));
  fs::permissions(folder, fs::perms(0755));
  EXPECT_EQ(SettingsStore(file_).read(opt::DefaultPassword), "secret");
  EXPECT_EQ(modeOf(folder), 0700u);
  EXPECT_EQ(modeOf(file_), 0600u);
  EXPECT_EQ(modeOf(folder / "known_hosts"), 0600u);
}

class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    value ? setenv(name, value, 1) : unsetenv(name);
  }
  ~ScopedEnv() { old_ ? setenv(name_, old_->c_str(), 1) : unsetenv(name_); }

 private:
  const char* name_;
  std::optional<std::string> old_;
};

TEST_F(SettingsStoreTest, DefaultFileFollowsTheEnvironment) {
  ScopedEnv home("HOME", "/home/someone");
  {
    ScopedEnv config("LOMARIN_CONFIG_DIR", nullptr);
    {
      ScopedEnv xdg("XDG_CONFIG_HOME", "/xdg");
      EXPECT_EQ(SettingsStore::defaultFile(), "/xdg/Kestrova/Lomarin for MySQL/settings.sqlite");
    }
    for (const char* ignored : {"", "relative/dir"}) {
      ScopedEnv xdg("XDG_CONFIG_HOME", ignored);
      EXPECT_EQ(SettingsStore::defaultFile(),
                "/home/someone/.config/Kestrova/Lomarin for MySQL/settings.sqlite");
    }
  }
  ScopedEnv config("LOMARIN_CONFIG_DIR", (folder_ / "cfg").c_str());
  EXPECT_EQ(SettingsStore::defaultFile(), folder_ / "cfg" / "settings.sqlite");
  SettingsStore(SettingsStore::defaultFile()).write(opt::SqlTrace, true);
  EXPECT_TRUE(SettingsStore(folder_ / "cfg" / "settings.sqlite").read(opt::SqlTrace));
}

}  // namespace
}  // namespace lomarin
