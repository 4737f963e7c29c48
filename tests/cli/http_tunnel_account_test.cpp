#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdio>

#include "cli_options.h"
#include "cli_test_support.h"
#include "engine/app/settings_store.h"
#include "engine/connect/accounts.h"
#include "query_command.h"
#include "test_web_server.h"

namespace lomarin::cli {
namespace {

using test::slurp;

// A fresh user whose accounts reach the server through the tunnel script, directly and through
// a proxy.
class HttpTunnelAccount : public ::testing::Test {
 protected:
  void SetUp() override {
    ::setenv("LOMARIN_CONFIG_DIR", (folder.path() / "config").c_str(), 1);
    ::setenv("LOMARIN_DATA_DIR", (folder.path() / "data").c_str(), 1);
    SettingsStore settings(SettingsStore::defaultFile());
    TAccountStore accounts(settings);
    TAccount account = test::httpTunnelAccount(web.url());
    ASSERT_TRUE(accounts.add("web", account));
    account.ProxyHost = "127.0.0.1";
    account.ProxyPort = proxy.port();
    account.ProxyLogin = "cli";
    account.ProxyPassword = "proxy-secret";
    ASSERT_TRUE(accounts.add("web-proxy", account));
  }
  void TearDown() override {
    ::unsetenv("LOMARIN_CONFIG_DIR");
    ::unsetenv("LOMARIN_DATA_DIR");
  }

  std::string query(std::vector<std::string> args, const std::string& sql) {
    args.push_back(sql);
    std::FILE* out = std::tmpfile();
    std::FILE* err = std::tmpfile();
    EXPECT_EQ(runQuery(parseArgs(args), out, err), 0) << slurp(err);
    std::string text = slurp(out);
    std::fclose(out);
    std::fclose(err);
    return text;
  }

  test::TempFolder folder;
  test::TunnelWebServer web;
  test::TestProxy proxy{"cli", "proxy-secret"};
};

TEST_F(HttpTunnelAccount, AHundredThousandRowsComeThroughByteForByte) {
  const std::string sql =
      "SELECT seq, MD5(seq) AS digest, IF(seq % 7 = 0, NULL, seq / 3) AS third, "
      "REPEAT(CHAR(seq % 256 USING latin1), seq % 40) AS text FROM lomarin_demo.seq_1_to_100000";
  const std::string direct = query(test::connectionArgs(), sql);
  ASSERT_GT(direct.size(), 100000u * 40);
  EXPECT_TRUE(query({"--account", "web"}, sql) == direct);
  EXPECT_TRUE(query({"--account", "web-proxy"}, sql) == direct);
  EXPECT_TRUE(web.awaitOpened(2));
}

}  // namespace
}  // namespace lomarin::cli
