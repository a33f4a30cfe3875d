#!/usr/bin/env bash
# Starts qm_sim from a build directory in the background, runs a program against it as
# `PROGRAM 127.0.0.1 PORT` and stops the simulator again, whatever happens; the program's
# exit status is the script's. Usage: scripts/run_with_sim.sh BUILD_DIR PROGRAM [qm_sim options...]
set -euo pipefail
build=${1:?usage: run_with_sim.sh BUILD_DIR PROGRAM [qm_sim options...]}
program=${2:?usage: run_with_sim.sh BUILD_DIR PROGRAM [qm_sim options...]}
shift 2

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

# Free ports, so that several runs (and the tests) never meet.
"$build/sim/qm_sim" --port 0 --push-port 0 --port-file "$work/port" "$@" > "$work/sim.out" 2>&1 &
sim_pid=$!
for _ in $(seq 100); do
  [ -s "$work/port" ] && break
  if ! kill -0 "$sim_pid" 2>/dev/null; then cat "$work/sim.out" >&2; exit 1; fi
  sleep 0.05
done
[ -s "$work/port" ] || { echo "qm_sim did not start" >&2; cat "$work/sim.out" >&2; exit 1; }
head -n 1 "$work/sim.out"
"$program" 127.0.0.1 "$(cat "$work/port")"
