#!/usr/bin/env bash
# Compares two databases of 1 000 tables (12 columns, 3 secondary indexes each) of which 5 % differ,
# with `lomarin-cli compare`; prints wall time and peak memory (median of RUNS), with the time
# mariadb-dump --no-data takes to write both structures out as a reference, and checks that the
# script, once applied, leaves the two databases equal.
#   bench/schema_compare.sh [--dir SANDBOX_DIR] [--cli PATH] [RUNS]
# shellcheck source=bench/common.sh
source "$(dirname "$0")/common.sh"
runs=${1:-3}
require_cli

tables=1000
source_db=lomarin_cmp_source
target_db=lomarin_cmp_target

table_sql() {  # NAME CHANGED: one table; a changed one differs in a type, a default, an index and an extra column
  local name=$1 changed=$2
  local note="VARCHAR(200) NULL" status="TINYINT NOT NULL DEFAULT 0" ix3="KEY ix_c (c1, c2)" extra=""
  if [[ $changed == 1 ]]; then
    note="VARCHAR(100) NULL"; status="TINYINT NOT NULL DEFAULT 1"; ix3="KEY ix_c (c2, c1)"; extra=", old_col INT NULL"
  fi
  cat <<SQL
CREATE TABLE $name (
  id INT UNSIGNED NOT NULL AUTO_INCREMENT, c1 INT NOT NULL, c2 INT NULL, name VARCHAR(60) NOT NULL,
  note $note, amount DECIMAL(12,2) NOT NULL DEFAULT 0.00, created DATETIME NOT NULL DEFAULT CURRENT_TIMESTAMP,
  status $status, flag BIT(1) NULL, code CHAR(8) NOT NULL DEFAULT '', body TEXT NULL, ratio DOUBLE NULL$extra,
  PRIMARY KEY (id), KEY ix_name (name), KEY ix_created (created), $ix3
) ENGINE=InnoDB;
SQL
}

make_database() {  # NAME CHANGED_EVERY (0: none changed)
  local db=$1 every=$2
  if [[ $(sql -N -e "SELECT COUNT(*) FROM information_schema.TABLES WHERE TABLE_SCHEMA = '$db'") == "$tables" ]]; then
    return
  fi
  echo "creating $db: $tables tables..."
  {
    echo "DROP DATABASE IF EXISTS $db; CREATE DATABASE $db; USE $db;"
    for ((t = 1; t <= tables; t++)); do
      table_sql "t$t" $(( every > 0 && t % every == 0 ? 1 : 0 ))
    done
  } | sql
}

make_database "$source_db" 0
make_database "$target_db" 20  # 50 of 1 000 tables: 5 %

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
measure() {  # prints "seconds kilobytes" of one run
  /usr/bin/time -f "%e %M" -o "$work/time" "$@" >"$work/out.sql" || true
  tail -1 "$work/time"  # after a "Command exited with non-zero status" line
}
median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

results=()
for ((i = 0; i < runs; i++)); do results+=("$(measure "$cli" compare "${conn[@]}" "$source_db" "$target_db")"); done
statements=$(grep -c $';\r$' "$work/out.sql" || true)
ours_time=$(printf '%s\n' "${results[@]}" | awk '{ print $1 }' | median)
ours_mem=$(printf '%s\n' "${results[@]}" | awk '{ print $2 }' | sort -n | tail -1)

dumps=()
for ((i = 0; i < runs; i++)); do
  dumps+=("$(measure bash -c "mariadb-dump --no-defaults ${conn[*]} --no-data $source_db; mariadb-dump --no-defaults ${conn[*]} --no-data $target_db")")
done
dump_time=$(printf '%s\n' "${dumps[@]}" | awk '{ print $1 }' | median)

echo "lomarin-cli compare ($tables tables, 5 % changed): ${ours_time} s, peak ${ours_mem} KiB, $statements statement lines"
echo "mariadb-dump --no-data of both databases:  ${dump_time} s"

"$cli" compare "${conn[@]}" --apply "$source_db" "$target_db" >/dev/null 2>"$work/apply.log" || true
if "$cli" compare "${conn[@]}" "$source_db" "$target_db" >/dev/null; then
  echo "applied: the two databases are now equal"
  sql -e "DROP DATABASE $target_db"  # changed again on the next run
else
  echo "applied, but differences remain:" >&2
  cat "$work/apply.log" >&2
  exit 1
fi
