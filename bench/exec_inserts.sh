#!/usr/bin/env bash
# Runs a script of 100 000 single-row INSERTs (autocommit: each commits on its own) with
# `lomarin-cli exec --optimize` and `mariadb < file` in one run (peer, ours, ours, peer, each
# after the server settled), and `lomarin-cli exec` without batching once for reference.
#   bench/exec_inserts.sh [--dir SANDBOX_DIR] [--build BUILD_DIR]
# shellcheck source=bench/exec_common.sh
source "$(dirname "$0")/exec_common.sh"
script="$work/inserts100k.sql"
{
  echo "CREATE TABLE single_rows (id INT PRIMARY KEY, name VARCHAR(40), amount DECIMAL(10,2)) ENGINE=InnoDB;"
  seq 1 100000 | awk '{printf "INSERT INTO single_rows VALUES (%d, '\''name %d'\'', %d.%02d);\n", $1, $1, $1 % 1000, $1 % 100}'
} >"$script"
db=lomarin_bench_ins
rows() { sql -N -e "SELECT COUNT(*) FROM $db.single_rows"; }
peer() { timed_run $db peer sh -c "mariadb --no-defaults ${conn[*]} $db < '$script'"; [[ $(rows) == 100000 ]]; }
optimized() { timed_run $db optimized "$cli" exec "${conn[@]}" --database=$db --optimize "$script"; [[ $(rows) == 100000 ]]; }
peer; optimized; optimized; peer
timed_run $db plain "$cli" exec "${conn[@]}" --database=$db "$script"; [[ $(rows) == 100000 ]]
sql -e "DROP DATABASE $db"
echo "mariadb < file             : $(mean_of peer) s mean of 2 (client CPU $(cpu_mean_of peer) s)"
echo "lomarin-cli exec --optimize: $(mean_of optimized) s mean of 2 (client CPU $(cpu_mean_of optimized) s)"
echo "lomarin-cli exec           : $(mean_of plain) s, one run"
echo "ratio --optimize / mariadb : $(ratio "$(mean_of optimized)" "$(mean_of peer)")"
echo "all runs inserted 100000 rows"
