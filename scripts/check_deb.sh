#!/usr/bin/env bash
# Proves the Debian packages on a fresh Debian 12 root: debootstraps bookworm (kept as a pristine
# copy for later runs), installs the .deb files there with apt-get, builds a user's programs with
# pkg-config and with CMake against them and runs them. Needs root and the Debian mirror, so it is
# a manual check, not part of the test suite.
# Usage: scripts/check_deb.sh [DEB_DIR] (default build-pkg, as scripts/package.sh leaves it)
set -euo pipefail
cd "$(dirname "$0")/.."
debs=${1:-build-pkg}
mirror=${QM_DEBIAN_MIRROR:-http://deb.debian.org/debian}
base=${QM_BOOKWORM_BASE:-/tmp/qm-bookworm-base}
[ "$(id -u)" -eq 0 ] || { echo "check_deb.sh needs root (debootstrap, chroot)" >&2; exit 2; }
ls "$debs"/libqm-api1_*.deb "$debs"/libqm-api-dev_*.deb > /dev/null

bash scripts/install_missing.sh debootstrap
if [ ! -d "$base" ]; then
  rm -rf "$base.partial"
  debootstrap --variant=minbase bookworm "$base.partial" "$mirror"
  mv "$base.partial" "$base"
fi

root=$(mktemp -d /tmp/qm-deb-root.XXXXXX)
cleanup() {
  if mountpoint -q "$root/proc"; then umount "$root/proc"; fi
  mountpoint -q "$root/proc" || rm -rf --one-file-system "$root"
}
trap cleanup EXIT
cp -a "$base/." "$root/"
mount -t proc proc "$root/proc" || echo "no /proc in the chroot; continuing without"
cp /etc/resolv.conf "$root/etc/resolv.conf"
mkdir "$root/check"
cp "$debs"/libqm-api1_*.deb "$debs"/libqm-api-dev_*.deb tests/install/consumer.c tests/install/facade_consumer.cpp "$root/check/"
cp -r tests/install/consumer "$root/check/"

chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive \
  /bin/bash -euo pipefail -c '
cd /check
apt-get update -qq
apt-get install -y -qq -o Dpkg::Use-Pty=0 ./libqm-api*.deb > apt.log 2>&1 || { cat apt.log; exit 1; }
echo "== installed"; dpkg-query -W libqm-api1 libqm-api-dev libcjson1
echo "== files"; for f in $(dpkg -L libqm-api1 libqm-api-dev); do [ -d "$f" ] || echo "$f"; done
qm_sim --help > /dev/null && echo "qm_sim starts"
! ldd /usr/bin/qm_latency | grep "not found" && echo "qm_latency finds its libraries"

apt-get install -y -qq -o Dpkg::Use-Pty=0 gcc g++ pkg-config cmake ninja-build > apt.log 2>&1 || { cat apt.log; exit 1; }
echo "== pkg-config: $(pkg-config --cflags --libs qm_api) | static: $(pkg-config --static --libs qm_api)"
cc -std=c99 -Wall -Wextra -Werror -o pc_shared consumer.c $(pkg-config --cflags --libs qm_api)
cc -std=c99 -Wall -Wextra -Werror -o pc_static consumer.c $(pkg-config --cflags qm_api) \
  -Wl,-Bstatic -lqm_api -Wl,-Bdynamic -Wl,--as-needed $(pkg-config --static --libs qm_api)
c++ -std=c++20 -Wall -Wextra -Werror -o pc_facade facade_consumer.cpp $(pkg-config --cflags --libs qm_api)
./pc_shared && ./pc_static && ./pc_facade
echo "== CMake"
cmake -S consumer -B build -G Ninja > /dev/null && cmake --build build > /dev/null
build/c_shared && build/c_static
echo "== the packages install on a fresh Debian 12 and serve both kinds of consumer"
'
