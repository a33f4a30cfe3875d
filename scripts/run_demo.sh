#!/usr/bin/env bash
# Runs the demo against qm_sim from a build directory, stopping the simulator afterwards.
# Usage: scripts/run_demo.sh BUILD_DIR [qm_sim options...]
set -euo pipefail
build=${1:?usage: run_demo.sh BUILD_DIR [qm_sim options...]}
shift
exec bash "$(dirname "$0")/run_with_sim.sh" "$build" "$build/examples/demo" "$@"
