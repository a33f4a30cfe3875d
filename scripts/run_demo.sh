#!/usr/bin/env bash
# Starts qm_sim from a build directory in the background, runs the demo against it and stops
# the simulator again, whatever happens. Usage: scripts/run_demo.sh BUILD_DIR [qm_sim options...]
set -euo pipefail
build=${1:?usage: run_demo.sh BUILD_DIR [qm_sim options...]}
shift
exec bash "$(dirname "$0")/with_sim.sh" "$build" "$@" -- "$build/examples/demo" 127.0.0.1 {port}
