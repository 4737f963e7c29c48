#!/usr/bin/env bash
# Splitter throughput on a 200 MB mariadb-dump file, beside the time to merely read the file.
#   bench/exec_splitter.sh [--dir SANDBOX_DIR] [--build BUILD_DIR]
# shellcheck source=bench/exec_common.sh
source "$(dirname "$0")/exec_common.sh"
cmake --build "$build" --target splitter_bench >/dev/null
make_dump
cat "$dump" >/dev/null  # warm the page cache for both
echo "file: $(du -m "$dump" | cut -f1) MB"
echo "read only (cat)  : $(wall cat "$dump") s"
"$build/bench/splitter_bench" "$dump"
