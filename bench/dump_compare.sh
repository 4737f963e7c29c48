#!/usr/bin/env bash
# Dumps 8 sysbench-like tables of 125 000 rows each with `lomarin-cli dump` and with mariadb-dump,
# on the same sandbox server in the same run; prints wall time (median of RUNS) and peak memory
# of each, then restores our script into a scratch database and compares every table's checksum.
#   bench/dump_compare.sh [--dir SANDBOX_DIR] [--cli PATH] [RUNS]
# shellcheck source=bench/common.sh
source "$(dirname "$0")/common.sh"
runs=${1:-3}
require_cli

db=lomarin_sbtest
tables=8
rows=125000
ensure_sbtest "$db" "$tables" "$rows"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
measure() {  # prints "seconds kilobytes" of one run; the command's output goes to $work/out.sql
  /usr/bin/time -f "%e %M" -o "$work/time" "$@" >"$work/out.sql"
  cat "$work/time"
}
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }

declare -a ours theirs ours_mem theirs_mem
for ((i = 0; i < runs; i++)); do
  read -r t m < <(measure "$cli" dump "${conn[@]}" "$db"); ours+=("$t"); ours_mem+=("$m")
  cp "$work/out.sql" "$work/ours.sql"
  read -r t m < <(measure mariadb-dump --no-defaults "${conn[@]}" "$db"); theirs+=("$t"); theirs_mem+=("$m")
done

t_ours=$(printf '%s\n' "${ours[@]}" | median)
t_theirs=$(printf '%s\n' "${theirs[@]}" | median)
m_ours=$(printf '%s\n' "${ours_mem[@]}" | sort -n | tail -1)
m_theirs=$(printf '%s\n' "${theirs_mem[@]}" | sort -n | tail -1)
echo "script size            : $(stat -c %s "$work/ours.sql") bytes (mariadb-dump: $(stat -c %s "$work/out.sql"))"
echo "lomarin-cli dump       : ${t_ours} s (median of $runs), peak ${m_ours} KiB"
echo "mariadb-dump           : ${t_theirs} s (median of $runs), peak ${m_theirs} KiB"
awk -v a="$t_ours" -v b="$t_theirs" 'BEGIN {printf "wall-time ratio        : %.3f\n", a / b}'

# The script must restore to the same rows, or the timing means nothing.
sql -e "DROP DATABASE IF EXISTS ${db}_restore; CREATE DATABASE ${db}_restore"
sql "${db}_restore" <"$work/ours.sql"
expect_equal_sbtest "$tables" "$db" "${db}_restore" restored
sql -e "DROP DATABASE ${db}_restore"
