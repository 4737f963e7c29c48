#!/usr/bin/env bash
# Streams a 1 000 000-row table with `lomarin-cli query --account` through the HTTP tunnel script
# (served by PHP's built-in web server with several workers on a free loopback port), and with the
# same command straight to the server, in the same run; prints wall time and peak memory of each
# (median of RUNS runs) and the wall-time ratio.
#   bench/http_tunnel.sh [--dir SANDBOX_DIR] [--build BUILD_DIR] [RUNS]
# shellcheck source=bench/common.sh
source "$(dirname "$0")/common.sh"
runs=${1:-5}
require_cli
helper=$build/bench/http_bench_account
[[ -x $helper ]] || { echo "build first: cmake --build $build --target http_bench_account" >&2; exit 1; }
command -v php >/dev/null || { echo "php is missing: run scripts/bootstrap" >&2; exit 1; }

ensure_big_table

work=$(mktemp -d)
php_pid=
cleanup() {
  [[ -n $php_pid ]] && kill -- "-$php_pid" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
export LOMARIN_CONFIG_DIR=$work/config LOMARIN_DATA_DIR=$work/data
mkdir -p "$work/www"
port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
"$helper" "$work/www" "http://127.0.0.1:$port/tunnel.php" "bench-$RANDOM$RANDOM" \
  "$LOMARIN_TEST_HOST" "$LOMARIN_TEST_PORT" "$LOMARIN_TEST_USER" "$LOMARIN_TEST_PASSWORD"
PHP_CLI_SERVER_WORKERS=4 setsid php -S "127.0.0.1:$port" -t "$work/www" >"$work/php.log" 2>&1 &
php_pid=$!
for ((i = 0; i < 100; i++)); do
  (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null && break
  sleep 0.1
done

query="select * from lomarin_bench.big"
measure() {  # prints "seconds kilobytes" of one run
  /usr/bin/time -f "%e %M" -o "$work/time" "$@" >/dev/null
  cat "$work/time"
}
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }

declare -a tunnel direct tunnel_mem direct_mem
for ((i = 0; i < runs; i++)); do
  read -r t m < <(measure "$cli" query --account bench-http "$query"); tunnel+=("$t"); tunnel_mem+=("$m")
  read -r t m < <(measure "$cli" query "${conn[@]}" "$query"); direct+=("$t"); direct_mem+=("$m")
done

t_tunnel=$(printf '%s\n' "${tunnel[@]}" | median)
t_direct=$(printf '%s\n' "${direct[@]}" | median)
m_tunnel=$(printf '%s\n' "${tunnel_mem[@]}" | sort -n | tail -1)
m_direct=$(printf '%s\n' "${direct_mem[@]}" | sort -n | tail -1)
echo "lomarin-cli through the HTTP tunnel: ${t_tunnel} s (median of $runs), peak ${m_tunnel} KiB"
echo "lomarin-cli direct                 : ${t_direct} s (median of $runs), peak ${m_direct} KiB"
awk -v a="$t_tunnel" -v b="$t_direct" 'BEGIN {printf "wall-time ratio                    : %.3f\n", a / b}'
# Both ways must carry the same bytes, or the comparison means nothing.
if cmp -s <("$cli" query --account bench-http "$query") <("$cli" query "${conn[@]}" "$query"); then
  echo "outputs identical"
else
  echo "outputs differ" >&2
  exit 1
fi
