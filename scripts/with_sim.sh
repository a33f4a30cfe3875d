#!/usr/bin/env bash
# Starts qm_sim from a build directory in the background on free ports, runs a command against
# it (every argument "{port}" becomes the simulator's port) and stops the simulator again,
# whatever happens. The command's exit status is the script's.
# Usage: scripts/with_sim.sh BUILD_DIR [qm_sim options...] -- COMMAND [ARGS...]
set -euo pipefail
build=${1:?usage: with_sim.sh BUILD_DIR [qm_sim options...] -- COMMAND [ARGS...]}
shift
sim_args=()
while [ $# -gt 0 ] && [ "$1" != "--" ]; do sim_args+=("$1"); shift; done
[ $# -gt 1 ] || { echo "with_sim.sh: no command after --" >&2; exit 2; }
shift

work=$(mktemp -d)
sim_pid=""
cleanup() {
  if [ -n "$sim_pid" ]; then
    kill "$sim_pid" 2>/dev/null || true
    wait "$sim_pid" 2>/dev/null || true
  fi
  rm -rf "$work"
}
trap cleanup EXIT INT TERM

"$build/sim/qm_sim" --port 0 --push-port 0 --port-file "$work/port" ${sim_args[@]+"${sim_args[@]}"} > "$work/sim.out" 2>&1 &
sim_pid=$!
for _ in $(seq 100); do
  [ -s "$work/port" ] && break
  if ! kill -0 "$sim_pid" 2>/dev/null; then cat "$work/sim.out" >&2; exit 1; fi
  sleep 0.05
done
[ -s "$work/port" ] || { echo "qm_sim did not start" >&2; cat "$work/sim.out" >&2; exit 1; }
head -n 1 "$work/sim.out"
port=$(cat "$work/port")
command=()
for arg in "$@"; do command+=("${arg//\{port\}/$port}"); done
"${command[@]}"
