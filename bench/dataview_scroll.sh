#!/usr/bin/env bash
# Opens a 1 000 000-row table in the data grid with the limit off and scrolls to its last row
# (dataview_scroll_bench, offscreen), and reads the same rows with the mariadb client in
# batch/quick mode, on the same sandbox server in the same run. Prints wall time and peak memory
# of each (median time, highest memory of RUNS runs) and the raw size of the data.
#   bench/dataview_scroll.sh [--dir SANDBOX_DIR] [--build BUILD_DIR] [RUNS]
# shellcheck source=bench/common.sh
source "$(dirname "$0")/common.sh"
runs=${1:-3}
cmake --build "$build" --target dataview_scroll_bench >/dev/null
bench="$build/bench/dataview_scroll_bench"


table=lomarin_bench.grid_rows
if [[ $(sql -N -e "SELECT COUNT(*) FROM $table" 2>/dev/null || echo 0) != 1000000 ]]; then
  echo "creating $table (1 000 000 rows)..."
  sql <<SQL
CREATE DATABASE IF NOT EXISTS lomarin_bench;
DROP TABLE IF EXISTS $table;
CREATE TABLE $table (
  row_id INT UNSIGNED NOT NULL PRIMARY KEY,
  label VARCHAR(40) NOT NULL,
  price DECIMAL(10,2) NOT NULL,
  changed DATETIME NOT NULL,
  remark VARCHAR(80) NULL
) ENGINE=InnoDB;
SET SESSION max_recursive_iterations = 2000000;
INSERT INTO $table
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000000)
SELECT i, CONCAT('item ', i), (i % 50000) / 10, '2025-06-01' + INTERVAL (i % 100000) SECOND,
       IF(i % 5 = 0, NULL, CONCAT('remark ', i, ' for the grid benchmark'))
FROM n;
SQL
fi
raw=$(sql -N -e "SELECT SUM(LENGTH(row_id) + LENGTH(label) + LENGTH(price) + LENGTH(changed) + IFNULL(LENGTH(remark), 0)) FROM $table")

measure() {  # prints "seconds kilobytes" of one run
  /usr/bin/time -f "%e %M" -o /tmp/lomarin-grid-bench.$$ "$@" >/dev/null
  cat /tmp/lomarin-grid-bench.$$
}
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }

declare -a ours theirs ours_mem theirs_mem
for ((i = 0; i < runs; i++)); do
  read -r t m < <(QT_QPA_PLATFORM=offscreen measure "$bench" "$table"); ours+=("$t"); ours_mem+=("$m")
  read -r t m < <(measure mariadb --no-defaults "${conn[@]}" --batch --quick -e "select * from $table")
  theirs+=("$t"); theirs_mem+=("$m")
done
rm -f /tmp/lomarin-grid-bench.$$

t_ours=$(printf '%s\n' "${ours[@]}" | median)
t_theirs=$(printf '%s\n' "${theirs[@]}" | median)
m_ours=$(printf '%s\n' "${ours_mem[@]}" | sort -n | tail -1)
m_theirs=$(printf '%s\n' "${theirs_mem[@]}" | sort -n | tail -1)
raw_kib=$((raw / 1024))
echo "raw data               : ${raw_kib} KiB"
echo "grid, scrolled to end  : ${t_ours} s (median of $runs), peak ${m_ours} KiB"
echo "mariadb --batch --quick: ${t_theirs} s (median of $runs), peak ${m_theirs} KiB"
awk -v a="$t_ours" -v b="$t_theirs" -v m="$m_ours" -v r="$raw_kib" \
  'BEGIN {printf "wall ratio %.2f (target <= 1.5), memory / raw data %.2f (target <= 3)\n", a / b, m / r}'
