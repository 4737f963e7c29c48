#include "engine/connect/accounts.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "engine/app/settings_store.h"
#include "engine/connect/accounts_cipher.h"
#include "engine/connect/accounts_session.h"
#include "engine/connect/secret_vault.h"

namespace lomarin {
namespace {

const std::string kKey = std::string(key::Accounts) + "\\";

class AccountsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = std::filesystem::temp_directory_path() /
           ("lomarin-accounts-" + std::to_string(::getpid()) + "-" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::remove_all(dir_);
    settings_ = std::make_unique<SettingsStore>(dir_ / "settings.sqlite");
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  std::string raw(const std::string& account, const std::string& value) {
    return settings_->readString(value, "<missing>", kKey + account);
  }

  static TAccount sample() {
    TAccount a;
    a.Login = "alice";
    a.Password = "s3cret pw";
    a.Server = "db.example";
    a.Port = 3307;
    a.Database = "shop";
    return a;
  }

  std::filesystem::path dir_;
  std::unique_ptr<SettingsStore> settings_;
};

TEST_F(AccountsTest, ValuesAreWrittenInTheirFixedOrderWithOffValues) {
  TAccountStore store(*settings_);
  TAccount a = sample();
  a.SSHServer = "ignored while SSH is off";
  a.SSHPassword = "ignored";
  a.PHPUrl = "http://ignored";
  a.PHPSecret = "ignored";
  ASSERT_TRUE(store.add("work", a));

  const std::vector<std::string> expected{"Login",
                                          "Password",
                                          "Server",
                                          "Database Port",
                                          "Database Name",
                                          "Show All Database",
                                          "Use SSH",
                                          "SSH Server",
                                          "SSH Login",
                                          "SSH Password",
                                          "SSH Port",
                                          "SSH To Port",
                                          "SSH Forward",
                                          "Client charset",
                                          "Font charset",
                                          "Direct Connection",
                                          "Use SSL",
                                          "Client key",
                                          "Certificate authority file",
                                          "Certificate file",
                                          "Chipher list",
                                          "Unicode",
                                          "Compression",
                                          "Timeout",
                                          "Font format",
                                          "Font encoding",
                                          "SSH Client Key",
                                          "Use PHP",
                                          "PHP url",
                                          "PHP Proxy host",
                                          "PHP Proxy login",
                                          "PHP Proxy password",
                                          "PHP Proxy port",
                                          "PHP Secret",
                                          "Passwords in keychain"};
  EXPECT_EQ(settings_->valueNames(kKey + "work"), expected);

  EXPECT_EQ(raw("work", "Database Port"), "3307");
  EXPECT_EQ(raw("work", "Show All Database"), "0");
  EXPECT_EQ(raw("work", "Direct Connection"), "-1");
  EXPECT_EQ(raw("work", "Use SSH"), "0");
  EXPECT_EQ(raw("work", "SSH Port"), "22");
  EXPECT_EQ(raw("work", "PHP Proxy port"), "808");
  for (const char* blank :
       {"SSH Server", "SSH Login", "SSH Password", "SSH To Port", "SSH Forward", "SSH Client Key", "PHP url",
        "PHP Proxy host", "PHP Proxy login", "PHP Proxy password", "PHP Secret"})
    EXPECT_EQ(raw("work", blank), "") << blank;
}

TEST_F(AccountsTest, PasswordsAreNeverStoredInClearAndComeBackOnLoad) {
  TAccountStore store(*settings_);
  TAccount a = sample();
  a.UseSSH = true;
  a.SSHServer = "gate";
  a.SSHLogin = "bob";
  a.SSHPassword = "ssh pw";
  a.SSHPort = 2222;
  a.UsePHP = true;
  a.PHPUrl = "http://web/tunnel.php";
  a.ProxyHost = "proxy";
  a.ProxyPassword = "proxy pw";
  a.ProxyPort = 3128;
  a.PHPSecret = "tunnel secret";
  a.UseSSL = true;
  a.SSLCACert = "/ca.pem";
  a.Timeout = 20;
  a.ClientCharset = "latin1";
  ASSERT_TRUE(store.add("full", a));

  EXPECT_EQ(raw("full", "Password"), encipher("s3cret pw"));
  EXPECT_EQ(raw("full", "SSH Password"), encipher("ssh pw"));
  EXPECT_EQ(raw("full", "PHP Proxy password"), encipher("proxy pw"));
  EXPECT_EQ(raw("full", "PHP Secret"), encipher("tunnel secret"));
  for (const char* plain : {"s3cret pw", "ssh pw", "proxy pw", "tunnel secret"})
    for (const auto& name : settings_->valueNames(kKey + "full"))
      EXPECT_EQ(raw("full", name).find(plain), std::string::npos) << name;

  EXPECT_EQ(store.load("full"), a);
  EXPECT_EQ(store.load("FULL"), a) << "account names compare like registry keys";
  EXPECT_FALSE(store.load("missing"));
}

TEST_F(AccountsTest, ListReadsLoginServerAndDatabaseByPosition) {
  TAccountStore store(*settings_);
  TAccount ssh = sample();
  ssh.UseSSH = true;
  ASSERT_TRUE(store.add("b-ssh", ssh));
  ASSERT_TRUE(store.add("a-plain", sample()));
  // A key written by hand in another order is read by position all the same.
  settings_->writeString("Server", "first", kKey + "c-odd");
  settings_->writeString("Login", "second", kKey + "c-odd");
  settings_->writeString("Database Name", "third", kKey + "c-odd");

  const auto rows = store.list();
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[0].Name, "a-plain");
  EXPECT_EQ(rows[0].Login, "alice");
  EXPECT_EQ(rows[0].Server, "db.example");
  EXPECT_EQ(rows[0].Database, "shop");
  EXPECT_FALSE(rows[0].UsesSSH);
  EXPECT_EQ(rows[1].Name, "b-ssh");
  EXPECT_TRUE(rows[1].UsesSSH);
  EXPECT_EQ(rows[2].Login, "first");
  EXPECT_EQ(rows[2].Server, "third");
  EXPECT_EQ(rows[2].Database, "");
  EXPECT_FALSE(rows[2].UsesSSH);
}

TEST_F(AccountsTest, DuplicateNamesAreRefusedAndEditKeepsTheOrder) {
  TAccountStore store(*settings_);
  ASSERT_TRUE(store.add("main", sample()));
  TAccount other = sample();
  other.Login = "mallory";
  EXPECT_FALSE(store.add("main", other));
  EXPECT_FALSE(store.add("MAIN", other));
  EXPECT_FALSE(store.add("", other));
  EXPECT_FALSE(store.add("a\\b", other));
  EXPECT_EQ(store.names(), std::vector<std::string>{"main"});
  EXPECT_EQ(store.load("main")->Login, "alice");

  const auto order = settings_->valueNames(kKey + "main");
  other.UseSSH = true;
  ASSERT_TRUE(store.save("main", other));
  EXPECT_EQ(store.load("main")->Login, "mallory");
  EXPECT_EQ(settings_->valueNames(kKey + "main"), order);

  EXPECT_TRUE(store.remove("main"));
  EXPECT_TRUE(store.names().empty());
  EXPECT_TRUE(settings_->valueNames(kKey + "main").empty());
}

// A keychain that can stop answering or refuse writes, which a real one does at awkward moments.
class FickleKeychain : public SecretVault {
 public:
  bool answers = true;
  // Writes it still takes before it refuses; negative: no limit.
  int writesLeft = -1;
  std::map<std::string, std::string> secrets;

  bool available() override { return answers; }
  std::optional<std::string> read(const std::string& key) override {
    if (!answers) return std::nullopt;
    const auto found = secrets.find(key);
    return found == secrets.end() ? std::string() : found->second;
  }
  bool write(const std::string& key, const std::string& secret) override {
    if (!answers || writesLeft == 0) return false;
    if (writesLeft > 0) --writesLeft;
    secrets[key] = secret;
    return true;
  }
  bool remove(const std::string& key) override {
    if (answers) secrets.erase(key);
    return answers;
  }
};

TEST_F(AccountsTest, RefusedKeychainKeepsThePasswordsEncipheredAndNoneBehind) {
  FickleKeychain keychain;
  keychain.writesLeft = 1;
  TAccountStore store(*settings_, &keychain);
  TAccount a = sample();
  a.UseSSH = true;
  a.SSHPassword = "ssh pw";
  ASSERT_TRUE(store.add("work", a));

  EXPECT_TRUE(store.keptOutOfKeychain());
  EXPECT_EQ(raw("work", "Password"), encipher("s3cret pw"));
  EXPECT_EQ(raw("work", "SSH Password"), encipher("ssh pw"));
  EXPECT_EQ(raw("work", "Passwords in keychain"), "0");
  EXPECT_TRUE(keychain.secrets.empty()) << "the one password it took is taken back";
  EXPECT_EQ(store.load("work"), a);
}

TEST_F(AccountsTest, MovingPasswordsWhileTheKeychainIsAwayLosesNone) {
  FickleKeychain keychain;
  TAccountStore store(*settings_, &keychain);
  TAccount a = sample();
  a.UseSSH = true;
  a.SSHPassword = "ssh pw";
  a.UsePHP = true;
  a.ProxyPassword = "proxy pw";
  a.PHPSecret = "tunnel secret";
  ASSERT_TRUE(store.add("Work", a));
  EXPECT_FALSE(store.keptOutOfKeychain());
  EXPECT_EQ(raw("Work", "Password"), "");
  EXPECT_EQ(raw("Work", "PHP Secret"), "");
  EXPECT_EQ(keychain.secrets.at("Work\\PHP Secret"), "tunnel secret");
  EXPECT_EQ(store.load("WORK"), a) << "keychain entries follow the stored spelling of the name";

  settings_->write(opt::PasswordsInKeychain, false);
  keychain.answers = false;
  EXPECT_EQ(store.moveSecrets(), std::vector<std::string>{"Work"});
  EXPECT_EQ(raw("Work", "Passwords in keychain"), "-1");
  EXPECT_EQ(keychain.secrets.size(), 4u);

  keychain.answers = true;
  EXPECT_TRUE(store.moveSecrets().empty());
  EXPECT_EQ(raw("Work", "Password"), encipher("s3cret pw"));
  EXPECT_EQ(raw("Work", "PHP Proxy password"), encipher("proxy pw"));
  EXPECT_EQ(raw("Work", "Passwords in keychain"), "0");
  EXPECT_TRUE(keychain.secrets.empty());
  EXPECT_EQ(store.load("Work"), a);

  // Back in, and a refusal half-way leaves it where it was.
  settings_->write(opt::PasswordsInKeychain, true);
  keychain.writesLeft = 3;
  EXPECT_EQ(store.moveSecrets(), std::vector<std::string>{"Work"});
  EXPECT_EQ(raw("Work", "Password"), encipher("s3cret pw"));
  EXPECT_TRUE(keychain.secrets.empty());
  keychain.writesLeft = -1;
  EXPECT_TRUE(store.moveSecrets().empty());
  EXPECT_EQ(store.load("Work"), a);

  EXPECT_TRUE(store.remove("work"));
  EXPECT_TRUE(keychain.secrets.empty());
}

TEST_F(AccountsTest, SshPasswordMigrationRunsOnce) {
  settings_->writeString("SSH Password", "old plain", kKey + "legacy");
  settings_->writeString("SSH Password", "", kKey + "nossh");
  TAccountStore store(*settings_);

  EXPECT_TRUE(store.migrateSshPasswords());
  EXPECT_EQ(raw("legacy", "SSH Password"), encipher("old plain"));
  EXPECT_EQ(raw("nossh", "SSH Password"), "");
  EXPECT_EQ(settings_->read(opt::EncryptSsh), "1");

  EXPECT_FALSE(store.migrateSshPasswords());
  EXPECT_EQ(raw("legacy", "SSH Password"), encipher("old plain")) << "not enciphered twice";
}

TEST_F(AccountsTest, LocalSandboxAccountIsCreatedOnlyWhenMissing) {
  EXPECT_TRUE(ensureLocalSandboxAccount(*settings_, "127.0.0.1", 4000, "root", "pw", "lomarin_demo"));
  TAccountStore store(*settings_);
  TAccount changed = *store.load(kLocalSandboxAccount);
  EXPECT_EQ(changed.Port, 4000);
  EXPECT_EQ(changed.Password, "pw");
  changed.Port = 4001;
  store.save(kLocalSandboxAccount, changed);
  EXPECT_FALSE(ensureLocalSandboxAccount(*settings_, "127.0.0.1", 4000, "root", "pw", "x"));
  EXPECT_EQ(store.load(kLocalSandboxAccount)->Port, 4001);
}

TEST(AccountsSession, CopiesTheDialogValuesOntoTheSession) {
  TAccount a;
  a.Login = "u";
  a.Password = "p";
  a.Server = "h";
  a.Port = 3310;
  a.Database = "shop";
  a.Compression = true;
  a.SSLCACert = "/ca.pem";
  a.Timeout = 14;

  TMySessionSettings s;
  s.Charset = "stale";
  s.ConnectionTimeout = 30;
  s.SSL.CACert = "/stale.pem";
  EXPECT_EQ(applyAccountToSession(a, s), "'shop'");
  EXPECT_EQ(s.Username, "u");
  EXPECT_EQ(s.Password, "p");
  EXPECT_EQ(s.Server, "h");
  EXPECT_EQ(s.Port, 3310);
  EXPECT_EQ(s.Database, "shop");
  EXPECT_TRUE(s.Compress);
  EXPECT_EQ(s.Protocol, TMyProtocol::Default);
  EXPECT_EQ(s.Charset, "") << "\"default\" leaves the charset unset";
  EXPECT_EQ(s.ConnectionTimeout, 0) << "below 15 the library default stays";
  EXPECT_FALSE(s.UseSSL);
  EXPECT_EQ(s.SSL.CACert, "") << "SSL files only when SSL is chosen";

  a.ClientCharset = "latin1";
  a.Timeout = 15;
  a.UseSSL = true;
  a.ShowAllDatabases = true;
  EXPECT_EQ(applyAccountToSession(a, s), "");
  EXPECT_EQ(s.Charset, "latin1");
  EXPECT_EQ(s.ConnectionTimeout, 15);
  EXPECT_TRUE(s.UseSSL);
  EXPECT_EQ(s.SSL.CACert, "/ca.pem");
}

TEST(AccountsSession, TheHttpTunnelTakesTheProxyOnlyWhenItsHostIsSet) {
  TAccount a;
  a.UsePHP = true;
  a.PHPUrl = "https://web/tunnel.php";
  a.PHPSecret = "s";
  a.ProxyLogin = "who";
  a.ProxyPassword = "pw";
  TMySessionSettings s;
  s.Http.ProxyHost = "stale";
  applyAccountToSession(a, s);
  EXPECT_EQ(s.Protocol, TMyProtocol::Http);
  EXPECT_EQ(s.Http.Url, "https://web/tunnel.php");
  EXPECT_EQ(s.Http.Secret, "s");
  EXPECT_EQ(s.Http.ProxyHost, "");
  EXPECT_EQ(s.Http.ProxyUser, "");

  a.ProxyHost = "proxy";
  a.ProxyPort = 3128;
  applyAccountToSession(a, s);
  EXPECT_EQ(s.Http.ProxyHost, "proxy");
  EXPECT_EQ(s.Http.ProxyPort, 3128);
  EXPECT_EQ(s.Http.ProxyUser, "who");
  EXPECT_EQ(s.Http.ProxyPassword, "pw");

  a.UsePHP = false;
  applyAccountToSession(a, s);
  EXPECT_EQ(s.Protocol, TMyProtocol::Default);
  EXPECT_EQ(s.Http.Url, "");
  EXPECT_EQ(s.Http.ProxyHost, "");
}

}  // namespace
}  // namespace lomarin
