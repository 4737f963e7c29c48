# shellcheck shell=bash
# Shared by the bench scripts: options, the sandbox server and its connection. Sourced before
# the script reads its own arguments; the options below are taken off the front.
#   --dir SANDBOX_DIR (default .sandbox)   --build BUILD_DIR (default build)   --cli PATH
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
sandbox="$root/.sandbox"
build="$root/build"
cli=""
while [[ ${1:-} == --* ]]; do
  case $1 in
    --dir) sandbox=$2; shift 2 ;;
    --build) build=$2; shift 2 ;;
    --cli) cli=$2; shift 2 ;;
    *) echo "unknown option $1" >&2; exit 2 ;;
  esac
done
cli=${cli:-$build/src/apps/lomarin-cli/lomarin-cli}

require_cli() { [[ -x $cli ]] || { echo "build first: $cli is missing" >&2; exit 1; }; }

"$root/scripts/sandbox-server" start --dir "$sandbox" >/dev/null
# shellcheck disable=SC1091
source "$sandbox/sandbox.env"
conn=(--host="$LOMARIN_TEST_HOST" --port="$LOMARIN_TEST_PORT" --user="$LOMARIN_TEST_USER" --password="$LOMARIN_TEST_PASSWORD")
sql() { mariadb --no-defaults "${conn[@]}" "$@"; }

# The 1 000 000-row table lomarin_bench.big the streaming benchmarks read; made once.
ensure_big_table() {
  local rows
  rows=$(sql -N -e "SELECT COUNT(*) FROM lomarin_bench.big" 2>/dev/null || echo 0)
  [[ $rows == 1000000 ]] && return
  echo "creating lomarin_bench.big (1 000 000 rows)..."
  sql <<'SQL'
CREATE DATABASE IF NOT EXISTS lomarin_bench;
DROP TABLE IF EXISTS lomarin_bench.big;
CREATE TABLE lomarin_bench.big (
  id INT UNSIGNED NOT NULL PRIMARY KEY,
  name VARCHAR(40) NOT NULL,
  amount DECIMAL(12,2) NOT NULL,
  created DATETIME NOT NULL,
  note VARCHAR(100) NULL
) ENGINE=InnoDB;
SET SESSION max_recursive_iterations = 2000000;
INSERT INTO lomarin_bench.big
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000000)
SELECT i, CONCAT('customer ', i), (i % 100000) / 100, '2024-01-01' + INTERVAL (i % 86400) SECOND,
       IF(i % 7 = 0, NULL, CONCAT('note\tfor ', i, ' with a few more words in it'))
FROM n;
SQL
}

# DB with TABLES sysbench-like tables sbtest1.. of ROWS rows each; made once.
ensure_sbtest() {
  local db=$1 tables=$2 rows=$3 have t
  have=$(sql -N -e "SELECT COUNT(*) FROM information_schema.TABLES WHERE TABLE_SCHEMA = '$db'" 2>/dev/null || echo 0)
  if [[ $have == "$tables" ]] && [[ $(sql -N -e "SELECT COUNT(*) FROM $db.sbtest$tables") == "$rows" ]]; then
    return
  fi
  echo "creating $db: $tables tables of $rows rows..."
  sql -e "DROP DATABASE IF EXISTS $db; CREATE DATABASE $db"
  for ((t = 1; t <= tables; t++)); do
    sql "$db" <<SQL
CREATE TABLE sbtest$t (
  id INT NOT NULL AUTO_INCREMENT,
  k INT NOT NULL DEFAULT 0,
  c CHAR(120) NOT NULL DEFAULT '',
  pad CHAR(60) NOT NULL DEFAULT '',
  PRIMARY KEY (id),
  KEY k_$t (k)
) ENGINE=InnoDB;
SET SESSION max_recursive_iterations = $rows;
INSERT INTO sbtest$t (id, k, c, pad)
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < $rows)
SELECT i, FLOOR(RAND() * $rows),
       CONCAT_WS('-', LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0'),
                 LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0'),
                 LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0'),
                 LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0'),
                 LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0')),
       CONCAT_WS('-', LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0'),
                 LPAD(FLOOR(RAND() * 1e11), 11, '0'), LPAD(FLOOR(RAND() * 1e11), 11, '0'),
                 LPAD(FLOOR(RAND() * 1e11), 11, '0'))
FROM n;
SQL
  done
}

# Compares the checksums of the sbtest1..sbtestN tables of two databases; a difference ends the
# bench, as its timing would mean nothing.
#   expect_equal_sbtest TABLES DB OTHER WHAT
expect_equal_sbtest() {
  local list
  list=$(for ((t = 1; t <= $1; t++)); do printf 'sbtest%d,' "$t"; done)
  sums() { sql -N -e "CHECKSUM TABLE ${list%,}" "$1" | awk '{print $2}'; }
  if [[ $(sums "$2") == "$(sums "$3")" ]]; then
    printf '%-23s: equal (%d tables)\n' "$4 checksums" "$1"
  else
    echo "$4 checksums differ" >&2
    exit 1
  fi
}
