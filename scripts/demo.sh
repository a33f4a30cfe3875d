#!/usr/bin/env bash
# The first command to run: installs what is missing, builds the simulator and the demo,
# and runs the demo against a simulated arm. Leaves nothing running.
# Usage: scripts/demo.sh [qm_sim options...]   e.g. scripts/demo.sh --model QM75-6F --generation 4
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(cmake ninja-build gcc g++ pkg-config libcjson-dev)
bash scripts/install_missing.sh "${packages[@]}"

echo "building qm_sim, qm_latency and the demo (log in build-demo/build.log) ..."
mkdir -p build-demo
if ! { cmake -S . -B build-demo -G Ninja -DCMAKE_BUILD_TYPE=Release -DQM_BUILD_TESTS=OFF -DQM_BUILD_BENCH=OFF &&
       cmake --build build-demo --target qm_sim qm_latency demo -j"$(nproc)"; } > build-demo/build.log 2>&1; then
  cat build-demo/build.log >&2
  exit 1
fi
exec bash scripts/run_demo.sh build-demo "$@"
