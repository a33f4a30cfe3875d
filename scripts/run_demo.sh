#!/usr/bin/env bash
# Starts qm_sim from a build directory in the background, runs the demo against it and stops
# the simulator again, whatever happens. Usage: scripts/run_demo.sh BUILD_DIR [qm_sim options...]
set -euo pipefail
build=${1:?usage: run_demo.sh BUILD_DIR [qm_sim options...]}
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
"$build/examples/demo" 127.0.0.1 "$(cat "$work/port")"
