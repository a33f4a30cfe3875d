#!/usr/bin/env bash
# Builds the Debian packages libqm-api1 and libqm-api-dev (a Release build installed under
# /usr), installing what is missing. The .deb files land in the build directory.
# Usage: scripts/package.sh [BUILD_DIR] (default build-pkg)
set -euo pipefail
cd "$(dirname "$0")/.."
dir=${1:-build-pkg}

bash scripts/install_missing.sh cmake ninja-build g++ pkg-config libcjson-dev dpkg-dev file
cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
  -DQM_BUILD_TESTS=OFF -DQM_BUILD_BENCH=OFF -DQM_BUILD_EXAMPLES=OFF
cmake --build "$dir" -j"$(nproc)"
rm -f "$dir"/*.deb
(cd "$dir" && cpack -G DEB)
for deb in "$dir"/*.deb; do
  echo "== $deb"
  dpkg-deb --field "$deb" Package Version Depends
done
