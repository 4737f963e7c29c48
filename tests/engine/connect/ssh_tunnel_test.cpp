#include <gtest/gtest.h>

#include <algorithm>

#include "engine/connect/accounts_session.h"
#include "engine/connect/lost_connection.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/my_query.h"
#include "engine/connect/ssh_account.h"
#include "engine/connect/ssh_error.h"
#include "engine/connect/ssh_key_store.h"
#include "engine/connect/ssh_login.h"
#include "ssh_password_server.h"
#include "test_host.h"
#include "test_server.h"
#include "test_ssh_server.h"

namespace lomarin {
namespace {

namespace fs = std::filesystem;

// A key store with a client key the SSH server lets in, and an account that uses it.
class SshTunnelTest : public ::testing::Test {
 protected:
  void SetUp() override {
    store.newClientKey("tests", TSshKeyType::Ed25519);
    test::authorizeKey(store.publicLine("tests"));
    account.SSHClientKey = "tests";
  }

  void connect(TMyConnection& session) {
    applyAccountToSession(account, session.Settings);
    ConnectThroughAccountTunnel(session, tunnel, account, folder.path());
  }

  std::string hostName() const { return KnownHostName(account.SSHServer, account.SSHPort); }

  test::TempFolder folder;
  TSshKeyStore store{folder.path()};
  TAccount account = test::sshAccount();
  TSshTunnel tunnel;
};

TEST_F(SshTunnelTest, QueriesReachTheServerAndTheFirstConnectStoresTheHostKey) {
  TMyConnection session;
  connect(session);
  ASSERT_TRUE(tunnel.IsOpen());
  EXPECT_EQ(session.Settings.TunnelPort, tunnel.LocalPort());
  EXPECT_EQ(test::scalar(session, "SELECT @@port"), std::to_string(test::serverSettings().Port));
  EXPECT_EQ(test::scalar(session, "SELECT COUNT(*) > 0 FROM lomarin_demo.customers"), "1");

  const std::string known = test::readText(store.knownHostsFile());
  EXPECT_EQ(known.rfind(hostName() + " ssh-ed25519 AAAA", 0), 0u) << known;
  EXPECT_EQ(std::count(known.begin(), known.end(), '\n'), 1);

  session.Disconnect();
  tunnel.Close();
  EXPECT_FALSE(tunnel.IsOpen());
  connect(session);
  EXPECT_EQ(test::scalar(session, "SELECT 1"), "1");
  EXPECT_EQ(test::readText(store.knownHostsFile()), known);
}

TEST_F(SshTunnelTest, AChangedHostKeyIsRefusedNamingBothFingerprintsAndNothingIsStored) {
  // What the store would hold had the server's key been another before.
  TSshKeyStore other(folder.path() / "other");
  other.newClientKey("old host key", TSshKeyType::Ed25519);
  const std::string oldLine = other.publicLine("old host key");
  store.addKnownHost(hostName() + " " + oldLine.substr(0, oldLine.rfind(' ')));
  const std::string known = test::readText(store.knownHostsFile());

  TMyConnection session;
  try {
    connect(session);
    FAIL() << "connected with a changed host key";
  } catch (const TSshError& error) {
    const std::string message = error.what();
    EXPECT_NE(message.find("The SSH server " + hostName() + " offered a host key that differs"),
              std::string::npos)
        << message;
    EXPECT_NE(message.find("Stored key:  " + other.fingerprint("old host key")), std::string::npos)
        << message;
    EXPECT_NE(message.find("Offered key: " + test::sshHostKeyFingerprint()), std::string::npos) << message;
  }
  EXPECT_FALSE(tunnel.IsOpen());
  EXPECT_FALSE(session.Connected());
  EXPECT_EQ(test::readText(store.knownHostsFile()), known);
}

TEST_F(SshTunnelTest, AKeyNameTheStoreDoesNotHoldFailsBeforeConnecting) {
  account.SSHClientKey = "gone";
  TMyConnection session;
  try {
    connect(session);
    FAIL() << "connected without the key";
  } catch (const TSshError& error) {
    EXPECT_STREQ(error.what(), "Private key can not be empty");
  }
  EXPECT_FALSE(fs::exists(store.knownHostsFile()));
}

TEST_F(SshTunnelTest, AnSshServerThatIsNotThereIsNamedAndNothingStaysOpen) {
  account.SSHPort = test::freeLoopbackPort();
  TMyConnection session;
  try {
    connect(session);
    FAIL() << "connected to a closed port";
  } catch (const TSshError& error) {
    EXPECT_TRUE(
        std::string(error.what()).starts_with("Cannot connect to the SSH server " + hostName() + ": "))
        << error.what();
  }
  EXPECT_FALSE(tunnel.IsOpen());
  EXPECT_EQ(session.Settings.TunnelPort, 0);
}

TEST_F(SshTunnelTest, AnImportedPassphraseProtectedKeyLogsIn) {
  const fs::path file = folder.path() / "id_ed25519";
  ASSERT_EQ(std::system(("ssh-keygen -q -t ed25519 -N pass -f '" + file.string() + "'").c_str()), 0);
  ASSERT_TRUE(store.importClientKey("imported", file, [] { return std::optional<std::string>("pass"); }));
  test::authorizeKey(test::readText(file.string() + ".pub"));
  account.SSHClientKey = "imported";
  TMyConnection session;
  connect(session);
  EXPECT_EQ(test::scalar(session, "SELECT COUNT(*) > 0 FROM lomarin_demo.customers"), "1");
}

TEST_F(SshTunnelTest, AFailedMySqlLoginClosesTheTunnel) {
  account.Password = "not the password";
  TMyConnection session;
  EXPECT_THROW(connect(session), ServerError);
  EXPECT_FALSE(tunnel.IsOpen());
  EXPECT_EQ(session.Settings.TunnelPort, 0);
  // The SSH login itself worked: the host key was stored.
  EXPECT_TRUE(fs::exists(store.knownHostsFile()));

  account.Password = test::serverSettings().Password;
  connect(session);
  const int port = tunnel.LocalPort();
  ASSERT_TRUE(test::listening(port));
  account.Password = "not the password";
  EXPECT_THROW(connect(session), ServerError);
  EXPECT_FALSE(test::listening(port));
}

TEST(SshPasswordLogin, AWrongPasswordIsRefusedAndTheRightOneCarriesQueries) {
  test::PasswordSshServer server("tester", "s3cret pass");
  test::TempFolder folder;
  TSshTunnel tunnel;
  TMyConnection session;
  TAccount account = test::sshAccount();
  account.SSHPort = server.port();
  account.SSHLogin = "tester";
  account.SSHPassword = "guess";
  applyAccountToSession(account, session.Settings);
  try {
    ConnectThroughAccountTunnel(session, tunnel, account, folder.path());
    FAIL() << "logged in with a wrong password";
  } catch (const TSshError& error) {
    EXPECT_EQ(std::string(error.what()), "The SSH server " + KnownHostName("127.0.0.1", server.port()) +
                                             " refused the password of the user \"tester\"");
  }
  EXPECT_FALSE(tunnel.IsOpen());

  account.SSHPassword = "s3cret pass";
  ConnectThroughAccountTunnel(session, tunnel, account, folder.path());
  EXPECT_EQ(test::scalar(session, "SELECT COUNT(*) > 0 FROM lomarin_demo.customers"), "1");
  session.Disconnect();
  tunnel.Close();
}

// The session's lost-connection rule: reconnect and execute again, silently.
class SshReconnectTest : public SshTunnelTest {
 protected:
  void SetUp() override {
    SshTunnelTest::SetUp();
    session.Events.OnConnectionLost = [this] { return lost.onConnectionLost(); };
    connect(session);
  }
  TLostConnectionHandler lost{[] { return false; }};
  TMyConnection session;
};

TEST_F(SshReconnectTest, AKilledServerConnectionReconnectsThroughTheTunnel) {
  const std::string before = test::scalar(session, "SELECT CONNECTION_ID()");
  test::sideExec("KILL " + before);
  const std::string after = test::scalar(session, "SELECT CONNECTION_ID()");
  EXPECT_NE(after, before);
  EXPECT_EQ(lost.retryCount(), 1);
  EXPECT_EQ(test::scalar(session, "SELECT @@port"), std::to_string(test::serverSettings().Port));
}

TEST_F(SshReconnectTest, AKilledSshConnectionComesBackWithTheSession) {
  const int port = tunnel.LocalPort();
  const std::string before = test::scalar(session, "SELECT CONNECTION_ID()");
  ASSERT_GT(test::killSshConnections(), 0);
  const std::string after = test::scalar(session, "SELECT CONNECTION_ID()");
  EXPECT_NE(after, before);
  EXPECT_TRUE(tunnel.IsOpen());
  EXPECT_EQ(tunnel.LocalPort(), port);
  EXPECT_EQ(tunnel.LastError(), "");
  EXPECT_EQ(test::scalar(session, "SELECT COUNT(*) > 0 FROM lomarin_demo.customers"), "1");
}

TEST_F(SshReconnectTest, ALoginAgainThatFailsLeavesItsReasonUntilAConnectionIsForwarded) {
  store.deleteClientKey("tests");
  ASSERT_GT(test::killSshConnections(), 0);
  EXPECT_THROW(test::scalar(session, "SELECT 1"), ServerError);
  EXPECT_EQ(tunnel.LastError(), kPrivateKeyEmpty);

  store.newClientKey("tests", TSshKeyType::Ed25519);
  test::authorizeKey(store.publicLine("tests"));
  TMyConnection again;
  again.Settings = session.Settings;
  again.Connect();
  EXPECT_EQ(test::scalar(again, "SELECT 3"), "3");
  EXPECT_EQ(tunnel.LastError(), "");
}

TEST_F(SshReconnectTest, KillQueryGoesThroughTheTunnelAndStopsASleepQuickly) {
  test::expectKillStopsASleepWithinASecond(session);
}

}  // namespace
}  // namespace lomarin
