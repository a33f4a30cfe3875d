#!/usr/bin/env bash
# The first command to run: installs what is missing, builds the simulator and the demo,
# and runs the demo against a simulated arm. Leaves nothing running.
# Usage: scripts/demo.sh [qm_sim options...]   e.g. scripts/demo.sh --model QM75-6F --generation 4
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(cmake ninja-build g++ pkg-config libcjson-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO=sudo
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}"
fi

cmake -S . -B build-demo -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DQM_BUILD_TESTS=OFF -DQM_BUILD_BENCH=OFF > /dev/null
cmake --build build-demo --target qm_sim demo -j"$(nproc)"
exec bash scripts/run_demo.sh build-demo "$@"
