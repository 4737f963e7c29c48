#include "engine/connect/http_request.h"

#include <mutex>

namespace lomarin {

namespace {

constexpr int kDefaultConnectTimeout = 15;
constexpr long kProxyAuthenticationRequired = 407;
constexpr long kForbidden = 403;
constexpr long kUnauthorized = 401;
constexpr size_t kAnswerKept = 400;

size_t receive(char* data, size_t size, size_t count, void* user) {
  const auto& sink = *static_cast<THttpRequest::Sink*>(user);
  const size_t length = size * count;
  return sink(std::string_view(data, length)) ? length : 0;
}

int progress(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  const auto* stop = static_cast<const std::atomic<bool>*>(user);
  return stop && *stop ? 1 : 0;
}

std::string firstLine(std::string_view text) {
  text = text.substr(0, text.find_first_of("\r\n"));
  // A proxy's or web server's own error page says little in one line of HTML.
  if (text.starts_with('<')) return {};
  return std::string(text.substr(0, kAnswerKept));
}

}  // namespace

THttpRequest::THttpRequest(const TMyHttpTunnel& script, int connectTimeout, const std::atomic<bool>* stop)
    : script_(script), stop_(stop) {
  static std::once_flag initialised;
  std::call_once(initialised, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
  curl_ = curl_easy_init();
  headers_ = curl_slist_append(headers_, ("X-Tunnel-Secret: " + script.Secret).c_str());
  // Every send waits for its answer anyway; the 100-continue round trip would only add delay.
  headers_ = curl_slist_append(headers_, "Expect:");
  curl_easy_setopt(curl_, CURLOPT_HTTPHEADER, headers_);
  curl_easy_setopt(curl_, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl_, CURLOPT_ERRORBUFFER, error_);
  curl_easy_setopt(curl_, CURLOPT_CONNECTTIMEOUT,
                   static_cast<long>(connectTimeout > 0 ? connectTimeout : kDefaultConnectTimeout));
  curl_easy_setopt(curl_, CURLOPT_TCP_NODELAY, 1L);
  curl_easy_setopt(curl_, CURLOPT_BUFFERSIZE, 256L * 1024);
  // An empty proxy also keeps the environment's proxy variables out.
  curl_easy_setopt(curl_, CURLOPT_PROXY, script.ProxyHost.c_str());
  if (!script.ProxyHost.empty()) {
    curl_easy_setopt(curl_, CURLOPT_PROXYPORT, static_cast<long>(script.ProxyPort));
    curl_easy_setopt(curl_, CURLOPT_PROXYUSERNAME, script.ProxyUser.c_str());
    curl_easy_setopt(curl_, CURLOPT_PROXYPASSWORD, script.ProxyPassword.c_str());
    curl_easy_setopt(curl_, CURLOPT_PROXYAUTH, CURLAUTH_ANY);
  }
  curl_easy_setopt(curl_, CURLOPT_WRITEFUNCTION, receive);
  curl_easy_setopt(curl_, CURLOPT_WRITEDATA, &sink_);
  curl_easy_setopt(curl_, CURLOPT_NOPROGRESS, 0L);
  curl_easy_setopt(curl_, CURLOPT_XFERINFOFUNCTION, progress);
  curl_easy_setopt(curl_, CURLOPT_XFERINFODATA, stop_);
}

THttpRequest::~THttpRequest() {
  curl_easy_cleanup(curl_);
  curl_slist_free_all(headers_);
}

long THttpRequest::perform(const std::string& query) {
  const std::string& url = script_.Url;
  const std::string full = url + (url.find('?') == std::string::npos ? "?" : "&") + query;
  curl_easy_setopt(curl_, CURLOPT_URL, full.c_str());
  error_[0] = '\0';
  code_ = curl_easy_perform(curl_);
  return status();
}

long THttpRequest::get(const std::string& query, const Sink& sink) {
  sink_ = sink;
  curl_easy_setopt(curl_, CURLOPT_HTTPGET, 1L);
  const long result = perform(query);
  sink_ = nullptr;
  return result;
}

long THttpRequest::post(const std::string& query, std::string_view body) {
  answer_.clear();
  sink_ = [this](std::string_view bytes) {
    if (answer_.size() < kAnswerKept) answer_.append(bytes.substr(0, kAnswerKept - answer_.size()));
    return true;
  };
  curl_easy_setopt(curl_, CURLOPT_POSTFIELDS, body.data());
  curl_easy_setopt(curl_, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
  const long result = perform(query);
  sink_ = nullptr;
  return result;
}

long THttpRequest::status() const {
  long code = 0;
  curl_easy_getinfo(curl_, CURLINFO_RESPONSE_CODE, &code);
  return code;
}

std::string THttpRequest::failure(long status, std::string_view answer) const {
  if (answer.empty()) answer = answer_;
  const std::string proxy = "the proxy " + script_.ProxyHost + ":" + std::to_string(script_.ProxyPort);
  const std::string script = "the tunnel script at " + script_.Url;
  long connectCode = 0;
  curl_easy_getinfo(curl_, CURLINFO_HTTP_CONNECTCODE, &connectCode);
  if (status == kProxyAuthenticationRequired || connectCode == kProxyAuthenticationRequired)
    return "The HTTP tunnel failed: " + proxy + " refused the login (407 Proxy Authentication Required)";
  if (code_ != CURLE_OK && status == 0) {
    const std::string reason = error_[0] ? error_ : curl_easy_strerror(code_);
    // Through a proxy the only connection made is to the proxy.
    const bool proxyFailed =
        !script_.ProxyHost.empty() &&
        (code_ == CURLE_COULDNT_RESOLVE_PROXY || code_ == CURLE_COULDNT_CONNECT || connectCode != 0);
    return "The HTTP tunnel failed: " + (proxyFailed ? proxy : script) + " could not be reached: " + reason;
  }
  // Some proxies refuse a login with 401, like a web server that asks for one itself.
  if (status == kUnauthorized)
    return "The HTTP tunnel failed: the login was refused (401 Unauthorized) by " +
           (script_.ProxyHost.empty() ? std::string() : proxy + " or ") + "the web server of " + script_.Url;
  if (status == kForbidden)
    return "The HTTP tunnel failed: " + script + " refused the secret (403 Forbidden)";
  const std::string line = firstLine(answer);
  return "The HTTP tunnel failed: " + script + " answered " + std::to_string(status) +
         (line.empty() ? std::string() : ": " + line);
}

}  // namespace lomarin
