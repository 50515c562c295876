#!/usr/bin/env bash
# Installs a configured build into a fresh prefix and checks that the package works from there:
# the SONAME and architecture of the installed library, then the consumer of tests/install
# built once through find_package(quillon) and once with plain pkg-config flags, each run.
#
#   scripts/check-install.sh BUILD_DIR x64|i386 [WORK_DIR]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:?build directory}
arch=${2:?architecture: x64 or i386}
work=${3:-$build/install-check}

case "$arch" in
  x64) mflag=""; elf_class="ELF64" ;;
  i386) mflag="-m32"; elf_class="ELF32" ;;
  *) echo "unknown architecture '$arch' (x64 or i386)" >&2; exit 2 ;;
esac

fail() {
  echo "check-install ($arch): $*" >&2
  exit 1
}

# Absolute, because the consumers' CMAKE_PREFIX_PATH would be taken relative to their own build.
work=$(realpath -m "$work")
case "$work" in "" | / | "$root") fail "refusing to use $work as the work directory" ;; esac
prefix="$work/prefix"
rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$prefix" >"$work/install.log" || {
  cat "$work/install.log" >&2
  fail "cmake --install failed"
}

# The library, its SONAME link and its development link, all for the right architecture.
lib=$(find "$prefix" -name 'libquillon.so.3.*' -type f | head -n 1)
[ -n "$lib" ] || fail "no libquillon.so.3.* under $prefix"
libdir=$(dirname "$lib")
[ -L "$libdir/libquillon.so.3" ] || fail "libquillon.so.3 link missing"
[ -L "$libdir/libquillon.so" ] || fail "libquillon.so link missing"
soname=$(readelf -d "$lib" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
[ "$soname" = "libquillon.so.3" ] || fail "SONAME is '$soname', not libquillon.so.3"
readelf -h "$lib" | grep -q "Class:.*$elf_class" || fail "$lib is not $elf_class"
[ -f "$prefix/include/quillon/quillon.h" ] || fail "umbrella header not installed"
echo "installed $(basename "$lib") (SONAME $soname, $elf_class) into $prefix"

# Consumer through the CMake package.
generator=()
command -v ninja >/dev/null && generator=(-G Ninja)
cmake "${generator[@]}" -S "$root/tests/install" -B "$work/cmake-consumer" \
  -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_C_FLAGS="$mflag -Wall -Wextra -Werror" \
  -DCMAKE_CXX_FLAGS="$mflag -Wall -Wextra -Werror" >"$work/cmake-consumer.log" || {
  cat "$work/cmake-consumer.log" >&2
  fail "find_package(quillon) consumer did not configure"
}
cmake --build "$work/cmake-consumer" >>"$work/cmake-consumer.log" 2>&1 || {
  cat "$work/cmake-consumer.log" >&2
  fail "find_package(quillon) consumer did not build"
}
"$work/cmake-consumer/consumer" || fail "find_package consumer (C++) failed"
"$work/cmake-consumer/consumer_c" || fail "find_package consumer (C) failed"

# Consumer through pkg-config alone, as a Makefile or a shell would build it.
export PKG_CONFIG_PATH="$(dirname "$(find "$prefix" -name quillon.pc | head -n 1)")"
pc_flags=$(pkg-config --cflags --libs quillon) || fail "pkg-config does not know quillon"
pc_libdir=$(pkg-config --variable=libdir quillon)
g++ -std=c++17 $mflag -Wall -Wextra -Werror "$root/tests/install/consumer.cpp" \
  -o "$work/consumer-pc" $pc_flags -Wl,-rpath,"$pc_libdir" || fail "pkg-config build (C++)"
gcc $mflag -Wall -Wextra -Werror "$root/tests/install/consumer_c.c" \
  -o "$work/consumer-pc-c" $pc_flags -Wl,-rpath,"$pc_libdir" || fail "pkg-config build (C)"
"$work/consumer-pc" || fail "pkg-config consumer (C++) failed"
"$work/consumer-pc-c" || fail "pkg-config consumer (C) failed"
echo "install check ($arch): find_package and pkg-config consumers pass"
