#!/usr/bin/env bash
# Installs what the build and the tests need from Debian's packages, and unpacks the i386 expat
# into the build tree (it cannot be installed beside the 64-bit one). Safe to run again: it only
# asks apt for what is missing, and as a normal user it goes through sudo.
#
#   scripts/install-deps.sh            everything: both architectures, tests, benches, fuzzers
#   scripts/install-deps.sh --minimal  only what an x86-64 build of the library needs
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
minimal=0
case "${1:-}" in
  "") ;;
  --minimal) minimal=1 ;;
  *) echo "usage: $0 [--minimal]" >&2; exit 2 ;;
esac

log() { echo "install-deps: $*"; }

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    log "need root for: $* (run as root or install sudo)" >&2
    return 1
  fi
}

apt_env=(env DEBIAN_FRONTEND=noninteractive)

# clang's sanitizer and libFuzzer runtimes come with the versioned runtime package of whatever
# clang the release ships.
clang_runtime_package() {
  local major
  major=$(apt-cache depends clang 2>/dev/null | sed -n 's/.*Depends: clang-\([0-9][0-9]*\)$/\1/p' |
          head -n 1)
  echo "libclang-rt-${major:-14}-dev"
}

installed() {
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = "installed" ]
}

# A mirror in mid-sync can fail one index or serve a package the index no longer names: what
# did arrive is still usable, so update failures are tolerated and each step is retried after a
# pause and a fresh update.
apt_update() {
  as_root "${apt_env[@]}" apt-get update -qq || log "apt-get update reported errors; going on"
}

retry() {
  local attempt
  for attempt in 1 2 3; do
    "$@" && return 0
    [ "$attempt" -lt 3 ] || break
    log "attempt $attempt failed: $*; retrying in $((attempt * 20)) s"
    sleep $((attempt * 20))
    apt_update
  done
  return 1
}

# Installs those of the given packages that are not installed yet.
install_missing() {
  local need=() p
  for p in "$@"; do
    installed "$p" || need+=("$p")
  done
  [ ${#need[@]} -gt 0 ] || return 0
  log "installing ${need[*]}"
  [ "$updated" -eq 1 ] || apt_update
  updated=1
  retry as_root "${apt_env[@]}" apt-get install -y -qq --no-install-recommends "${need[@]}"
}

updated=0
if ! compgen -G "/var/lib/apt/lists/*_Packages*" >/dev/null; then
  # A fresh image ships without package indexes.
  apt_update
  updated=1
fi

host_packages=(g++ cmake ninja-build python3 libexpat1-dev)
if [ "$minimal" -eq 1 ]; then
  install_missing "${host_packages[@]}"
  exit 0
fi

if ! dpkg --print-foreign-architectures | grep -qx i386; then
  as_root dpkg --add-architecture i386
  apt_update
  updated=1
fi
install_missing "${host_packages[@]}" g++-multilib clang lld make pkg-config binutils \
  libgtest-dev googletest libbenchmark-dev libssl-dev openssl "$(clang_runtime_package)"
# The GOST engine lets tests/data/make-corpus.sh make the GOST certificates and signed messages
# of the corpus.
install_missing libengine-gost-openssl

# i386 expat as files for the -m32 build. Unpacked into a scratch folder first and moved into
# place whole, so an interrupted run never leaves a half tree that looks complete.
dest="$root/build/deps/i386"
if [ ! -f "$dest/usr/lib/i386-linux-gnu/libexpat.a" ] || [ ! -f "$dest/usr/include/expat.h" ]; then
  log "fetching the i386 expat packages"
  debs="$root/build/deps/debs"
  rm -rf "$debs" "$dest.tmp"
  mkdir -p "$debs" "$dest.tmp"
  # apt-get download as root warns that its sandbox user cannot write here; harmless.
  fetch() { (cd "$debs" && apt-get download libexpat1:i386 libexpat1-dev:i386); }
  if ! fetch; then
    apt_update
    retry fetch
  fi
  for deb in "$debs"/*.deb; do dpkg -x "$deb" "$dest.tmp"; done
  rm -rf "$dest"
  mv "$dest.tmp" "$dest"
fi
log "all dependencies present"
