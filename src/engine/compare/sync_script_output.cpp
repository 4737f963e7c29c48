#include "engine/compare/sync_script_output.h"

#include <filesystem>
#include <stdexcept>

namespace lomarin {

TSyncScriptOutput::TSyncScriptOutput(const std::string& fileName,
                                     const std::function<void(std::string_view)>& stream, std::string& text)
    : fileName_(fileName), stream_(stream), text_(text) {
  if (fileName_.empty()) {
    text_.clear();
    return;
  }
  temporary_ = fileName_ + ".tmp";
  file_.open(temporary_, std::ios::binary | std::ios::trunc);
  if (!file_) throw std::runtime_error("Cannot write the script file " + temporary_);
}

TSyncScriptOutput::~TSyncScriptOutput() {
  if (fileName_.empty() || committed_) return;
  file_.close();
  std::error_code ignored;
  std::filesystem::remove(temporary_, ignored);
}

void TSyncScriptOutput::write(std::string_view text) {
  if (!fileName_.empty()) {
    file_.write(text.data(), static_cast<std::streamsize>(text.size()));
  } else if (stream_) {
    stream_(text);
  } else {
    text_ += text;
  }
}

void TSyncScriptOutput::Commit() {
  if (fileName_.empty()) return;
  file_.close();
  if (!file_) throw std::runtime_error("Cannot write the script file " + temporary_);
  std::filesystem::rename(temporary_, fileName_);
  committed_ = true;
}

}  // namespace lomarin
