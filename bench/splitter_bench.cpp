// Splits a script file with TStatementSplitter and prints its throughput.
//   splitter_bench FILE
#include <chrono>
#include <cstdio>
#include <ctime>
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
  const std::clock_t cpuStart = std::clock();
  lomarin::TStatementSplitter splitter(in);
  std::string statement;
  size_t statements = 0, statementBytes = 0;
  while (splitter.next(statement)) {
    ++statements;
    statementBytes += statement.size();
  }
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  // CPU time counts only while the program ran, so it holds on a busy machine too.
  const double cpuSeconds = static_cast<double>(std::clock() - cpuStart) / CLOCKS_PER_SEC;
  const double mb = splitter.position() / 1e6;
  std::printf("%zu statements, %.1f MB (statement text %.1f MB)\n", statements, mb, statementBytes / 1e6);
  std::printf("wall %.3f s: %.0f MB/s; CPU %.3f s: %.0f MB per CPU second\n", seconds, mb / seconds, cpuSeconds,
              mb / cpuSeconds);
  return 0;
}
