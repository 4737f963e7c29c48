#include "query_command.h"

#include "cli_session.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/my_query.h"
#include "engine/connect/ssh_tunnel.h"
#include "tsv_writer.h"

namespace lomarin::cli {

int runQuery(const ParsedArgs& args, std::FILE* out, std::FILE* err) {
  if (args.positional.size() != 1) {
    std::fprintf(err, "usage: lomarin-cli query [connection options] STATEMENT\n");
    return 2;
  }
  TSshTunnel tunnel;
  TMyConnection session;
  try {
    connectSession(args, session, tunnel);
    TMyQuery query(session);
    query.SQL = args.positional.front();
    query.UniDirectional = true;
    query.FetchAll = false;
    query.Open();
    TsvWriter writer(out);
    const auto& fields = query.Fields();
    for (size_t i = 0; i < fields.size(); ++i) writer.field(fields[i].Name, false, i == 0);
    if (!fields.empty()) writer.endRow();
    while (query.Next()) {
      for (size_t i = 0; i < fields.size(); ++i) writer.field(query.Value(i), query.IsNull(i), i == 0);
      writer.endRow();
    }
  } catch (const ServerError& error) {
    std::fflush(out);
    std::fprintf(err, "ERROR %u (%s): %s\n", error.number(), error.sqlstate().c_str(), error.what());
    return 1;
  }
  return 0;
}

}  // namespace lomarin::cli
