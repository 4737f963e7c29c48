#pragma once
// Private to the connect subsystem: one libcurl handle speaking to the tunnel script.

#include <curl/curl.h>

#include <atomic>
#include <functional>
#include <string>
#include <string_view>

#include "engine/connect/session_settings.h"

namespace lomarin {

class THttpRequest {
 public:
  // Receives answer bytes as they arrive; false ends the transfer.
  using Sink = std::function<bool(std::string_view bytes)>;

  // Requests stop soon after *stop turns true (when given).
  THttpRequest(const TMyHttpTunnel& script, int connectTimeout, const std::atomic<bool>* stop = nullptr);
  ~THttpRequest();
  THttpRequest(const THttpRequest&) = delete;
  THttpRequest& operator=(const THttpRequest&) = delete;

  // A GET of the script with this query, the answer going to sink. Returns the HTTP status, 0
  // when no answer came.
  long get(const std::string& query, const Sink& sink);
  // A POST of body; the answer is kept for failure().
  long post(const std::string& query, std::string_view body);
  // The status of the answer so far (valid inside a sink).
  long status() const;

  // What went wrong with the last request, in the user's words, given the answer's text.
  std::string failure(long status, std::string_view answer) const;

 private:
  long perform(const std::string& query);

  CURL* curl_;
  curl_slist* headers_ = nullptr;
  TMyHttpTunnel script_;
  const std::atomic<bool>* stop_;
  Sink sink_;
  std::string answer_;
  CURLcode code_ = CURLE_OK;
  char error_[CURL_ERROR_SIZE] = {};
};

}  // namespace lomarin
