#!/usr/bin/env bash
# Loads a 200 MB mariadb-dump file with `lomarin-cli exec` and with `mariadb < file` into two
# empty databases of the same server, in one run, and compares wall time and table checksums.
#   bench/exec_dump.sh [--dir SANDBOX_DIR] [--build BUILD_DIR]
# shellcheck source=bench/exec_common.sh
source "$(dirname "$0")/exec_common.sh"
make_dump
fresh() { sql -e "DROP DATABASE IF EXISTS $1; CREATE DATABASE $1"; }
fresh lomarin_bench_ours
fresh lomarin_bench_peer
t_ours=$(wall "$cli" exec "${conn[@]}" --database=lomarin_bench_ours "$dump")
t_peer=$(wall sh -c "mariadb --no-defaults ${conn[*]} lomarin_bench_peer < '$dump'")
echo "lomarin-cli exec : $t_ours s"
echo "mariadb < file   : $t_peer s"
echo "wall-time ratio  : $(ratio "$t_ours" "$t_peer")"
a=$(sql -N -e "CHECKSUM TABLE lomarin_bench_ours.dumped" | cut -f2)
b=$(sql -N -e "CHECKSUM TABLE lomarin_bench_peer.dumped" | cut -f2)
[[ $a == "$b" ]] && echo "checksums equal ($a)" || { echo "checksums differ: $a vs $b" >&2; exit 1; }
sql -e "DROP DATABASE lomarin_bench_ours; DROP DATABASE lomarin_bench_peer"
