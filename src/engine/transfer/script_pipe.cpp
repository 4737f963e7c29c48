#include "engine/transfer/script_pipe.h"

namespace lomarin {

TScriptPipe::TScriptPipe(size_t chunkBytes, size_t maxChunks)
    : chunkBytes_(chunkBytes), maxChunks_(maxChunks) {
  filling_.reserve(chunkBytes_);
}

void TScriptPipe::push(std::unique_lock<std::mutex>& lock) {
  changed_.wait(lock, [this] { return aborted_ || queue_.size() < maxChunks_; });
  if (aborted_) throw TPipeAborted();
  queue_.push_back(std::move(filling_));
  filling_ = std::string();
  filling_.reserve(chunkBytes_);
  changed_.notify_all();
}

void TScriptPipe::write(std::string_view text) {
  // The chunk fills without the lock: only this thread touches it until it is queued.
  filling_.append(text);
  if (filling_.size() < chunkBytes_) return;
  std::unique_lock lock(mutex_);
  push(lock);
}

void TScriptPipe::close() {
  std::unique_lock lock(mutex_);
  if (!filling_.empty()) push(lock);
  closed_ = true;
  changed_.notify_all();
}

void TScriptPipe::abort() {
  std::lock_guard lock(mutex_);
  aborted_ = true;
  changed_.notify_all();
}

TScriptPipe::int_type TScriptPipe::underflow() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return aborted_ || closed_ || !queue_.empty(); });
  if (aborted_ || queue_.empty()) return traits_type::eof();
  reading_ = std::move(queue_.front());
  queue_.pop_front();
  changed_.notify_all();
  setg(reading_.data(), reading_.data(), reading_.data() + reading_.size());
  return traits_type::to_int_type(reading_.front());
}

}  // namespace lomarin
