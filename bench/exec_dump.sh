#!/usr/bin/env bash
# Loads a 200 MB mariadb-dump file with `lomarin-cli exec` and with `mariadb < file` into an
# empty database of the same server, in one run: peer, ours, ours, peer, each after the server
# has written its dirty pages, so neither side gains from going first. Prints the mean wall
# time of each side, their ratio, the clients' own CPU time, and checks the table checksums.
#   bench/exec_dump.sh [--dir SANDBOX_DIR] [--build BUILD_DIR]
# shellcheck source=bench/exec_common.sh
source "$(dirname "$0")/exec_common.sh"
make_dump
db=lomarin_bench_load
declare -A sums
checksum() { sums[$1]=$(sql -N -e "CHECKSUM TABLE $db.dumped" | cut -f2); }
peer() { timed_run $db peer sh -c "mariadb --no-defaults ${conn[*]} $db < '$dump'"; checksum peer; }
ours() { timed_run $db ours "$cli" exec "${conn[@]}" --database=$db "$dump"; checksum ours; }
peer; ours; ours; peer
sql -e "DROP DATABASE $db"
echo "mariadb < file   : $(mean_of peer) s mean of 2 (client CPU $(cpu_mean_of peer) s)"
echo "lomarin-cli exec : $(mean_of ours) s mean of 2 (client CPU $(cpu_mean_of ours) s)"
echo "wall-time ratio  : $(ratio "$(mean_of ours)" "$(mean_of peer)")"
if [[ ${sums[ours]} != "${sums[peer]}" ]]; then
  echo "checksums differ: ${sums[ours]} vs ${sums[peer]}" >&2
  exit 1
fi
echo "checksums equal (${sums[ours]})"
