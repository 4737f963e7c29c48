// Splits a script file with TStatementSplitter and prints its throughput.
//   splitter_bench FILE
#include <chrono>
#include <cstdio>
#include <fstream>

#include "engine/sqleditor/statement_splitter.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: splitter_bench FILE\n");
    return 2;
  }
  std::ifstream in(argv[1], std::ios::binary);
  if (!in) {
    std::fprintf(stderr, "splitter_bench: cannot read %s\n", argv[1]);
    return 2;
  }
  const auto start = std::chrono::steady_clock::now();
  lomarin::TStatementSplitter splitter(in);
  std::string statement;
  size_t statements = 0, statementBytes = 0;
  while (splitter.next(statement)) {
    ++statements;
    statementBytes += statement.size();
  }
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  const double mb = splitter.position() / 1e6;
  std::printf("%zu statements, %.1f MB in %.3f s: %.0f MB/s (statement text %.1f MB)\n", statements, mb, seconds,
              mb / seconds, statementBytes / 1e6);
  return 0;
}
