#!/usr/bin/env bash
# Transfers 8 sysbench-like tables of 125 000 rows each to another database with the transfer
# engine (bench/transfer_bench.cpp) and with `mariadb-dump | mariadb`, on the same sandbox server in
# the same run; prints wall time (median of RUNS), peak memory, and the CPU time of the tool and of
# the server for each, and checks that every table's checksum in our copy equals the source's.
#   bench/transfer_compare.sh [--dir SANDBOX_DIR] [--build BUILD_DIR] [RUNS]
# shellcheck source=bench/common.sh
source "$(dirname "$0")/common.sh"
runs=${1:-3}
bench_bin=$build/bench/transfer_bench
[[ -x $bench_bin ]] || { echo "build first: cmake --build $build --target transfer_bench" >&2; exit 1; }

db=lomarin_sbtest
tables=8
rows=125000
ensure_sbtest "$db" "$tables" "$rows"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fresh() { sql -e "DROP DATABASE IF EXISTS $1; CREATE DATABASE $1"; }
server_pid=$(cat "$sandbox/mariadbd.pid")
server_ticks() { awk '{print $14 + $15}' "/proc/$server_pid/stat"; }
measure() {  # prints "seconds kilobytes tool-cpu-seconds server-cpu-seconds" of one run
  local before
  before=$(server_ticks)
  /usr/bin/time -f "%e %M %U %S" -o "$work/time" "$@" >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
  awk -v a="$before" -v b="$(server_ticks)" -v hz="$(getconf CLK_TCK)" \
    '{printf "%s %s %.2f %.2f\n", $1, $2, $3 + $4, (b - a) / hz}' "$work/time"
}
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }
# The peer tools piped, as one process tree so time sees both: SOURCE TARGET CONNECTION-OPTIONS...
# shellcheck disable=SC2016 # expanded by the inner shell
pipe_copy=(bash -c 'from=$1 to=$2; shift 2; mariadb-dump --no-defaults "$@" "$from" | mariadb --no-defaults "$@" "$to"' _)

declare -a ours theirs ours_mem theirs_mem ours_tool theirs_tool ours_cpu theirs_cpu
for ((i = 0; i < runs; i++)); do
  fresh "${db}_copy"
  read -r t m u c < <(measure "$bench_bin" "$LOMARIN_TEST_HOST" "$LOMARIN_TEST_PORT" "$LOMARIN_TEST_USER" \
    "$LOMARIN_TEST_PASSWORD" "$db" "${db}_copy")
  ours+=("$t"); ours_mem+=("$m"); ours_tool+=("$u"); ours_cpu+=("$c")
  fresh "${db}_pipe"
  read -r t m u c < <(measure "${pipe_copy[@]}" "$db" "${db}_pipe" "${conn[@]}")
  theirs+=("$t"); theirs_mem+=("$m"); theirs_tool+=("$u"); theirs_cpu+=("$c")
done

t_ours=$(printf '%s\n' "${ours[@]}" | median)
t_theirs=$(printf '%s\n' "${theirs[@]}" | median)
m_ours=$(printf '%s\n' "${ours_mem[@]}" | sort -n | tail -1)
m_theirs=$(printf '%s\n' "${theirs_mem[@]}" | sort -n | tail -1)
u_ours=$(printf '%s\n' "${ours_tool[@]}" | median)
u_theirs=$(printf '%s\n' "${theirs_tool[@]}" | median)
c_ours=$(printf '%s\n' "${ours_cpu[@]}" | median)
c_theirs=$(printf '%s\n' "${theirs_cpu[@]}" | median)
echo "transfer engine        : ${t_ours} s (median of $runs), peak ${m_ours} KiB"
echo "mariadb-dump | mariadb : ${t_theirs} s (median of $runs), peak ${m_theirs} KiB (largest of the two)"
echo "CPU, tool / server     : ours ${u_ours} s / ${c_ours} s, theirs ${u_theirs} s / ${c_theirs} s (medians)"
awk -v a="$t_ours" -v b="$t_theirs" 'BEGIN {printf "wall-time ratio        : %.3f\n", a / b}'

expect_equal_sbtest "$tables" "$db" "${db}_copy" copied
sql -e "DROP DATABASE ${db}_copy; DROP DATABASE ${db}_pipe"
