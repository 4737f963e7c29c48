#!/usr/bin/env bash
# Runs a script of 100 000 single-row INSERTs (autocommit: each commits on its own) with
# `lomarin-cli exec --optimize`, `lomarin-cli exec` and `mariadb < file`, in one run.
#   bench/exec_inserts.sh [--dir SANDBOX_DIR] [--build BUILD_DIR]
# shellcheck source=bench/exec_common.sh
source "$(dirname "$0")/exec_common.sh"
script="$work/inserts100k.sql"
{
  echo "DROP TABLE IF EXISTS single_rows;"
  echo "CREATE TABLE single_rows (id INT PRIMARY KEY, name VARCHAR(40), amount DECIMAL(10,2)) ENGINE=InnoDB;"
  seq 1 100000 | awk '{printf "INSERT INTO single_rows VALUES (%d, '\''name %d'\'', %d.%02d);\n", $1, $1, $1 % 1000, $1 % 100}'
} >"$script"
sql -e "DROP DATABASE IF EXISTS lomarin_bench_ins; CREATE DATABASE lomarin_bench_ins"
count() { sql -N -e "SELECT COUNT(*) FROM lomarin_bench_ins.single_rows"; }
t_opt=$(wall "$cli" exec "${conn[@]}" --database=lomarin_bench_ins --optimize "$script"); n_opt=$(count)
t_plain=$(wall "$cli" exec "${conn[@]}" --database=lomarin_bench_ins "$script"); n_plain=$(count)
t_peer=$(wall sh -c "mariadb --no-defaults ${conn[*]} lomarin_bench_ins < '$script'"); n_peer=$(count)
echo "lomarin-cli exec --optimize: $t_opt s ($n_opt rows)"
echo "lomarin-cli exec           : $t_plain s ($n_plain rows)"
echo "mariadb < file             : $t_peer s ($n_peer rows)"
echo "ratio --optimize / mariadb : $(ratio "$t_opt" "$t_peer")"
echo "ratio plain / mariadb      : $(ratio "$t_plain" "$t_peer")"
sql -e "DROP DATABASE lomarin_bench_ins"
