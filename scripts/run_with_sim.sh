#!/usr/bin/env bash
# Runs a program against qm_sim as `PROGRAM 127.0.0.1 PORT`; the program's exit status is the
# script's. Usage: scripts/run_with_sim.sh BUILD_DIR PROGRAM [qm_sim options...]
set -euo pipefail
build=${1:?usage: run_with_sim.sh BUILD_DIR PROGRAM [qm_sim options...]}
program=${2:?usage: run_with_sim.sh BUILD_DIR PROGRAM [qm_sim options...]}
shift 2
exec bash "$(dirname "$0")/with_sim.sh" "$build" "$@" -- "$program" 127.0.0.1 {port}
