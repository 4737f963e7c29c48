#!/usr/bin/env bash
# Streams a 1 000 000-row table through `lomarin-cli query` and through the mariadb client in
# batch/quick mode, on the same sandbox server in the same run, and prints wall time and peak
# memory of each (median of RUNS runs).
#   bench/query_stream.sh [--dir SANDBOX_DIR] [RUNS]
# shellcheck source=bench/common.sh
source "$(dirname "$0")/common.sh"
runs=${1:-5}
require_cli

rows=$(mariadb --no-defaults "${conn[@]}" -N -e \
  "SELECT COUNT(*) FROM lomarin_bench.big" 2>/dev/null || echo 0)
if [[ $rows != 1000000 ]]; then
  echo "creating lomarin_bench.big (1 000 000 rows)..."
  mariadb --no-defaults "${conn[@]}" <<'SQL'
CREATE DATABASE IF NOT EXISTS lomarin_bench;
DROP TABLE IF EXISTS lomarin_bench.big;
CREATE TABLE lomarin_bench.big (
  id INT UNSIGNED NOT NULL PRIMARY KEY,
  name VARCHAR(40) NOT NULL,
  amount DECIMAL(12,2) NOT NULL,
  created DATETIME NOT NULL,
  note VARCHAR(100) NULL
) ENGINE=InnoDB;
SET SESSION max_recursive_iterations = 2000000;
INSERT INTO lomarin_bench.big
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000000)
SELECT i, CONCAT('customer ', i), (i % 100000) / 100, '2024-01-01' + INTERVAL (i % 86400) SECOND,
       IF(i % 7 = 0, NULL, CONCAT('note\tfor ', i, ' with a few more words in it'))
FROM n;
SQL
fi

sql="select * from lomarin_bench.big"
measure() {  # prints "seconds kilobytes" of one run
  /usr/bin/time -f "%e %M" -o /tmp/lomarin-bench.$$ "$@" >/dev/null
  cat /tmp/lomarin-bench.$$
}
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }

declare -a ours theirs ours_mem theirs_mem
for ((i = 0; i < runs; i++)); do
  read -r t m < <(measure "$cli" query "${conn[@]}" "$sql"); ours+=("$t"); ours_mem+=("$m")
  read -r t m < <(measure mariadb --no-defaults "${conn[@]}" --batch --quick -e "$sql"); theirs+=("$t"); theirs_mem+=("$m")
done
rm -f /tmp/lomarin-bench.$$

t_ours=$(printf '%s\n' "${ours[@]}" | median)
t_theirs=$(printf '%s\n' "${theirs[@]}" | median)
m_ours=$(printf '%s\n' "${ours_mem[@]}" | sort -n | tail -1)
m_theirs=$(printf '%s\n' "${theirs_mem[@]}" | sort -n | tail -1)
echo "lomarin-cli query      : ${t_ours} s (median of $runs), peak ${m_ours} KiB"
echo "mariadb --batch --quick: ${t_theirs} s (median of $runs), peak ${m_theirs} KiB"
awk -v a="$t_ours" -v b="$t_theirs" 'BEGIN {printf "wall-time ratio        : %.3f\n", a / b}'
# The output itself must match byte for byte, or the comparison means nothing.
if cmp -s <("$cli" query "${conn[@]}" "$sql") <(mariadb --no-defaults "${conn[@]}" --batch --quick -e "$sql"); then
  echo "outputs identical"
else
  echo "outputs differ" >&2
  exit 1
fi
