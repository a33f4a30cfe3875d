#!/usr/bin/env bash
# Builds a Release tree and runs every benchmark, then prints the figures the README states:
# each as a ratio of two timings taken in the same run.
# Usage: scripts/bench.sh [build dir] (default build-release); extra Google Benchmark flags may
# be passed in BENCH_FLAGS, e.g. BENCH_FLAGS=--benchmark_repetitions=3.
set -euo pipefail
cd "$(dirname "$0")/.."
dir=${1:-build-release}
out="$dir/bench-results"

bash scripts/install_missing.sh cmake ninja-build g++ pkg-config libcjson-dev libbenchmark-dev \
  liborocos-kdl-dev libeigen3-dev googletest libgtest-dev libgmock-dev python3
benches=(fk_bench ik_bench exchange_bench push_bench sim_bench)
cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Release
cmake --build "$dir" -j"$(nproc)" --target "${benches[@]}"
mkdir -p "$out"
for bench in "${benches[@]}"; do
  echo "== $bench"
  "$dir/bench/$bench" --benchmark_out="$out/$bench.json" --benchmark_out_format=json ${BENCH_FLAGS:-} \
    | tee "$out/$bench.txt"
done

python3 - "$out" <<'PY'
import json, sys, re
out = sys.argv[1]

def cpu_times(name):
    runs = json.load(open(f"{out}/{name}.json"))["benchmarks"]
    # With repetitions, take the median aggregate; otherwise the single run.
    times = {}
    for r in runs:
        key = r["run_name"]
        if r.get("run_type") == "aggregate" and r.get("aggregate_name") != "median":
            continue
        times[key] = r
    return times

def ns(r):
    scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[r["time_unit"]]
    return r["cpu_time"] * scale

print("\n== summary (each ratio from one run)")
fk = cpu_times("fk_bench")
for model in ("QM65", "QM75"):
    ours, kdl = ns(fk[f"public_call/{model}"]), ns(fk[f"kdl_nominal/{model}"])
    print(f"qm_algo_forward_kinematics {model}: {ours:.0f} ns, KDL recursive {kdl:.0f} ns: {kdl / ours:.1f}x faster")
h, o, k = (ns(fk[f"connected_arm/QM65_{x}"]) for x in ("handle", "offline", "kdl"))
print(f"connected QM65 (calibrated table): {h:.0f} ns with its handle, {o:.0f} ns without "
      f"({100 * (h / o - 1):+.1f} %), KDL {k:.0f} ns")

ik = cpu_times("ik_bench")
for model in ("QM65", "QM75"):
    ours = ns(ik[f"BM_Bridge/{model}"])
    nr, lma = ns(ik[f"BM_Kdl/{model}_NR_JL"]), ns(ik[f"BM_Kdl/{model}_LMA"])
    every = ns(ik[f"BM_BridgeAllBranches/{model}"])
    print(f"qm_algo_inverse_kinematics {model}: {ours:.0f} ns: {nr / ours:.0f}x KDL NR_JL, {lma / ours:.0f}x KDL LMA;"
          f" qm_algo_inverse_kinematics_all {every:.0f} ns")
text = open(f"{out}/ik_bench.txt").read()
for line in re.findall(r"^(?:QM|TAV).*|^\s+(?:from a|joints over|qm_algo|KDL).*", text, re.M):
    print(line.rstrip())

for name in ("exchange_bench", "push_bench"):
    text = open(f"{out}/{name}.txt").read()
    tail = re.search(r"\n(round trip against.*|five arms.*)", text, re.S)
    if tail:
        print(tail.group(1).rstrip())
push = cpu_times("push_bench")
decode = push["BM_DecodeFullDatagram"]
arrival = next(r for k, r in push.items() if k.startswith("BM_ArrivalToCallback"))
print(f"push decode of a full datagram: {ns(decode) / 1e3:.1f} us; arrival to callback median "
      f"{arrival['p50_us']:.0f} us, p99 {arrival['p99_us']:.0f} us")
PY
