#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test.
# Usage: scripts/test.sh [plain|asan|tsan] (default plain)
set -euo pipefail
cd "$(dirname "$0")/.."
variant=${1:-plain}

packages=(cmake ninja-build g++ clang pkg-config libcjson-dev googletest libgtest-dev libgmock-dev
          libbenchmark-dev liborocos-kdl-dev libeigen3-dev python3)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO=sudo
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}"
fi

case "$variant" in
  plain) dir=build; flags=(-DCMAKE_BUILD_TYPE=RelWithDebInfo) ;;
  asan)  dir=build-asan; flags=(-DCMAKE_BUILD_TYPE=Debug -DQM_SANITIZE=address -DQM_BUILD_BENCH=OFF) ;;
  tsan)  dir=build-tsan; flags=(-DCMAKE_BUILD_TYPE=Debug -DQM_SANITIZE=thread -DQM_BUILD_BENCH=OFF) ;;
  *) echo "unknown variant: $variant" >&2; exit 2 ;;
esac

cmake -S . -B "$dir" -G Ninja -DQM_WERROR=ON "${flags[@]}"
cmake --build "$dir" -j"$(nproc)"
ctest --test-dir "$dir" --output-on-failure -j"$(( $(nproc) * 2 ))"
