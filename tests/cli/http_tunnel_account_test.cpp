#include <gtest/gtest.h>


#include "cli_options.h"
#include "cli_test_support.h"
#include "engine/app/settings_store.h"
#include "engine/connect/accounts.h"
#include "test_web_server.h"

namespace lomarin::cli {
namespace {

// A fresh user whose accounts reach the server through the tunnel script, directly and through
// a proxy.
class HttpTunnelAccount : public ::testing::Test {
 protected:
  void SetUp() override {
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

  std::string query(std::vector<std::string> args, const std::string& sql) {
    args.push_back(sql);
    const auto run = test::runQueryCommand(args);
    EXPECT_EQ(run.code, 0) << run.err;
    return run.out;
  }

  test::FreshUserFolders user;
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
