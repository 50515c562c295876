#!/usr/bin/env bash
# Builds the benchmarks (x86-64, Release) and runs each bench/bench_*.cpp program, printing
# Google Benchmark's console table, keeping the JSON in build/bench/results/, and ending with
# the time ratio of every quillon benchmark to its peer (below 1: we are faster).
#
#   scripts/bench.sh [Google Benchmark arguments, e.g. --benchmark_filter=Decode]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
dir="$root/build/bench"
results="$dir/results"
generator=(-G Ninja)
command -v ninja >/dev/null || generator=()

cmake "${generator[@]}" -S "$root" -B "$dir" -DCMAKE_BUILD_TYPE=Release -DQN_BENCH=ON \
  -DQN_TESTS=OFF -DQN_EXAMPLES=OFF >/dev/null
cmake --build "$dir" -j "${QN_JOBS:-$(nproc)}"

mkdir -p "$results"
rm -f "$results"/*.json
ran=0
for src in "$root"/bench/bench_*.cpp; do
  [ -e "$src" ] || continue
  name=$(basename "$src" .cpp)
  echo "==== $name"
  "$dir/bench/$name" --benchmark_format=console --benchmark_out="$results/$name.json" \
    --benchmark_out_format=json "$@"
  ran=$((ran + 1))
done
if [ "$ran" -eq 0 ]; then
  echo "no benchmarks (bench/bench_*.cpp)" >&2
  exit 1
fi
echo
python3 "$root/scripts/bench-ratios.py" "$results"/*.json
