#!/usr/bin/env bash
# Streams a 1 000 000-row table through `lomarin-cli query` and through the mariadb client in
# batch/quick mode, on the same sandbox server in the same run, and prints wall time and peak
# memory of each (median of RUNS runs).
#   bench/query_stream.sh [--dir SANDBOX_DIR] [RUNS]
# shellcheck source=bench/common.sh
source "$(dirname "$0")/common.sh"
runs=${1:-5}
require_cli

ensure_big_table

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
