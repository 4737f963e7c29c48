#!/usr/bin/env bash
# One sysbench table of 1 000 000 rows against a copy where 1 % of the rows differ (a third
# changed, a third missing, a third extra): times `lomarin-cli sync` and Percona Toolkit's
# `pt-table-sync --print` on the same pair in the same run, with peak memory, then applies our
# script and compares the checksums.
#   bench/datasync_compare.sh [--dir SANDBOX_DIR] [--cli PATH] [RUNS]
# shellcheck source=bench/common.sh
source "$(dirname "$0")/common.sh"
runs=${1:-1}
require_cli
if ! command -v pt-table-sync >/dev/null; then
  echo "installing percona-toolkit..."
  DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends percona-toolkit >/dev/null
fi

src=lomarin_dsync_src
dst=lomarin_dsync_dst
rows=1000000
if [[ $(sql -N -e "SELECT COUNT(*) FROM $src.sbtest1" 2>/dev/null || echo 0) != "$rows" ]]; then
  echo "creating $src.sbtest1 ($rows rows)..."
  sql -e "DROP DATABASE IF EXISTS $src; CREATE DATABASE $src"
  sql "$src" <<SQL
CREATE TABLE sbtest1 (
  id INT NOT NULL AUTO_INCREMENT,
  k INT NOT NULL DEFAULT 0,
  c CHAR(120) NOT NULL DEFAULT '',
  pad CHAR(60) NOT NULL DEFAULT '',
  PRIMARY KEY (id),
  KEY k_1 (k)
) ENGINE=InnoDB;
INSERT INTO sbtest1 (id, k, c, pad)
SELECT seq, FLOOR(RAND(seq) * $rows),
       CONCAT_WS('-', LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0'),
                 LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0'),
                 LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0'),
                 LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0'),
                 LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0')),
       CONCAT_WS('-', LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0'),
                 LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0'),
                 LPAD(FLOOR(RAND() * 1e11), 11, '0'))
FROM seq_1_to_$rows;
SQL
fi

# The target: a copy in which every 100th row differs, in turn changed, missing and extra.
make_target() {
  sql -e "DROP DATABASE IF EXISTS $dst; CREATE DATABASE $dst"
  sql "$dst" <<SQL
CREATE TABLE sbtest1 LIKE $src.sbtest1;
INSERT INTO sbtest1 SELECT * FROM $src.sbtest1;
UPDATE sbtest1 SET k = k + 1, c = REVERSE(c) WHERE id % 300 = 0;
DELETE FROM sbtest1 WHERE id % 300 = 100;
INSERT INTO sbtest1 SELECT id + $rows, k, c, pad FROM $src.sbtest1 WHERE id % 300 = 200;
SQL
}
make_target

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
measure() {  # prints "seconds kilobytes" of one run; the command's output goes to $work/out.sql
  # Both tools exit 1 or 2 when they found differences.
  /usr/bin/time -f "%e %M" -o "$work/time" "$@" >"$work/out.sql" 2>"$work/err" || (($? <= 2))
  tail -1 "$work/time"
}
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }

dsn="h=$LOMARIN_TEST_HOST,P=$LOMARIN_TEST_PORT,u=$LOMARIN_TEST_USER,p=$LOMARIN_TEST_PASSWORD"
declare -a ours theirs ours_mem theirs_mem
for ((i = 0; i < runs; i++)); do
  read -r t m < <(measure "$cli" sync "${conn[@]}" --tables=sbtest1 "$src" "$dst"); ours+=("$t"); ours_mem+=("$m")
  cp "$work/out.sql" "$work/ours.sql"
  cp "$work/err" "$work/ours.err"
  read -r t m < <(measure pt-table-sync --print "$dsn,D=$src,t=sbtest1" "D=$dst,t=sbtest1"); theirs+=("$t"); theirs_mem+=("$m")
  cp "$work/out.sql" "$work/theirs.sql"
done

t_ours=$(printf '%s\n' "${ours[@]}" | median)
t_theirs=$(printf '%s\n' "${theirs[@]}" | median)
m_ours=$(printf '%s\n' "${ours_mem[@]}" | sort -n | tail -1)
m_theirs=$(printf '%s\n' "${theirs_mem[@]}" | sort -n | tail -1)
echo "lomarin-cli sync       : ${t_ours} s (median of $runs), peak ${m_ours} KiB; $(cat "$work/ours.err")"
echo "pt-table-sync --print  : ${t_theirs} s (median of $runs), peak ${m_theirs} KiB"
echo "statements             : $(grep -cE '^(INSERT|UPDATE|DELETE)' "$work/ours.sql") ours, $(grep -cE '^(INSERT|REPLACE|UPDATE|DELETE)' "$work/theirs.sql") pt-table-sync"
awk -v a="$t_ours" -v b="$t_theirs" 'BEGIN {printf "wall-time ratio        : %.3f\n", a / b}'

# Our script must make the tables equal, or the timing means nothing.
sql "$dst" <"$work/ours.sql"
sums() { sql -N -e "CHECKSUM TABLE $1.sbtest1" | awk '{print $2}'; }
if [[ $(sums "$src") == "$(sums "$dst")" ]]; then
  echo "checksums after apply  : equal"
else
  echo "checksums after apply differ" >&2
  exit 1
fi
sql -e "DROP DATABASE $dst"
