#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "engine/connect/my_connection.h"
#include "test_server.h"

namespace lomarin {
namespace {

namespace fs = std::filesystem;

void run(const std::string& command) {
  ASSERT_EQ(std::system((command + " >/dev/null 2>&1").c_str()), 0) << command;
}

// Certificates made by the test: a client certificate signed by the server's CA, and a CA of
// its own that the server's certificate does not chain to.
class SslTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir = fs::temp_directory_path() / ("lomarin-ssl-" + std::to_string(::getpid()));
    fs::create_directories(dir);
    const std::string ca = test::sslDir();
    const std::string d = dir.string();
    run("openssl req -newkey rsa:2048 -nodes -subj /CN=lomarin-test-client -keyout " + d +
        "/client-key.pem -out " + d + "/client.csr");
    run("openssl x509 -req -days 2 -in " + d + "/client.csr -CA " + ca + "/ca.pem -CAkey " + ca +
        "/ca-key.pem -CAcreateserial -CAserial " + d + "/ca.srl -out " + d + "/client-cert.pem");
    run("openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=stranger-ca -keyout " + d +
        "/stranger-key.pem -out " + d + "/stranger-ca.pem");
    for (const char* host : {"localhost", "127.0.0.1"}) {
      test::sideExec(std::string("CREATE OR REPLACE USER 'lomarin_x509'@'") + host +
                     "' IDENTIFIED BY 'x509pw' REQUIRE SUBJECT '/CN=lomarin-test-client'");
    }
  }
  static void TearDownTestSuite() { fs::remove_all(dir); }

  static TMySessionSettings sslSettings(const std::string& host) {
    TMySessionSettings s = test::serverSettings();
    s.Server = host;
    s.Username = "lomarin_x509";
    s.Password = "x509pw";
    s.UseSSL = true;
    s.SSL.CACert = test::sslDir() + "/ca.pem";
    s.SSL.Cert = (dir / "client-cert.pem").string();
    s.SSL.Key = (dir / "client-key.pem").string();
    return s;
  }

  static unsigned connectError(const TMySessionSettings& settings) {
    TMyConnection session;
    session.Settings = settings;
    try {
      session.Connect();
    } catch (const ServerError& error) {
      return error.number();
    }
    return 0;
  }

  static inline fs::path dir;
};

TEST_F(SslTest, ClientCertificateOverVerifiedConnection) {
  TMyConnection session;
  session.Settings = sslSettings("localhost");
  session.Connect();
  EXPECT_FALSE(session.SslCipher().empty());
  TMyConnection plain;
  plain.Settings = sslSettings("localhost");
  plain.Settings.UseSSL = false;
  EXPECT_THROW(plain.Connect(), ServerError);  // the account requires the certificate
}

TEST_F(SslTest, ServerCertificateCaHostNameKeyAndCipherListAreChecked) {
  // The server certificate names "localhost" only.
  EXPECT_EQ(connectError(sslSettings("127.0.0.1")), 2026u);
  auto stranger = sslSettings("localhost");
  stranger.SSL.CACert = (dir / "stranger-ca.pem").string();
  EXPECT_EQ(connectError(stranger), 2026u);
  auto missingKey = sslSettings("localhost");
  missingKey.SSL.Key = (dir / "no-such-key.pem").string();
  EXPECT_NE(connectError(missingKey), 0u);
  auto noCipher = sslSettings("localhost");
  noCipher.SSL.ChipherList = "NO-SUCH-CIPHER";
  EXPECT_NE(connectError(noCipher), 0u);
}

}  // namespace
}  // namespace lomarin
