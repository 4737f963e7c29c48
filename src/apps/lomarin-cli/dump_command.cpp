#include "dump_command.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <map>
#include <stdexcept>

#include "cli_session.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/ssh_tunnel.h"

namespace lomarin::cli {

const char* const kDumpUsage =
    "usage: lomarin-cli dump [connection options] [flags] DATABASE\n"
    "  --objects=LIST        object kinds, comma-separated, of: database users routines tables data\n"
    "                        views triggers all (default: tables,data,views,routines,triggers;\n"
    "                        routines bring the events along)\n"
    "  --tables=LIST --routines=LIST --triggers=LIST   only these objects\n"
    "  --query=SELECT        the rows of one SELECT on one table instead of whole objects\n"
    "  --result-file=FILE    write FILE (complete or not at all) instead of standard output\n"
    "  --no-header --no-drop --quote-names --complete-insert --no-lock --disable-keys\n"
    "  --hex-blob --no-extended-insert --delayed-insert --insert-ignore --replace\n"
    "  --commit-batch=ROWS\n";

namespace {

using enum TMyDumpObject;

TMyDumpObjects parseObjects(const std::string& list) {
  static const std::map<std::string, TMyDumpObjects> kinds = {
      {"database", doDatabase},
      {"users", doUsers},
      {"routines", doStoredProcs},
      {"tables", doTables},
      {"data", doData},
      {"views", doViews},
      {"triggers", doTriggers},
      {"all", TMyDumpObjects::all()},
  };
  TMyDumpObjects objects;
  size_t start = 0;
  while (start <= list.size()) {
    size_t end = list.find(',', start);
    if (end == std::string::npos) end = list.size();
    const auto kind = kinds.find(list.substr(start, end - start));
    if (kind == kinds.end()) throw std::invalid_argument("unknown object kind in --objects=" + list);
    objects = objects | kind->second;
    start = end + 1;
  }
  return objects;
}

int parseCount(const std::string& text) {
  int value = -1;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size() || value < 0)
    throw std::invalid_argument("invalid --commit-batch value: " + text);
  return value;
}

volatile std::sig_atomic_t interrupted = 0;

// Ctrl-C stops the dump between rows, so the temporary file is removed rather than left behind.
class InterruptScope {
 public:
  InterruptScope() {
    interrupted = 0;
    struct sigaction action {};
    action.sa_handler = [](int) { interrupted = 1; };
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &previous_);
    sigaction(SIGTERM, &action, &previousTerm_);
  }
  ~InterruptScope() {
    sigaction(SIGINT, &previous_, nullptr);
    sigaction(SIGTERM, &previousTerm_, nullptr);
  }
  InterruptScope(const InterruptScope&) = delete;
  InterruptScope& operator=(const InterruptScope&) = delete;

 private:
  struct sigaction previous_ {};
  struct sigaction previousTerm_ {};
};

}  // namespace

DumpRequest parseDumpFlags(const std::vector<std::string>& flags) {
  DumpRequest request;
  request.objects = TMyDumpObjects(124);
  TMyDumpOptions& o = request.options;
  const std::map<std::string, bool*> switches = {
      {"--no-header", &o.GenerateHeader},
      {"--no-drop", &o.AddDrop},
      {"--quote-names", &o.QuoteNames},
      {"--complete-insert", &o.CompleteInsert},
      {"--no-lock", &o.AddLock},
      {"--disable-keys", &o.DisableKeys},
      {"--hex-blob", &o.HexBlob},
      {"--no-extended-insert", &o.UseExtSyntax},
      {"--delayed-insert", &o.UseDelayedIns},
  };
  for (const auto& flag : flags) {
    const size_t eq = flag.find('=');
    const std::string name = flag.substr(0, eq);
    const std::string value = eq == std::string::npos ? "" : flag.substr(eq + 1);
    if (auto s = switches.find(name); s != switches.end() && eq == std::string::npos) {
      *s->second = name.rfind("--no-", 0) != 0;
    } else if (flag == "--insert-ignore") {
      o.InsertType = TMyInsertType::itInsertIgnore;
    } else if (flag == "--replace") {
      o.InsertType = TMyInsertType::itReplaceInto;
    } else if (eq == std::string::npos) {
      throw std::invalid_argument("unknown option " + flag);
    } else if (name == "--objects") {
      request.objects = parseObjects(value);
    } else if (name == "--tables") {
      request.tableNames = value;
    } else if (name == "--routines") {
      request.routineNames = value;
    } else if (name == "--triggers") {
      request.triggerNames = value;
    } else if (name == "--query") {
      request.query = value;
    } else if (name == "--result-file") {
      request.outputFile = value;
    } else if (name == "--commit-batch") {
      o.CommitBatchSize = parseCount(value);
    } else {
      throw std::invalid_argument("unknown option " + flag);
    }
  }
  return request;
}

int runDump(const ParsedArgs& args, std::FILE* out, std::FILE* err) {
  if (std::find(args.flags.begin(), args.flags.end(), "--help") != args.flags.end()) {
    std::fputs(kDumpUsage, out);
    return 0;
  }
  if (args.positional.size() != 1) {
    std::fputs(kDumpUsage, err);
    return 2;
  }
  const DumpRequest request = parseDumpFlags(args.flags);
  TSshTunnel tunnel;
  TMyConnection session;
  TMyDump dump(&session);
  dump.Database = args.positional.front();
  dump.Objects = request.objects;
  dump.Options = request.options;
  dump.TableNames = request.tableNames;
  dump.StoredProcNames = request.routineNames;
  dump.TriggerNames = request.triggerNames;
  InterruptScope interrupts;
  dump.StopRequested = [] { return interrupted != 0; };
  const bool showProgress = isatty(fileno(err)) != 0;
  if (showProgress) {
    dump.OnBackupProgress = [err](const std::string& object, int num, int count, int percent) {
      std::fprintf(err, "\r\033[K[%d/%d] %s %d%%", num, count, object.c_str(), percent);
      std::fflush(err);
    };
  }
  auto fail = [&](const std::string& message) {
    std::fflush(out);
    if (showProgress) std::fputs("\n", err);
    std::fprintf(err, "%s\n", message.c_str());
    return 1;
  };
  try {
    connectSession(args, session, tunnel);
    auto run = [&](TDumpSink& sink) {
      if (request.query.empty())
        dump.Backup(sink);
      else
        dump.BackupQuery(request.query, sink);
    };
    if (request.outputFile.empty()) {
      TStreamDumpSink sink(out);
      run(sink);
      std::fflush(out);
    } else {
      TFileDumpSink sink(request.outputFile);
      run(sink);
      sink.commit();
    }
    if (showProgress) std::fputs("\n", err);
  } catch (const ServerError& error) {
    return fail("ERROR " + std::to_string(error.number()) + " (" + error.sqlstate() + "): " + error.what());
  } catch (const std::runtime_error& error) {
    return fail(std::string("lomarin-cli: ") + error.what());
  }
  return 0;
}

}  // namespace lomarin::cli
