#!/usr/bin/env bash
# Time and memory to open a 100 MB script in the SQL editor.
#   bench/editor_open.sh [--build BUILD_DIR]
set -euo pipefail
build="$(cd "$(dirname "$0")/.." && pwd)/build"
[[ "${1:-}" == "--build" ]] && build="$2"
cmake --build "$build" --target editor_open_bench >/dev/null
script="${TMPDIR:-/tmp}/lomarin_editor_open_100mb.sql"
if [[ ! -f "$script" ]]; then
  # Lines like a dump's: an INSERT with a few rows of mixed values.
  python3 - "$script" <<'PY'
import sys
row = "({0}, 'customer {0}', 'city-{1}', {2}.{3:02d}, '2024-01-{4:02d} 10:00:00')"
with open(sys.argv[1], "w") as out:
    size, n = 0, 0
    while size < 100 * 1024 * 1024:
        line = "INSERT INTO orders VALUES " + ", ".join(row.format(n + k, (n + k) % 97, (n + k) % 1000, k, k % 28 + 1) for k in range(5)) + ";\n"
        out.write(line)
        size += len(line)
        n += 5
PY
fi
cat "$script" >/dev/null  # warm the page cache
"$build/bench/editor_open_bench" "$script"
