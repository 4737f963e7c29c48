#include "compare_command.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "cli_session.h"
#include "engine/compare/db_comparer.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/ssh_tunnel.h"

namespace lomarin::cli {

const char* const kCompareUsage =
    "usage: lomarin-cli compare [connection options] [flags] SOURCE TARGET\n"
    "  SOURCE, TARGET        a database on the server, or a script file (a path that exists)\n"
    "  --target-host --target-port --target-user --target-password --target-socket\n"
    "                        the target's server, when it is not the source's\n"
    "  --objects=LIST        kinds compared, comma-separated, of: table view index primary unique\n"
    "                        foreign check procedure function trigger\n"
    "                        (default: table,view,index,primary,unique,foreign,check; events always)\n"
    "  --case-insensitive    \"Orders\" and \"orders\" are one table\n"
    "  --charset=NAME        the script starts with SET CHARACTER SET NAME\n"
    "  --names=NAME          the script starts with SET NAMES NAME\n"
    "  --result-file=FILE    write FILE (complete or not at all) instead of standard output\n"
    "  --apply               run the script on the target database\n"
    "  --verbose             every log line of the comparison on standard error\n"
    "exit status: 0 the two are equal, 1 they differ, 2 an error\n";

namespace {

using enum TCmpObjType;

struct CompareFlags {
  TCmpObjSetType objects{coTable, coView, coIndex, coPrimaryKey, coUnique, coForeignKey, coCheck};
  bool caseSensitive = true;
  TMySQLServerOptions server;
  std::string resultFile;
  bool apply = false;
  bool verbose = false;
  TMySessionSettings target;
  bool ownTarget = false;
};

TCmpObjSetType parseObjects(const std::string& list) {
  static const std::pair<const char*, TCmpObjType> kinds[] = {
      {"table", coTable},       {"view", coView},          {"index", coIndex}, {"primary", coPrimaryKey},
      {"unique", coUnique},     {"foreign", coForeignKey}, {"check", coCheck}, {"procedure", coProcedure},
      {"function", coFunction}, {"trigger", coTrigger}};
  TCmpObjSetType objects;
  std::istringstream in(list);
  for (std::string item; std::getline(in, item, ',');) {
    const auto* kind =
        std::find_if(std::begin(kinds), std::end(kinds), [&](const auto& k) { return item == k.first; });
    if (kind == std::end(kinds)) throw std::invalid_argument("unknown kind \"" + item + "\" in --objects");
    objects.add(kind->second);
  }
  return objects;
}

void readFlags(const ParsedArgs& args, CompareFlags& flags) {
  flags.target = args.connection;
  for (const std::string& flag : args.flags) {
    const CommandFlag option(flag);
    const std::string& name = option.name();
    if (name == "--objects") {
      flags.objects = parseObjects(option.value());
    } else if (name == "--charset") {
      flags.server.CharSet = option.value();
    } else if (name == "--names") {
      flags.server.Names = option.value();
    } else if (name == "--result-file") {
      flags.resultFile = option.value();
    } else if (readTargetOption(option, flags.target)) {
      flags.ownTarget = true;
    } else if (flag == "--case-insensitive") {
      flags.caseSensitive = false;
    } else if (flag == "--apply") {
      flags.apply = true;
    } else if (flag == "--verbose") {
      flags.verbose = true;
    } else {
      throw std::invalid_argument("unknown option " + flag);
    }
  }
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// One side: a script file, or a database on a connection of its own.
struct Side {
  TMySQLScriptExtract extract;
  TDBStructure structure;
  TSshTunnel tunnel;  // outlives the session that runs through it
  TMyConnection session;

  bool live() const { return extract.ExtractFrom == TExtractFromType::efDatabase; }
  void open(const std::string& name, const ParsedArgs& args, const TMySessionSettings* typed) {
    if (std::filesystem::is_regular_file(name)) {
      extract.ExtractFrom = TExtractFromType::efScript;
      extract.Script = readFile(name);
      return;
    }
    extract.ExtractFrom = TExtractFromType::efDatabase;
    extract.Database = name;
    if (typed) {
      session.Settings = *typed;
      session.Connect();
    } else {
      connectSession(args, session, tunnel);
    }
    extract.Connection = &session;
  }
};

void writeResult(const std::string& file, const std::string& script) {
  const std::string temporary = file + ".tmp";
  std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
  out.write(script.data(), static_cast<std::streamsize>(script.size()));
  out.close();
  if (!out) {
    std::filesystem::remove(temporary);
    throw std::runtime_error("cannot write " + file);
  }
  std::filesystem::rename(temporary, file);
}

}  // namespace

int runCompare(const ParsedArgs& args, std::FILE* out, std::FILE* err) {
  if (std::find(args.flags.begin(), args.flags.end(), "--help") != args.flags.end()) {
    std::fputs(kCompareUsage, out);
    return 0;
  }
  CompareFlags flags;
  try {
    if (args.positional.size() != 2) throw std::invalid_argument("SOURCE and TARGET are needed");
    readFlags(args, flags);
  } catch (const std::exception& e) {
    std::fprintf(err, "lomarin-cli compare: %s\n%s", e.what(), kCompareUsage);
    return 2;
  }
  Side source, target;
  TDBComparer comparer;
  comparer.CompareObjects = flags.objects;
  comparer.MySQLCompareOptions.CaseSensitiveIdentifiers = flags.caseSensitive;
  comparer.MySQLServerOptions = flags.server;
  comparer.DBStructureMaster = &source.structure;
  comparer.DBStructureTarget = &target.structure;
  comparer.ExtractorMaster = &source.extract;
  comparer.ExtractorTarget = &target.extract;
  comparer.OnLogNextLine = [&](const std::string& line) {
    if (flags.verbose) std::fprintf(err, "%s\n", line.c_str());
  };
  int applyErrors = 0;
  try {
    source.open(args.positional[0], args, nullptr);
    target.open(args.positional[1], args, flags.ownTarget ? &flags.target : nullptr);
    if (flags.apply && !target.live()) throw std::invalid_argument("--apply needs a database as TARGET");
    comparer.CompareDatabases();
    if (!flags.resultFile.empty())
      writeResult(flags.resultFile, comparer.Script());
    else if (!flags.apply)
      std::fwrite(comparer.Script().data(), 1, comparer.Script().size(), out);
    if (flags.apply && comparer.StatementCount() > 0) {
      auto& exec = comparer.Exec();
      exec.Connection = &target.session;
      exec.OnLogNextLine = [&](const std::string& line) {
        if (flags.verbose || line.starts_with("< ") || line.starts_with("// "))
          std::fprintf(err, "%s\n", line.c_str());
      };
      exec.OnErrorMessage = [&](const std::string& message) { std::fprintf(err, "%s\n", message.c_str()); };
      applyErrors = exec.ExecuteScript(comparer.Script()).Errors;
    }
  } catch (const std::exception& e) {
    std::fprintf(err, "lomarin-cli compare: %s\n", e.what());
    return 2;
  }
  if (applyErrors > 0) return 2;
  return comparer.StatementCount() > 0 ? 1 : 0;
}

}  // namespace lomarin::cli
