#!/usr/bin/env bash
# Installs a build into a temporary prefix and builds a user's programs against that tree only:
# a C project through CMake's find_package and plain cc (and c++ for QM_Service) through pkg-config,
# each linking the shared and the static library; runs them. Also checks what the tree holds.
# Usage: install_tree_test.sh BUILD_DIR LIBDIR C_COMPILER CXX_COMPILER
set -euo pipefail
build=${1:?usage: install_tree_test.sh BUILD_DIR LIBDIR C_COMPILER CXX_COMPILER}
libdir=$2 cc=$3 cxx=$4
here=$(cd "$(dirname "$0")" && pwd)
public_headers=$here/../../src/Application/public_headers
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
fail() { echo "FAIL: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$prefix" > /dev/null

# Headers: the public ones under include/qm_api, nothing else anywhere.
expected=$(cd "$public_headers" && ls ./*.h | sed 's|^\./|include/qm_api/|' | sort)
installed=$(cd "$prefix" && find . -name '*.h' -o -name '*.hpp' | sed 's|^\./||' | sort)
[ "$installed" = "$expected" ] || fail "installed headers differ from the public ones:
$(diff <(echo "$expected") <(echo "$installed"))"

lib=$prefix/$libdir
soname=$(readelf -d "$lib/libqm_api.so" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
[ "$soname" = libqm_api.so.1 ] || fail "soname is '$soname', not libqm_api.so.1"
needs_qm_api() { readelf -d "$1" | grep -q 'NEEDED.*libqm_api\.so'; }
run() {  # run NAME LINKAGE: shared programs need libqm_api.so.1, static ones must not
  if [ "$2" = shared ]; then needs_qm_api "$1" || fail "$1 does not use libqm_api.so.1"
  else ! needs_qm_api "$1" || fail "$1 uses libqm_api.so.1 instead of the static library"; fi
  "$1" > /dev/null || fail "$1 exited with $?"
}

# CMake: find_package(qm_api) from the prefix, never from the source or build tree.
cmake -S "$here/consumer" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_C_COMPILER="$cc" -DCMAKE_C_FLAGS="-Wall -Wextra -Werror" > "$work/cmake.log" || { cat "$work/cmake.log"; fail "configure"; }
grep -q "^qm_api_DIR:PATH=$prefix/" "$work/cmake/CMakeCache.txt" || fail "find_package found qm_api outside $prefix"
cmake --build "$work/cmake" > "$work/build.log" || { cat "$work/build.log"; fail "CMake consumer build"; }
run "$work/cmake/c_shared" shared
run "$work/cmake/c_static" static

# pkg-config and plain cc, as in the README.
export PKG_CONFIG_PATH=$lib/pkgconfig
[ "$(pkg-config --modversion qm_api)" = "$(sed -n 's/.*SDK_VERSION "\(.*\)"/\1/p' "$public_headers/qm_version.h")" ] ||
  fail "qm_api.pc's version is not the library's"
flags=(-std=c99 -Wall -Wextra -Werror -pedantic)
"$cc" "${flags[@]}" -o "$work/pc_shared" "$here/consumer.c" $(pkg-config --cflags --libs qm_api)
"$cc" "${flags[@]}" -o "$work/pc_static" "$here/consumer.c" $(pkg-config --cflags qm_api) \
  -Wl,-Bstatic -lqm_api -Wl,-Bdynamic -Wl,--as-needed $(pkg-config --static --libs qm_api)
"$cxx" -std=c++20 -Wall -Wextra -Werror -o "$work/pc_facade" "$here/facade_consumer.cpp" $(pkg-config --cflags --libs qm_api)
LD_LIBRARY_PATH=$lib run "$work/pc_shared" shared
LD_LIBRARY_PATH=$lib run "$work/pc_facade" shared
run "$work/pc_static" static

# The tools find their private libraries where they are installed.
[ ! -x "$prefix/bin/qm_sim" ] || "$prefix/bin/qm_sim" --help > /dev/null || fail "installed qm_sim does not start"
echo "install tree at $libdir: headers, soname, CMake and pkg-config consumers (shared and static) all fine"
