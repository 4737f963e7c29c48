#include "exec_command.h"

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "cli_session.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/ssh_tunnel.h"
#include "engine/sqleditor/my_script.h"

namespace lomarin::cli {

namespace {

// A failing statement of a dump can be a megabyte of values; its start is what identifies it.
constexpr size_t kShownStatement = 4096;

class ProgressLine {
 public:
  explicit ProgressLine(std::FILE* err) : err_(err), enabled_(isatty(fileno(err)) != 0) {}

  void update(uint64_t done, uint64_t total) {
    if (!enabled_) return;
    const auto now = std::chrono::steady_clock::now();
    if (now - last_ < std::chrono::milliseconds(200)) return;
    last_ = now;
    if (total > 0)
      std::fprintf(err_, "\r%3d%%  %.1f / %.1f MB", static_cast<int>(done * 100 / total), done / 1e6,
                   total / 1e6);
    else
      std::fprintf(err_, "\r%.1f MB", done / 1e6);
    std::fflush(err_);
    shown_ = true;
  }

  void clear() {
    if (!shown_) return;
    std::fprintf(err_, "\r\033[K");
    shown_ = false;
  }

 private:
  std::FILE* err_;
  bool enabled_;
  bool shown_ = false;
  std::chrono::steady_clock::time_point last_{};
};

// The statement, then the error in the batch client's words, with the line it starts at.
void printFailure(std::FILE* err, const ServerError& error, const std::string& statement, uint64_t line) {
  if (statement.size() > kShownStatement)
    std::fprintf(err, "%.*s ...\n", static_cast<int>(kShownStatement), statement.c_str());
  else
    std::fprintf(err, "%s\n", statement.c_str());
  std::fprintf(err, "ERROR %u (%s) at line %llu: %s\n", error.number(), error.sqlstate().c_str(),
               static_cast<unsigned long long>(line), error.what());
}

}  // namespace

int runExec(const ParsedArgs& args, std::FILE* err) {
  bool optimize = false;
  for (const auto& flag : args.flags) {
    if (flag != "--optimize") {
      std::fprintf(err, "lomarin-cli exec: unknown option %s\n", flag.c_str());
      return 2;
    }
    optimize = true;
  }
  if (args.positional.size() != 1) {
    std::fprintf(err, "usage: lomarin-cli exec [connection options] [--optimize] FILE\n");
    return 2;
  }
  const std::string& path = args.positional.front();
  std::ifstream file;
  std::istream* in = &std::cin;
  uint64_t total = 0;
  if (path != "-") {
    file.open(path, std::ios::binary);
    if (!file) {
      std::fprintf(err, "lomarin-cli exec: cannot read %s\n", path.c_str());
      return 2;
    }
    // A pipe has no size; its progress shows bytes only.
    std::error_code ec;
    total = std::filesystem::file_size(path, ec);
    if (ec) total = 0;
    in = &file;
  }

  TSshTunnel tunnel;
  TMyConnection session;
  ProgressLine progress(err);
  size_t failures = 0;
  try {
    connectSession(args, session, tunnel);
    TMyScript script(session);
    script.UseOptimization = optimize;
    script.OnError = [&](const ServerError& error, const std::string& statement, TErrorAction& action) {
      progress.clear();
      printFailure(err, error, statement, script.StatementLine());
      ++failures;
      action = TErrorAction::eaContinue;
    };
    script.OnProgress = [&](uint64_t done, uint64_t size) { progress.update(done, size); };
    script.Execute(*in, total);
  } catch (const ServerError& error) {
    progress.clear();
    std::fprintf(err, "ERROR %u (%s): %s\n", error.number(), error.sqlstate().c_str(), error.what());
    return 1;
  }
  progress.clear();
  if (in->bad()) {
    std::fprintf(err, "lomarin-cli exec: error reading %s\n", path.c_str());
    return 1;
  }
  return failures == 0 ? 0 : 1;
}

}  // namespace lomarin::cli
