#include "sync_command.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "engine/compare/data_sync_job.h"
#include "engine/connect/server_error.h"

namespace lomarin::cli {

const char* const kSyncUsage =
    "usage: lomarin-cli sync [connection options] [flags] SOURCE TARGET\n"
    "  SOURCE, TARGET        databases; the target is on the same server unless --target-* say otherwise\n"
    "  --target-host --target-port --target-user --target-password --target-socket\n"
    "  --tables=LIST         tables, comma-separated, as NAME or SOURCE_NAME:TARGET_NAME\n"
    "                        (default: every table of the same name on both sides)\n"
    "  --case-insensitive    pair names ignoring case; keys keep the target's spelling\n"
    "  --result-file=FILE    write FILE (complete or not at all) instead of standard output\n"
    "  --blob-file=FILE      binary values go to FILE, which the script names (SET BLOBFILE)\n"
    "  --hex-blob            binary values as hex literals: a script any client can run\n"
    "  --charset=NAME        the connections' and the script's character set\n"
    "  --apply               run the script on the target\n"
    "  --verbose             every log line of the comparison on standard error\n"
    "exit status: 0 the tables are equal, 1 differences were found, 2 an error\n";

namespace {

struct SyncFlags {
  std::string tables;
  std::string resultFile;
  bool apply = false;
  bool verbose = false;
};

std::vector<TDataSyncPair> parsePairs(const std::string& list) {
  std::vector<TDataSyncPair> pairs;
  size_t start = 0;
  while (start <= list.size()) {
    size_t end = list.find(',', start);
    if (end == std::string::npos) end = list.size();
    const std::string item = list.substr(start, end - start);
    const size_t colon = item.find(':');
    TDataSyncPair pair{item.substr(0, colon), colon == std::string::npos ? item : item.substr(colon + 1)};
    if (pair.Master.empty() || pair.Target.empty())
      throw std::invalid_argument("bad table in --tables=" + list);
    pairs.push_back(pair);
    start = end + 1;
  }
  return pairs;
}

// Reads the command's own flags into flags and settings; throws std::invalid_argument.
void readFlags(const ParsedArgs& args, SyncFlags& flags, TDataSyncSettings& settings) {
  for (const std::string& flag : args.flags) {
    const CommandFlag option(flag);
    const std::string& name = option.name();
    if (name == "--tables") {
      flags.tables = option.value();
    } else if (name == "--result-file") {
      flags.resultFile = option.value();
    } else if (name == "--blob-file") {
      settings.BlobFileName = option.value();
    } else if (name == "--charset") {
      settings.Charset = option.value();
    } else if (readTargetOption(option, settings.Target)) {
      // read into the target settings
    } else if (flag == "--hex-blob") {
      settings.HexBlobs = true;
    } else if (flag == "--case-insensitive") {
      settings.CaseSensitive = false;
    } else if (flag == "--apply") {
      flags.apply = true;
    } else if (flag == "--verbose") {
      flags.verbose = true;
    } else {
      throw std::invalid_argument("unknown option " + flag);
    }
  }
}

}  // namespace

int runSync(const ParsedArgs& args, std::FILE* out, std::FILE* err) {
  if (std::find(args.flags.begin(), args.flags.end(), "--help") != args.flags.end()) {
    std::fputs(kSyncUsage, out);
    return 0;
  }
  TDataSyncSettings settings;
  settings.Master = args.connection;
  settings.Target = args.connection;
  SyncFlags flags;
  try {
    if (!args.account.empty()) throw std::invalid_argument("--account is not supported here");
    if (args.positional.size() != 2) throw std::invalid_argument("SOURCE and TARGET are needed");
    readFlags(args, flags, settings);
  } catch (const std::exception& e) {
    std::fprintf(err, "lomarin-cli sync: %s\n%s", e.what(), kSyncUsage);
    return 2;
  }
  settings.Master.Database = args.positional[0];
  settings.Target.Database = args.positional[1];
  settings.Apply = flags.apply;

  std::ofstream file;
  const std::string temporary = flags.resultFile + ".tmp";
  if (!flags.resultFile.empty()) {
    file.open(temporary, std::ios::binary | std::ios::trunc);
    if (!file) {
      std::fprintf(err, "lomarin-cli sync: cannot write %s\n", temporary.c_str());
      return 2;
    }
    settings.OnScriptText = [&](std::string_view text) {
      file.write(text.data(), static_cast<std::streamsize>(text.size()));
    };
  } else if (!flags.apply) {
    settings.OnScriptText = [&](std::string_view text) { std::fwrite(text.data(), 1, text.size(), out); };
  }

  TDataSyncJob job;
  // Without --verbose: the pairs that failed and, once the script runs, its failures.
  bool applying = false;
  job.OnLogNextLine = [&](const std::string& line) {
    applying = applying || line == "Updating target database...";
    if (flags.verbose || line.starts_with("Error compare tables") ||
        (applying && line.starts_with("Error: ")))
      std::fprintf(err, "%s\n", line.c_str());
  };
  TDataSyncResult result;
  try {
    if (flags.tables.empty()) {
      TDBCConnectionMySql master, target;
      master.Settings = settings.Master;
      target.Settings = settings.Target;
      settings.Pairs = AutoSelectTables(master.Connect(), target.Connect(), settings.CaseSensitive);
    } else {
      settings.Pairs = parsePairs(flags.tables);
    }
    result = job.Run(settings);
  } catch (const std::exception& e) {
    std::fprintf(err, "lomarin-cli sync: %s\n", e.what());
    std::filesystem::remove(temporary);
    return 2;
  }
  const TSyncCounters& t = result.Totals;
  std::fprintf(err, "All: %llu, Deleted: %llu, Updated: %llu, Inserted: %llu, Equal: %llu.\n",
               static_cast<unsigned long long>(t.All()), static_cast<unsigned long long>(t.Deleted),
               static_cast<unsigned long long>(t.Updated), static_cast<unsigned long long>(t.Inserted),
               static_cast<unsigned long long>(t.Equal));
  if (!flags.resultFile.empty()) {
    file.close();
    if (!file || result.FailedPairs > 0) {
      std::filesystem::remove(temporary);
    } else {
      std::filesystem::rename(temporary, flags.resultFile);
    }
  }
  if (result.FailedPairs > 0 || result.ApplyErrors > 0) return 2;
  return t.Differences() ? 1 : 0;
}

}  // namespace lomarin::cli
