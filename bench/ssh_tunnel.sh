#!/usr/bin/env bash
# Streams a 1 000 000-row table with `lomarin-cli query --account` through the program's own SSH
# tunnel, and with the same command through OpenSSH's forward (ssh -N -L) to the same private SSH
# and MariaDB servers, in the same run; prints wall time and peak memory of each (median of RUNS
# runs) and the wall-time ratio.
#   bench/ssh_tunnel.sh [--dir SANDBOX_DIR] [--build BUILD_DIR] [RUNS]
# The SSH server runs in $LOMARIN_SSH_SERVER_DIR (default BUILD_DIR/bench-ssh-server).
# shellcheck source=bench/common.sh
source "$(dirname "$0")/common.sh"
runs=${1:-5}
require_cli
helper=$build/bench/ssh_bench_account
[[ -x $helper ]] || { echo "build first: cmake --build $build --target ssh_bench_account" >&2; exit 1; }

ensure_big_table

ssh_dir=${LOMARIN_SSH_SERVER_DIR:-$build/bench-ssh-server}
"$root/scripts/ssh-server" start --dir "$ssh_dir" >/dev/null
# shellcheck disable=SC1091
source "$ssh_dir/ssh-server.env"

work=$(mktemp -d)
forward_pid=
cleanup() {
  [[ -n $forward_pid ]] && kill "$forward_pid" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
export LOMARIN_CONFIG_DIR=$work/config LOMARIN_DATA_DIR=$work/data
{ read -r public_line; read -r key_file; } < <("$helper" "$LOMARIN_TEST_SSH_HOST" "$LOMARIN_TEST_SSH_PORT" \
  "$LOMARIN_TEST_SSH_USER" "$LOMARIN_TEST_HOST" "$LOMARIN_TEST_PORT" "$LOMARIN_TEST_USER" "$LOMARIN_TEST_PASSWORD")
echo "$public_line" >>"$LOMARIN_TEST_SSH_AUTHORIZED_KEYS"

# OpenSSH's own forward, with the same key, on a free loopback port.
local_port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
ssh -N -o BatchMode=yes -o StrictHostKeyChecking=no -o UserKnownHostsFile=/dev/null -o LogLevel=ERROR \
  -i "$key_file" -p "$LOMARIN_TEST_SSH_PORT" -L "$local_port:$LOMARIN_TEST_HOST:$LOMARIN_TEST_PORT" \
  "$LOMARIN_TEST_SSH_USER@$LOMARIN_TEST_SSH_HOST" &
forward_pid=$!
for ((i = 0; i < 100; i++)); do
  (exec 3<>"/dev/tcp/127.0.0.1/$local_port") 2>/dev/null && break
  sleep 0.1
done
openssh=(--host=127.0.0.1 --port="$local_port" --user="$LOMARIN_TEST_USER" --password="$LOMARIN_TEST_PASSWORD")

query="select * from lomarin_bench.big"
measure() {  # prints "seconds kilobytes" of one run
  /usr/bin/time -f "%e %M" -o "$work/time" "$@" >/dev/null
  cat "$work/time"
}
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }

declare -a ours theirs ours_mem theirs_mem
for ((i = 0; i < runs; i++)); do
  read -r t m < <(measure "$cli" query --account bench "$query"); ours+=("$t"); ours_mem+=("$m")
  read -r t m < <(measure "$cli" query "${openssh[@]}" "$query"); theirs+=("$t"); theirs_mem+=("$m")
done

t_ours=$(printf '%s\n' "${ours[@]}" | median)
t_theirs=$(printf '%s\n' "${theirs[@]}" | median)
m_ours=$(printf '%s\n' "${ours_mem[@]}" | sort -n | tail -1)
m_theirs=$(printf '%s\n' "${theirs_mem[@]}" | sort -n | tail -1)
echo "lomarin-cli --account (own tunnel): ${t_ours} s (median of $runs), peak ${m_ours} KiB"
echo "lomarin-cli through ssh -N -L     : ${t_theirs} s (median of $runs), peak ${m_theirs} KiB"
awk -v a="$t_ours" -v b="$t_theirs" 'BEGIN {printf "wall-time ratio                   : %.3f\n", a / b}'
# Both ways must carry the same bytes, or the comparison means nothing.
if cmp -s <("$cli" query --account bench "$query") <("$cli" query "${openssh[@]}" "$query"); then
  echo "outputs identical"
else
  echo "outputs differ" >&2
  exit 1
fi
