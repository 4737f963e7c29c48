// Transfers every table of one database to another on the same server, the way the transfer
// dialog does; prints the log. bench/transfer_compare.sh times it.
//   transfer_bench HOST PORT USER PASSWORD SOURCE_DB TARGET_DB
#include <cstdio>
#include <string>

#include "engine/transfer/transfer_database.h"

int main(int argc, char** argv) {
  if (argc != 7) {
    std::fprintf(stderr, "usage: transfer_bench HOST PORT USER PASSWORD SOURCE_DB TARGET_DB\n");
    return 2;
  }
  using namespace lomarin;
  TMySessionSettings settings;
  settings.Server = argv[1];
  settings.Port = std::stoi(argv[2]);
  settings.Username = argv[3];
  settings.Password = argv[4];
  try {
    TMyConnection source, target;
    source.Settings = settings;
    source.Settings.Database = argv[5];
    source.Connect();
    target.Settings = settings;
    target.Settings.Database = argv[6];
    TTransferDatabase transfer(source, target);
    transfer.OnLog = [](const std::string& line) { std::printf("%s\n", line.c_str()); };
    TTransferPlan plan{argv[5], argv[6], TransferTableNames(source, argv[5]), false, {}};
    return transfer.Run(plan) ? 0 : 1;
  } catch (const ServerError& error) {
    std::fprintf(stderr, "Error %u: %s\n", error.number(), error.message().c_str());
    return 1;
  }
}
