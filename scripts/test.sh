#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test.
# Usage: scripts/test.sh [plain|asan|tsan] (default plain)
set -euo pipefail
cd "$(dirname "$0")/.."
variant=${1:-plain}

packages=(cmake ninja-build g++ clang pkg-config libcjson-dev googletest libgtest-dev libgmock-dev
          libbenchmark-dev liborocos-kdl-dev libeigen3-dev python3)
bash scripts/install_missing.sh "${packages[@]}"

case "$variant" in
  plain) dir=build; flags=(-DCMAKE_BUILD_TYPE=RelWithDebInfo) ;;
  asan)  dir=build-asan; flags=(-DCMAKE_BUILD_TYPE=Debug -DQM_SANITIZE=address -DQM_BUILD_BENCH=OFF) ;;
  tsan)  dir=build-tsan; flags=(-DCMAKE_BUILD_TYPE=Debug -DQM_SANITIZE=thread -DQM_BUILD_BENCH=OFF) ;;
  *) echo "unknown variant: $variant" >&2; exit 2 ;;
esac

cmake -S . -B "$dir" -G Ninja -DQM_WERROR=ON "${flags[@]}"
cmake --build "$dir" -j"$(nproc)"
ctest --test-dir "$dir" --output-on-failure -j"$(( $(nproc) * 2 ))"
