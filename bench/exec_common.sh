# shellcheck shell=bash
# Shared by the exec_*.sh benchmarks: timing helpers and the generated dump.
# shellcheck source=bench/common.sh
source "$(dirname "$0")/common.sh"
require_cli
work=${TMPDIR:-/tmp}/lomarin-bench
mkdir -p "$work"

# Seconds of wall time of one command, its output discarded; cpu_of_last gives the client's
# own CPU seconds (user + system) of that command.
wall() {
  /usr/bin/time -f "%e %U %S" -o "$work/time" "$@" >/dev/null
  cut -d' ' -f1 "$work/time"
}
cpu_of_last() { awk '{printf "%.2f", $2 + $3}' "$work/time"; }

# Waits until InnoDB has written its dirty pages (at most a minute), so that one run's
# background writing does not slow the next.
settle() {
  local saved; saved=$(sql -N -e "SELECT @@GLOBAL.innodb_max_dirty_pages_pct")
  sql -e "SET GLOBAL innodb_max_dirty_pages_pct = 0"
  for _ in $(seq 60); do
    (($(sql -N -e "SHOW GLOBAL STATUS LIKE 'Innodb_buffer_pool_pages_dirty'" | cut -f2) < 50)) && break
    sleep 1
  done
  sql -e "SET GLOBAL innodb_max_dirty_pages_pct = $saved"
}

# Runs a command against an emptied database $1 once the server has settled, adding its wall
# and client CPU seconds to side $2 (total[side], cpu[side], runs[side]).
declare -A total cpu runs
timed_run() {
  local db=$1 side=$2; shift 2
  sql -e "DROP DATABASE IF EXISTS $db; CREATE DATABASE $db"
  settle
  local t; t=$(wall "$@")
  total[$side]=$(awk -v a="${total[$side]:-0}" -v b="$t" 'BEGIN {print a + b}')
  cpu[$side]=$(awk -v a="${cpu[$side]:-0}" -v b="$(cpu_of_last)" 'BEGIN {print a + b}')
  runs[$side]=$((${runs[$side]:-0} + 1))
  echo "  $side: $t s" >&2
}
mean_of() { awk -v a="${total[$1]}" -v n="${runs[$1]}" 'BEGIN {printf "%.2f", a / n}'; }
cpu_mean_of() { awk -v a="${cpu[$1]}" -v n="${runs[$1]}" 'BEGIN {printf "%.2f", a / n}'; }

ratio() { awk -v a="$1" -v b="$2" 'BEGIN {printf "%.3f", a / b}'; }

# A mariadb-dump file of about 200 MB with extended inserts, made from a generated table.
make_dump() {
  dump="$work/dump200.sql"
  [[ -s $dump ]] && return
  echo "generating a 200 MB dump in $dump ..." >&2
  sql <<'SQL'
CREATE DATABASE IF NOT EXISTS lomarin_bench;
DROP TABLE IF EXISTS lomarin_bench.dumped;
CREATE TABLE lomarin_bench.dumped (
  id INT UNSIGNED NOT NULL PRIMARY KEY,
  name VARCHAR(40) NOT NULL,
  amount DECIMAL(12,2) NOT NULL,
  created DATETIME NOT NULL,
  note VARCHAR(200) NULL
) ENGINE=InnoDB;
SET SESSION max_recursive_iterations = 2000000;
INSERT INTO lomarin_bench.dumped
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1750000)
SELECT i, CONCAT('customer ', i), (i % 100000) / 100, '2024-01-01' + INTERVAL (i % 86400) SECOND,
       IF(i % 7 = 0, NULL, CONCAT('it''s a note; -- for ', i, ' with "quotes", a # and a few more words'))
FROM n;
SQL
  mariadb-dump --no-defaults "${conn[@]}" lomarin_bench dumped >"$dump"
}
