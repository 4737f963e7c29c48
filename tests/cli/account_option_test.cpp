#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "cli_options.h"
#include "cli_test_support.h"
#include "dump_command.h"
#include "engine/app/data_folder.h"
#include "engine/app/settings_store.h"
#include "engine/connect/accounts.h"
#include "engine/connect/ssh_error.h"
#include "engine/connect/ssh_key_store.h"
#include "exec_command.h"
#include "query_command.h"
#include "test_ssh_server.h"

namespace lomarin::cli {
namespace {

using test::slurp;

// The settings and data folders of a fresh user, holding one account that uses the SSH tunnel.
class AccountOption : public ::testing::Test {
 protected:
  void SetUp() override {
    const TSshKeyStore keys(dataFolder());
    keys.newClientKey("cli", TSshKeyType::Ed25519);
    test::authorizeKey(keys.publicLine("cli"));
    TAccount account = test::sshAccount();
    account.SSHClientKey = "cli";
    SettingsStore settings(SettingsStore::defaultFile());
    ASSERT_TRUE(TAccountStore(settings).add("tunnelled", account));
  }
  test::FreshUserFolders user;
  std::FILE* out = std::tmpfile();
  std::FILE* err = std::tmpfile();
};

TEST_F(AccountOption, QueryExecAndDumpConnectThroughTheAccountsTunnel) {
  EXPECT_EQ(parseArgs({"--account=tunnelled"}).account, "tunnelled");
  EXPECT_EQ(runQuery(parseArgs({"--account", "tunnelled", "SELECT @@port AS port"}), out, err), 0);
  EXPECT_EQ(slurp(out), "port\n" + std::to_string(test::serverSettings().Port) + "\n");
  EXPECT_EQ(slurp(err), "");

  std::FILE* script = std::tmpfile();
  EXPECT_EQ(
      runDump(parseArgs({"--account", "tunnelled", "lomarin_demo", "--tables=categories"}), script, err), 0)
      << slurp(err);
  EXPECT_NE(slurp(script).find("CREATE TABLE `categories`"), std::string::npos);
  std::fclose(script);

  const auto file = user.folder.path() / "script.sql";
  std::ofstream(file) << "DROP DATABASE IF EXISTS cli_account;\nCREATE DATABASE cli_account;\n"
                         "CREATE TABLE cli_account.t (n INT);\nINSERT INTO cli_account.t VALUES (7);\n";
  EXPECT_EQ(runExec(parseArgs({"--account", "tunnelled", file.string()}), err), 0) << slurp(err);
  auto direct = test::connect();
  EXPECT_EQ(test::scalar(*direct, "SELECT n FROM cli_account.t"), "7");
  test::sideExec("DROP DATABASE cli_account");
}

TEST_F(AccountOption, AnUnknownAccountOrAMissingKeyFailsWithItsReason) {
  EXPECT_THROW(runQuery(parseArgs({"--account", "nobody", "SELECT 1"}), out, err), std::invalid_argument);
  SettingsStore settings(SettingsStore::defaultFile());
  TAccount account = test::sshAccount();
  account.SSHClientKey = "gone";
  ASSERT_TRUE(TAccountStore(settings).add("keyless", account));
  try {
    runQuery(parseArgs({"--account", "keyless", "SELECT 1"}), out, err);
    FAIL() << "connected without the key";
  } catch (const TSshError& error) {
    EXPECT_STREQ(error.what(), "Private key can not be empty");
  }
}

}  // namespace
}  // namespace lomarin::cli
