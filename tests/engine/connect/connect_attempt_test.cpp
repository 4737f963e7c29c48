#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

#include "engine/connect/lost_connection.h"
#include "engine/connect/my_connection.h"
#include "session_watch.h"
#include "test_server.h"

namespace lomarin {
namespace {

using namespace std::chrono_literals;

// Takes TCP connections on loopback (the kernel completes them) and never says a word.
struct SilentListener {
  SilentListener() {
    fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(fd, 8) != 0 ||
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) != 0)
      throw std::runtime_error("no loopback listener");
    port = ntohs(address.sin_port);
  }
  ~SilentListener() { close(fd); }

  int fd;
  int port;
};

TEST(ConnectAttempt, SilentServerIsAbandonedAtOnceAndTheSessionGoesOn) {
  SilentListener silent;
  TMyConnection session;
  session.Settings = test::serverSettings();
  session.Settings.Server = "127.0.0.1";
  session.Settings.Port = silent.port;
  int connectEvents = 0;
  session.Events.AfterConnect = [&] { ++connectEvents; };

  session.StartConnect();
  EXPECT_FALSE(session.WaitConnect(300ms));
  const auto start = std::chrono::steady_clock::now();
  session.AbandonConnect();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 100ms);
  EXPECT_TRUE(session.WaitConnect(0ms)) << "nothing is under way any more";
  session.FinishConnect();
  EXPECT_FALSE(session.Connected());
  EXPECT_EQ(connectEvents, 0);

  session.Settings = test::serverSettings();
  session.StartConnect();
  EXPECT_TRUE(session.WaitConnect(10s));
  session.FinishConnect();
  EXPECT_TRUE(session.Connected());
  EXPECT_EQ(connectEvents, 1);
  EXPECT_EQ(test::scalar(session, "SELECT 6*7"), "42");
}

TEST(ConnectAttempt, FailureIsThrownWhenTheAttemptIsFinished) {
  TMyConnection session;
  session.Settings = test::serverSettings();
  session.Settings.Password = "certainly-wrong";
  std::vector<unsigned> errorEvents;
  session.Events.OnError = [&](const ServerError& e) { errorEvents.push_back(e.number()); };
  session.StartConnect();
  EXPECT_TRUE(session.WaitConnect(10s));
  EXPECT_TRUE(errorEvents.empty()) << "the error belongs to the thread that finishes the connect";
  EXPECT_THROW(session.FinishConnect(), ServerError);
  EXPECT_EQ(errorEvents, std::vector<unsigned>{1045});
  EXPECT_FALSE(session.Connected());
}

TEST(ConnectAttempt, AutoCommitOffIsSetAtConnectAndKeptAcrossSilentReconnect) {
  TLostConnectionHandler handler([] { return true; });
  TMyConnection session;
  test::SentStatements log(session);
  session.Events.OnConnectionLost = [&] { return handler.onConnectionLost(); };
  session.Settings = test::serverSettings();
  session.Settings.AutoCommit = false;
  session.Connect();
  EXPECT_FALSE(session.AutoCommit());
  EXPECT_EQ(test::scalar(session, "SELECT @@autocommit"), "0");
  ASSERT_FALSE(log.sent.empty());
  EXPECT_EQ(log.sent.front(), "SET autocommit=0");

  ASSERT_TRUE(ExecSQLText(session, "COMMIT"));
  const auto before = session.ThreadId();
  test::sideExec("KILL CONNECTION " + std::to_string(before));
  EXPECT_EQ(test::scalar(session, "SELECT @@autocommit"), "0");
  EXPECT_NE(session.ThreadId(), before);
  EXPECT_EQ(handler.retryCount(), 1);
  EXPECT_FALSE(session.AutoCommit());

  // On is the server's own default: nothing to send.
  session.Settings.AutoCommit = true;
  log.sent.clear();
  session.Connect();
  EXPECT_TRUE(session.AutoCommit());
  EXPECT_EQ(test::scalar(session, "SELECT @@autocommit"), "1");
  EXPECT_EQ(log.sent, std::vector<std::string>{"SELECT @@autocommit"});
}

}  // namespace
}  // namespace lomarin
