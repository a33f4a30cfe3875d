#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each from its committed seed corpus.
# Usage: scripts/fuzz.sh [seconds per target] (default 60)
# New inputs go to a scratch copy of the corpus; a crash leaves its input in build-fuzz/.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}

bash scripts/install_missing.sh cmake ninja-build clang libclang-rt-14-dev pkg-config libcjson-dev

cmake -S . -B build-fuzz -G Ninja -DQM_WERROR=ON -DQM_BUILD_FUZZ=ON -DQM_BUILD_TESTS=OFF -DQM_BUILD_BENCH=OFF \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build-fuzz -j"$(nproc)"

for target in line_mailbox realtime_datagram reply_decoders; do
  scratch=build-fuzz/corpus/$target
  mkdir -p "$scratch"
  dict=()
  [ -f "fuzz/$target.dict" ] && dict=(-dict="fuzz/$target.dict")
  echo "== fuzz_$target for ${seconds}s"
  status=0
  (cd build-fuzz && ./fuzz/fuzz_"$target" -max_total_time="$seconds" -print_final_stats=1 \
     "${dict[@]/#-dict=/-dict=../}" "corpus/$target" "../fuzz/corpus/$target") > "build-fuzz/$target.log" 2>&1 ||
    status=$?
  grep -E "^(Done|stat::number_of_executed_units)|ERROR|SUMMARY|Test unit written" "build-fuzz/$target.log" || true
  [ "$status" -eq 0 ] || { echo "fuzz_$target failed; see build-fuzz/$target.log" >&2; exit 1; }
done
