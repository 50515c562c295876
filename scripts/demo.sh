#!/usr/bin/env bash
# The main job, for now: builds the library and the example program examples/der_roundtrip
# (x86-64, Release, no tests) and runs it. Installs the few packages an x86-64 build needs when
# they are missing.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
dir="$root/build/demo"

"$root/scripts/install-deps.sh" --minimal >/dev/null
generator=(-G Ninja)
command -v ninja >/dev/null || generator=()
cmake "${generator[@]}" -S "$root" -B "$dir" -DCMAKE_BUILD_TYPE=Release -DQN_TESTS=OFF \
  >/dev/null
cmake --build "$dir" --target der_roundtrip -j "${QN_JOBS:-$(nproc)}" >/dev/null
exec "$dir/examples/der_roundtrip"
