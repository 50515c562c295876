#!/usr/bin/env bash
# Installs what the build and the tests need from Debian's packages, and unpacks the i386 expat
# into the build tree (it cannot be installed beside the 64-bit one).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
sudo_cmd=""
[ "$(id -u)" -eq 0 ] || sudo_cmd="sudo"

need=()
for p in g++ g++-multilib clang lld cmake make python3 libgtest-dev googletest libbenchmark-dev \
         libexpat1-dev libssl-dev openssl libclang-rt-14-dev; do
  dpkg -s "$p" >/dev/null 2>&1 || need+=("$p")
done
if ! dpkg --print-foreign-architectures | grep -qx i386; then
  $sudo_cmd dpkg --add-architecture i386
  updated=0
else
  updated=1
fi
if [ ${#need[@]} -gt 0 ] || [ "$updated" -eq 0 ]; then
  # A mirror in mid-sync can fail one index; what did arrive is still usable.
  $sudo_cmd apt-get update -qq || true
fi
if [ ${#need[@]} -gt 0 ]; then
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq "${need[@]}"
fi

# i386 expat, unpacked as files for the -m32 build.
dest="$root/build/deps/i386"
if [ ! -f "$dest/usr/lib/i386-linux-gnu/libexpat.a" ]; then
  mkdir -p "$dest" "$root/build/deps/debs"
  ( cd "$root/build/deps/debs" && apt-get download libexpat1:i386 libexpat1-dev:i386 )
  for deb in "$root"/build/deps/debs/*.deb; do dpkg -x "$deb" "$dest"; done
fi
