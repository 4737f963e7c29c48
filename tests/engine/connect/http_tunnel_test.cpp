#include <gtest/gtest.h>

#include <filesystem>

#include "engine/connect/accounts_session.h"
#include "engine/connect/http_request.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/my_query.h"
#include "test_server.h"
#include "test_web_server.h"

namespace lomarin {
namespace {

size_t openFiles() {
  return static_cast<size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                                           std::filesystem::directory_iterator()));
}

// Every connect of these tests goes through one PHP web server.
class HttpTunnelTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { web = new test::TunnelWebServer(); }
  static void TearDownTestSuite() {
    delete web;
    web = nullptr;
  }

  void connect(TMyConnection& session, const TAccount& account) {
    applyAccountToSession(account, session.Settings);
    session.Connect();
  }

  // The message a failed connect gives; the session leaves no socket or listener behind.
  std::string connectError(const TAccount& account) {
    const size_t filesBefore = openFiles();
    TMyConnection session;
    applyAccountToSession(account, session.Settings);
    std::string message;
    try {
      session.Connect();
      ADD_FAILURE() << "connected";
    } catch (const ServerError& error) {
      message = error.what();
    }
    EXPECT_FALSE(session.Connected());
    EXPECT_EQ(openFiles(), filesBefore) << message;
    return message;
  }

  TAccount account = test::httpTunnelAccount(web->url());
  static test::TunnelWebServer* web;
};

test::TunnelWebServer* HttpTunnelTest::web = nullptr;

TEST_F(HttpTunnelTest, SessionStateHoldsFromOneStatementToTheNext) {
  test::sideExec("CREATE DATABASE IF NOT EXISTS lomarin_test");
  test::sideExec("DROP TABLE IF EXISTS lomarin_test.tunnel_rows");
  test::sideExec("CREATE TABLE lomarin_test.tunnel_rows (id INT PRIMARY KEY) ENGINE=InnoDB");
  TMyConnection session;
  connect(session, account);
  EXPECT_EQ(test::scalar(session, "SELECT @@port"), std::to_string(test::serverSettings().Port));

  ASSERT_TRUE(ExecSQLText(session, "SET @tunnelled = 'kept'"));
  ASSERT_TRUE(ExecSQLText(session, "USE lomarin_test"));
  ASSERT_TRUE(ExecSQLText(session, "CREATE TEMPORARY TABLE scratch (v INT)"));
  ASSERT_TRUE(ExecSQLText(session, "INSERT INTO scratch VALUES (7)"));
  ASSERT_TRUE(ExecSQLText(session, "START TRANSACTION"));
  ASSERT_TRUE(ExecSQLText(session, "INSERT INTO tunnel_rows VALUES (1)"));
  EXPECT_EQ(test::scalar(session, "SELECT CONCAT(@tunnelled, DATABASE(), (SELECT v FROM scratch))"),
            "keptlomarin_test7");
  EXPECT_TRUE(session.InTransaction());
  EXPECT_EQ(test::scalar(*test::connect(), "SELECT COUNT(*) FROM lomarin_test.tunnel_rows"), "0");
  ASSERT_TRUE(ExecSQLText(session, "COMMIT"));
  EXPECT_EQ(test::scalar(*test::connect(), "SELECT COUNT(*) FROM lomarin_test.tunnel_rows"), "1");
}

TEST_F(HttpTunnelTest, LargePacketsBinaryBytesAndMultipleResultsPassUnchanged) {
  TMyConnection session;
  connect(session, account);
  // Bigger than one send request and one frame; every byte value on the way back.
  const std::string big(3 * 1024 * 1024 + 17, 'q');
  EXPECT_EQ(test::scalar(session, "SELECT MD5('" + big + "')"),
            test::scalar(*test::connect(), "SELECT MD5(REPEAT('q', " + std::to_string(big.size()) + "))"));
  TMyQuery bytes(session);
  bytes.SQL = "SELECT UNHEX(CONCAT(REPEAT('00FF0A0D', 100000), '5C27'))";
  bytes.Open();
  ASSERT_TRUE(bytes.Next());
  const std::string_view value = bytes.Value(0);
  ASSERT_EQ(value.size(), 400002u);
  EXPECT_EQ(value.substr(0, 8), std::string_view("\x00\xff\n\r\x00\xff\n\r", 8));
  EXPECT_EQ(value.substr(400000), "\\'");

  const TMyConnection::MultiStatements multi(session);
  TMyQuery results(session);
  results.SQL = "SELECT 1; SELECT 2";
  results.Open();
  ASSERT_TRUE(results.Next());
  EXPECT_EQ(results.Value(0), "1");
  ASSERT_TRUE(results.NextResult());
  ASSERT_TRUE(results.Next());
  EXPECT_EQ(results.Value(0), "2");
}

TEST_F(HttpTunnelTest, KillQueryFromASideConnectionStopsASleepWithinASecond) {
  TMyConnection session;
  connect(session, account);
  test::expectKillStopsASleepWithinASecond(session);
}

TEST_F(HttpTunnelTest, DisconnectEndsTheServerConnectionAndTheListener) {
  const size_t filesBefore = openFiles();
  TMyConnection session;
  connect(session, account);
  const std::string id = std::to_string(session.ThreadId());
  session.Disconnect();
  EXPECT_EQ(openFiles(), filesBefore);
  const auto watcher = test::connect();
  while (test::scalar(*watcher, "SELECT COUNT(*) FROM information_schema.PROCESSLIST WHERE ID = " + id) !=
         "0") {
  }
}

TEST_F(HttpTunnelTest, FailuresNameWhatFailed) {
  TAccount wrong = account;
  wrong.PHPSecret = "guess";
  EXPECT_EQ(connectError(wrong), "The HTTP tunnel failed: the tunnel script at " + web->url() +
                                     " refused the secret (403 Forbidden)");

  wrong = account;
  wrong.PHPUrl = web->url() + "x";
  EXPECT_EQ(connectError(wrong),
            "The HTTP tunnel failed: the tunnel script at " + wrong.PHPUrl + " answered 404");

  wrong.PHPUrl = "http://127.0.0.1:" + std::to_string(test::freeLoopbackPort()) + "/tunnel.php";
  EXPECT_EQ(
      connectError(wrong).rfind(
          "The HTTP tunnel failed: the tunnel script at " + wrong.PHPUrl + " could not be reached: ", 0),
      0u);

  wrong = account;
  wrong.Port = test::freeLoopbackPort();
  const std::string target = wrong.Server + ":" + std::to_string(wrong.Port);
  EXPECT_EQ(connectError(wrong),
            "The HTTP tunnel failed: the tunnel script at " + web->url() +
                " answered 502: the tunnel script cannot connect to the MySQL server at " + target +
                ": Connection refused");

  const test::TunnelWebServer limited({"db.example"});
  wrong = test::httpTunnelAccount(limited.url());
  EXPECT_EQ(connectError(wrong), "The HTTP tunnel failed: the tunnel script at " + limited.url() +
                                     " answered 400: the MySQL host " + account.Server + ":" +
                                     std::to_string(account.Port) + " is not allowed by the tunnel script");
}

TEST_F(HttpTunnelTest, ARequestWithoutTheSecretNeverReachesTheServer) {
  const auto watcher = test::connect();
  const std::string connections =
      "SELECT VARIABLE_VALUE FROM information_schema.GLOBAL_STATUS "
      "WHERE VARIABLE_NAME = 'CONNECTIONS'";
  const std::string before = test::scalar(*watcher, connections);
  for (const std::string secret : {"", "guess"}) {
    TMyHttpTunnel script;
    script.Url = web->url();
    script.Secret = secret;
    THttpRequest request(script, 0);
    std::string answer;
    const long status = request.get("a=open&host=" + account.Server + "&port=" + std::to_string(account.Port),
                                    [&answer](std::string_view bytes) {
                                      answer += bytes;
                                      return true;
                                    });
    EXPECT_EQ(status, 403);
    EXPECT_EQ(answer, "");
  }
  EXPECT_EQ(test::scalar(*watcher, connections), before);
}

TEST_F(HttpTunnelTest, AProxyWithBasicAuthenticationCarriesTheTunnel) {
  const test::TestProxy proxy("tunnel", "proxy-pass");
  TAccount proxied = account;
  proxied.ProxyHost = "127.0.0.1";
  proxied.ProxyPort = proxy.port();
  proxied.ProxyLogin = "tunnel";
  proxied.ProxyPassword = "proxy-pass";
  TMyConnection session;
  connect(session, proxied);
  ASSERT_TRUE(ExecSQLText(session, "SET @through = 'proxy'"));
  EXPECT_EQ(test::scalar(session, "SELECT CONCAT(@through, COUNT(*) > 0) FROM lomarin_demo.customers"),
            "proxy1");

  TAccount refused = proxied;
  refused.ProxyPassword = "wrong";
  // tinyproxy refuses with 401 where others answer 407.
  EXPECT_EQ(connectError(refused),
            "The HTTP tunnel failed: the login was refused (401 Unauthorized) by the proxy "
            "127.0.0.1:" +
                std::to_string(proxy.port()) + " or the web server of " + web->url());
  refused.ProxyPort = test::freeLoopbackPort();
  EXPECT_EQ(connectError(refused).rfind("The HTTP tunnel failed: the proxy 127.0.0.1:" +
                                            std::to_string(refused.ProxyPort) + " could not be reached: ",
                                        0),
            0u);
}

}  // namespace
}  // namespace lomarin
