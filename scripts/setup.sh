#!/usr/bin/env bash
# Installs what the builds and tests need, and nothing when it is all there.
# Runs as root on Debian 12; every package is explained in the README.
set -euo pipefail

PACKAGES=(
  g++ cmake ninja-build ccache pkg-config
  googletest libgtest-dev libbenchmark-dev
  clang-14 libfuzzer-14-dev libclang-rt-14-dev
  g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools wine wine64
  emscripten nodejs
  libcairo2-dev
  libfreetype-dev libfontconfig-dev fonts-liberation2 dpkg-dev
  netpbm
)

missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$p")
done

if ((${#missing[@]})); then
  echo "setup: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -q
  apt-get install -y -q --no-install-recommends "${missing[@]}"
fi
