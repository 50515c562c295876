#!/usr/bin/env bash
# The project's test command: installs what is missing, builds every configuration and runs
# every test, then prints a summary with the wall time of each stage. Exit status 0 only when
# every selected stage passed.
#
#   scripts/test-all.sh                      all stages
#   scripts/test-all.sh --stages x64,i386    only these (in the order given)
#   scripts/test-all.sh --list               the stages and what they do
#
# Environment: QN_JOBS (parallel jobs, default nproc), QN_FUZZ_SECONDS (per fuzz target,
# default 60), QN_BUILD_ROOT (default build/ in the checkout).
set -uo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
jobs=${QN_JOBS:-$(nproc)}
fuzz_seconds=${QN_FUZZ_SECONDS:-60}
build_root=${QN_BUILD_ROOT:-$root/build}
log_root="$build_root/ci-logs"

all_stages=(deps x64 i386 clang clang-i386 asan install fuzz)
declare -A stage_help=(
  [deps]="install missing Debian packages, unpack the i386 expat (scripts/install-deps.sh)"
  [x64]="x86-64 g++ build with -Werror, all tests"
  [i386]="i386 (-m32) g++ build with -Werror, all tests"
  [clang]="x86-64 clang++ build with -Werror (benchmarks compiled too), all tests"
  [clang-i386]="i386 clang++ build with -Werror, all tests"
  [asan]="x86-64 build with AddressSanitizer (leaks included) and UndefinedBehaviorSanitizer, all tests"
  [install]="cmake --install of the x64 and i386 builds; find_package and pkg-config consumers"
  [fuzz]="clang libFuzzer build; each fuzz target run for QN_FUZZ_SECONDS seconds"
)

usage() {
  sed -n '2,11p' "$0" | sed 's/^# \{0,1\}//'
}

list_stages() {
  local s
  for s in "${all_stages[@]}"; do
    printf '  %-11s %s\n' "$s" "${stage_help[$s]}"
  done
}

stages=("${all_stages[@]}")
while [ $# -gt 0 ]; do
  case "$1" in
    --stages) IFS=, read -r -a stages <<<"${2:?--stages needs a list}"; shift 2 ;;
    --stages=*) IFS=, read -r -a stages <<<"${1#--stages=}"; shift ;;
    --list) list_stages; exit 0 ;;
    -h|--help) usage; echo; list_stages; exit 0 ;;
    *) echo "unknown argument: $1" >&2; usage >&2; exit 2 ;;
  esac
done
for s in "${stages[@]}"; do
  [ -n "${stage_help[$s]:-}" ] || { echo "unknown stage: $s" >&2; list_stages >&2; exit 2; }
done

generator=(-G Ninja)
command -v ninja >/dev/null || generator=()

# ---- Building blocks ----------------------------------------------------------------------

# configure_and_build DIR [cmake arguments...]: configures (idempotent) and builds the targets
# named in build_targets, or everything.
build_targets=()
configure_and_build() {
  local dir=$1
  shift
  cmake "${generator[@]}" -S "$root" -B "$dir" -DQN_WERROR=ON "$@" || return 1
  local targets=()
  [ ${#build_targets[@]} -eq 0 ] || targets=(--target "${build_targets[@]}")
  cmake --build "$dir" -j "$jobs" "${targets[@]}"
}

# The shipped configuration: optimised as distributions build it (-O2), without debug
# information, which would double the compile time of the test suites for nothing CI uses.
release_o2=(-DCMAKE_BUILD_TYPE=Release -DCMAKE_C_FLAGS_RELEASE="-O2 -DNDEBUG"
            -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG")

run_tests() {
  ctest --test-dir "$1" --output-on-failure --no-tests=error -j "$jobs" --timeout 600
}

build_x64() {
  configure_and_build "$build_root/ci-x64" "${release_o2[@]}"
}

build_i386() {
  configure_and_build "$build_root/ci-i386" "${release_o2[@]}" -DQN_M32=ON
}

# ---- Stages -------------------------------------------------------------------------------

stage_deps() {
  "$root/scripts/install-deps.sh"
}

stage_x64() {
  build_x64 && run_tests "$build_root/ci-x64"
}

stage_i386() {
  build_i386 && run_tests "$build_root/ci-i386"
}

stage_clang() {
  local bench=OFF
  compgen -G "$root/bench/bench_*.cpp" >/dev/null && bench=ON
  CC=clang CXX=clang++ configure_and_build "$build_root/ci-clang" -DCMAKE_BUILD_TYPE=Debug \
    -DQN_BENCH="$bench" && run_tests "$build_root/ci-clang"
}

stage_clang-i386() {
  CC=clang CXX=clang++ configure_and_build "$build_root/ci-clang-i386" \
    -DCMAKE_BUILD_TYPE=Debug -DQN_M32=ON && run_tests "$build_root/ci-clang-i386"
}

stage_asan() {
  configure_and_build "$build_root/ci-asan" -DCMAKE_BUILD_TYPE=Debug -DQN_SANITIZE=ON ||
    return 1
  ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1:check_initialization_order=1 \
  UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
    run_tests "$build_root/ci-asan"
}

stage_install() {
  build_x64 && build_i386 &&
    "$root/scripts/check-install.sh" "$build_root/ci-x64" x64 "$build_root/ci-install-x64" &&
    "$root/scripts/check-install.sh" "$build_root/ci-i386" i386 "$build_root/ci-install-i386"
}

# Runs one fuzz target for fuzz_seconds; its log holds libFuzzer's final statistics and a
# .status file beside it the exit status (the targets run in the background).
run_fuzz_target() {
  local target=$1 dir="$build_root/ci-fuzz"
  local work="$dir/corpus/$target" seeds="$root/fuzz/corpus/$target"
  mkdir -p "$work" "$dir/artifacts"
  # New inputs go into the first folder (the build tree); the committed seeds are only read.
  local corpora=("$work")
  [ -d "$seeds" ] && corpora+=("$seeds")
  ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
    "$dir/fuzz/$target" -max_total_time="$fuzz_seconds" -print_final_stats=1 \
    -timeout=10 -rss_limit_mb=2048 -artifact_prefix="$dir/artifacts/$target-" \
    "${corpora[@]}" >"$dir/logs/$target.log" 2>&1
  echo $? >"$dir/logs/$target.status"
}

fuzz_executions() {
  local log=$1 n
  n=$(sed -n 's/^stat::number_of_executed_units: *\([0-9]*\).*/\1/p' "$log" | tail -n 1)
  [ -n "$n" ] || n=$(sed -n 's/^Done \([0-9]*\) runs.*/\1/p' "$log" | tail -n 1)
  echo "${n:-?}"
}

stage_fuzz() {
  local dir="$build_root/ci-fuzz" targets=() src t
  rm -f "$fuzz_summary_file"
  for src in "$root"/fuzz/fuzz_*.cpp; do
    [ -e "$src" ] && targets+=("$(basename "$src" .cpp)")
  done
  if [ ${#targets[@]} -eq 0 ]; then
    echo "no fuzz targets (fuzz/fuzz_*.cpp)"
    return 1
  fi
  # -O1 with line tables: libFuzzer's usual trade between speed and readable reports, and
  # only the fuzz targets (with the library) are built.
  build_targets=("${targets[@]}")
  CC=clang CXX=clang++ configure_and_build "$dir" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_C_FLAGS_RELEASE="-O1 -gline-tables-only" \
    -DCMAKE_CXX_FLAGS_RELEASE="-O1 -gline-tables-only" \
    -DQN_FUZZ=ON -DQN_TESTS=OFF -DQN_EXAMPLES=OFF || return 1
  mkdir -p "$dir/logs"
  rm -f "$dir"/logs/*.status
  echo "running ${#targets[@]} fuzz targets for ${fuzz_seconds}s each, $jobs at a time"
  local running=0
  for t in "${targets[@]}"; do
    run_fuzz_target "$t" &
    running=$((running + 1))
    if [ "$running" -ge "$jobs" ]; then
      wait -n
      running=$((running - 1))
    fi
  done
  wait
  local failed=0 status runs
  for t in "${targets[@]}"; do
    status=$(cat "$dir/logs/$t.status" 2>/dev/null || echo "?")
    runs=$(fuzz_executions "$dir/logs/$t.log")
    if [ "$status" = 0 ]; then
      printf '%-28s %12s executions  clean\n' "$t" "$runs" >>"$fuzz_summary_file"
    else
      failed=1
      printf '%-28s %12s executions  FAILED (exit %s), log %s\n' "$t" "$runs" "$status" \
        "$dir/logs/$t.log" >>"$fuzz_summary_file"
      echo "---- $t failed; end of its log:"
      tail -n 40 "$dir/logs/$t.log"
      ls "$dir/artifacts/$t-"* 2>/dev/null | sed 's/^/reproducer: /'
    fi
  done
  return "$failed"
}

# ---- Driver -------------------------------------------------------------------------------

# Sets cpu_now to the CPU seconds (user + system) of every finished child so far. Wall times on
# a shared machine mostly measure the neighbours; CPU time over the number of cores estimates a
# machine of our own. `times` must run in this shell: a $(...) subshell's counters start at 0.
read_children_cpu() {
  times >"$log_root/.times"
  cpu_now=$(tail -n 1 "$log_root/.times" | awk '{
    total = 0
    for (i = 1; i <= 2; i++) { split($i, t, "m"); sub("s", "", t[2]); total += t[1] * 60 + t[2] }
    printf "%d\n", total
  }')
}

mmss() {
  printf '%dm%02ds' $(($1 / 60)) $(($1 % 60))
}

mkdir -p "$log_root"
fuzz_summary_file="$log_root/fuzz-summary.txt"
rm -f "$fuzz_summary_file"
results=()
overall=0
total_start=$(date +%s)
for s in "${stages[@]}"; do
  echo
  echo "==== stage $s: ${stage_help[$s]}"
  start=$(date +%s)
  read_children_cpu
  cpu_start=$cpu_now
  # The log keeps each stage's full output; the terminal (and CI) sees it as it happens.
  "stage_$s" 2>&1 | tee "$log_root/$s.log"
  status=${PIPESTATUS[0]}
  elapsed=$(( $(date +%s) - start ))
  read_children_cpu
  cpu=$((cpu_now - cpu_start))
  if [ "$status" -eq 0 ]; then
    verdict=passed
  else
    verdict=FAILED
    overall=1
  fi
  results+=("$(printf '%-11s %-7s %8s %8s' "$s" "$verdict" "$(mmss "$elapsed")" "$(mmss "$cpu")")")
done
total=$(( $(date +%s) - total_start ))
read_children_cpu
total_cpu=$cpu_now

echo
echo "==== summary (logs in $log_root)"
printf '%-11s %-7s %8s %8s\n' stage result wall cpu
printf '%s\n' "${results[@]}"
printf '%-11s %-7s %8s %8s\n' total "$([ $overall -eq 0 ] && echo passed || echo FAILED)" \
  "$(mmss "$total")" "$(mmss "$total_cpu")"
echo "(cpu: user + system time of all processes; on a machine of its own with $(nproc) cores the"
echo " builds take roughly cpu / $(nproc))"
if [ -s "$fuzz_summary_file" ]; then
  echo "fuzz targets (${fuzz_seconds}s each):"
  sed 's/^/  /' "$fuzz_summary_file"
fi
exit "$overall"
