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
