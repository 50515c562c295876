#!/usr/bin/env bash
# The main job: builds the library and the quillon tool (x86-64, Release, no tests) and decodes
# the bundled example certificate with it, re-encoding it and reporting which of its extensions,
# attributes and algorithm parameters reached typed values. Installs the few packages an x86-64
# build needs when they are missing.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
dir="$root/build/demo"

"$root/scripts/install-deps.sh" --minimal >/dev/null
generator=(-G Ninja)
command -v ninja >/dev/null || generator=()
cmake "${generator[@]}" -S "$root" -B "$dir" -DCMAKE_BUILD_TYPE=Release -DQN_TESTS=OFF \
  >/dev/null
cmake --build "$dir" --target quillon_cli -j "${QN_JOBS:-$(nproc)}" >/dev/null
exec "$dir/tools/quillon/quillon" decode --type Certificate "$root/examples/data/example-cert.der"
