#include "engine/connect/accounts_session.h"

namespace lomarin {

namespace {
constexpr int kMinimumTimeout = 15;
}

std::string applyAccountToSession(const TAccount& account, TMySessionSettings& settings) {
  settings.Username = account.Login;
  settings.Password = account.Password;
  settings.Database = account.Database;
  settings.Protocol = TMyProtocol::Default;
  settings.Server = account.Server;
  settings.Port = account.Port;
  settings.Direct = account.Direct;
  settings.UseUnicode = account.Unicode;
  settings.Compress = account.Compression;
  settings.Charset = account.ClientCharset == "default" ? std::string() : account.ClientCharset;
  settings.ConnectionTimeout = account.Timeout >= kMinimumTimeout ? account.Timeout : 0;
  settings.UseSSL = account.UseSSL;
  settings.SSL = account.UseSSL ? TMySSLOptions{account.SSLCACert, account.SSLCert, account.SSLCipherList,
                                                account.SSLKey}
                                : TMySSLOptions{};
  settings.Http = {};
  if (account.UsePHP) {
    settings.Protocol = TMyProtocol::Http;
    settings.Http.Url = account.PHPUrl;
    settings.Http.Secret = account.PHPSecret;
    if (!account.ProxyHost.empty()) {
      settings.Http.ProxyHost = account.ProxyHost;
      settings.Http.ProxyUser = account.ProxyLogin;
      settings.Http.ProxyPassword = account.ProxyPassword;
      settings.Http.ProxyPort = account.ProxyPort;
    }
  }
  return account.ShowAllDatabases ? std::string() : "'" + account.Database + "'";
}

}  // namespace lomarin
