#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <streambuf>
#include <string>

#include "engine/transfer/dump_sink.h"

namespace lomarin {

// Raised in the writer's thread when the reader has given the pipe up.
class TPipeAborted : public std::runtime_error {
 public:
  TPipeAborted() : std::runtime_error("The script's reader has stopped") {}
};

// Hands a script from the thread that writes it (a dump) to the thread that reads it (a script
// runner) in chunks, holding at most a few of them: the writer waits while the reader catches up,
// so memory stays flat whatever the script's size.
class TScriptPipe : public TDumpSink, public std::streambuf {
 public:
  explicit TScriptPipe(size_t chunkBytes = size_t{256} << 10, size_t maxChunks = 8);

  // Writer side. write throws TPipeAborted once the reader has aborted.
  void write(std::string_view text) override;
  // No more text: the reader sees the end after what is queued.
  void close();
  // Reader side: the writer's next write throws, and reading ends.
  void abort();

 protected:
  int_type underflow() override;

 private:
  void push(std::unique_lock<std::mutex>& lock);

  const size_t chunkBytes_;
  const size_t maxChunks_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::string> queue_;
  std::string filling_;
  std::string reading_;
  bool closed_ = false;
  bool aborted_ = false;
};

}  // namespace lomarin
