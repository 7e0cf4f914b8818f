#!/usr/bin/env bash
# Set-up, build, start and test on a Debian machine; installs what is missing.
#
#   tools/dev.sh run        install, build, start Kolibrino with its shipped data
#   tools/dev.sh test       install, build, run the whole test suite
#   tools/dev.sh sanitize   the test suite under AddressSanitizer and UBSan
#   tools/dev.sh bench      build and run the benchmarks (figures only)
set -euo pipefail
cd "$(dirname "$0")/.."

PACKAGES=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins libgl-dev
  libcurl4-openssl-dev libhamlib-dev libhamlib-utils
  fonts-liberation2
)

install_missing() {
  local missing=() p
  for p in "${PACKAGES[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  ((${#missing[@]})) || return 0
  local sudo=()
  [ "$(id -u)" -eq 0 ] || sudo=(sudo)
  echo "Installiere: ${missing[*]}"
  "${sudo[@]}" apt-get update
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
}

build() {
  local dir=$1; shift
  cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
  cmake --build "$dir" -j"$(nproc)"
}

run_tests() {
  local dir=$1
  QT_QPA_PLATFORM=offscreen ctest --test-dir "$dir" --output-on-failure -j"$(nproc)"
}

case "${1:-run}" in
  run)
    install_missing
    build build
    exec ./build/kolibrino
    ;;
  test)
    install_missing
    build build
    run_tests build
    ;;
  sanitize)
    install_missing
    build build-asan -DKOLIBRINO_SANITIZE=ON -DKOLIBRINO_BENCH=OFF
    ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1 run_tests build-asan
    ;;
  bench)
    install_missing
    build build-bench -DCMAKE_BUILD_TYPE=Release -DKOLIBRINO_TESTS=OFF
    for b in build-bench/bench/bench_*; do [ -x "$b" ] && QT_QPA_PLATFORM=offscreen "$b"; done
    ;;
  *)
    echo "Aufruf: tools/dev.sh run|test|sanitize|bench" >&2
    exit 2
    ;;
esac
