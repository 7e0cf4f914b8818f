#!/usr/bin/env bash
# Set-up, build, start and test on a Debian machine; installs what is missing.
#
#   tools/dev.sh run        install, build, start Kolibrino with its shipped data
#   tools/dev.sh test       install, build, run the whole test suite
#   tools/dev.sh sanitize   the test suite under AddressSanitizer and UBSan
#   tools/dev.sh bench      build and run the benchmarks (figures only)
#   tools/dev.sh fuzz [s] [t...]  build the libFuzzer targets with clang, run each (or the
#                           targets t) s seconds (60), one after the other
#   tools/dev.sh crash [n]  kill the real program n times (200) while it logs; checks the files
#   tools/dev.sh walk [n]   the random walk through the windows, n actions (2000)
#   tools/dev.sh package    Release build in build-package/, then the .deb by CPack (checked by lintian)
#   tools/dev.sh screenshots [dir]  the README's pictures of the windows (docs/screenshots)
set -euo pipefail
cd "$(dirname "$0")/.."

PACKAGES=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins libgl-dev
  libcurl4-openssl-dev libhamlib-dev libhamlib-utils
  fonts-liberation2
  qt6-translations-l10n
  poppler-utils lighttpd libcgi-pm-perl python3
  desktop-file-utils appstream
  xvfb xdotool imagemagick
  cups cups-client cups-bsd
  orca at-spi2-core dbus-daemon
)
# Only for "fuzz": clang with its sanitizer and libFuzzer runtimes.
FUZZ_PACKAGES=(clang libclang-rt-dev)
# Only for "package": dpkg-shlibdeps (with file) for the dependencies, lintian to check.
PACKAGE_PACKAGES=(dpkg-dev file lintian)

install_missing() {
  local missing=() p
  for p in "${PACKAGES[@]}" "$@"; do
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
  # A compiler cache, when the machine has one, makes rebuilds after a pull cheap.
  if [ -z "${CMAKE_CXX_COMPILER_LAUNCHER:-}" ] && command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
  fi
  cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
  cmake --build "$dir" -j"$(nproc)" ${BUILD_TARGETS:+--target $BUILD_TARGETS}
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
    for b in build-bench/bench/bench_*; do
      [ -f "$b" ] && [ -x "$b" ] || continue # skips the *_autogen folders
      QT_QPA_PLATFORM=offscreen "$b"
    done
    ;;
  fuzz)
    # Each target runs its time on the committed corpus (new finds go to a scratch
    # copy); a crash input lands in tests/fuzz/crashes/<target>/, which the normal suite
    # replays. One target at a time, at the lowest priority.
    seconds=${2:-60}
    install_missing "${FUZZ_PACKAGES[@]}"
    CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=None \
      "-DCMAKE_CXX_FLAGS=-O1 -gline-tables-only" -DKOLIBRINO_FUZZ=ON -DKOLIBRINO_TESTS=OFF -DKOLIBRINO_BENCH=OFF
    targets=(log_loader district_table ini_reader call_index cabrillo_check upload_reply update_list)
    (($# > 2)) && targets=("${@:3}")
    cmake --build build-fuzz -j"$(nproc)" --target "${targets[@]/#/fuzz_}"
    run_one() {
      local t=$1 work=build-fuzz/work/$1
      rm -rf "$work" && mkdir -p "$work/corpus" tests/fuzz/crashes/"$t"
      cp tests/fuzz/corpus/"$t"/* "$work/corpus/"
      local rc=0
      ASAN_OPTIONS=detect_leaks=0 nice -n 19 build-fuzz/tests/fuzz/fuzz_"$t" "$work/corpus" \
        -max_total_time="$seconds" -max_len=65536 -timeout=10 -rss_limit_mb=2048 \
        -artifact_prefix=tests/fuzz/crashes/"$t"/ -print_final_stats=1 >"$work/log" 2>&1 || rc=$?
      echo "fuzz_$t: $(grep -E '^stat::number_of_executed_units' "$work/log" | awk '{print $2}') Ausführungen," \
        "Korpus $(ls "$work/corpus" | wc -l) Eingaben, Ergebnis $rc (Protokoll $work/log)"
      return $rc
    }
    failed=0
    for t in "${targets[@]}"; do run_one "$t" || failed=1; done
    exit $failed
    ;;
  crash)
    install_missing
    build build
    KOLIBRINO_CRASH_KILLS=${2:-200} QT_QPA_PLATFORM=offscreen ./build/tests/tst_crash_injection
    ;;
  walk)
    install_missing
    build build
    KOLIBRINO_WALK_ACTIONS=${2:-2000} QT_QPA_PLATFORM=offscreen ./build/tests/tst_random_walk
    ;;
  package)
    install_missing "${PACKAGE_PACKAGES[@]}"
    # Debian's hardening flags (stack protector, fortify, relro and bindnow); no -g, as
    # the package is stripped.
    export DEB_BUILD_MAINT_OPTIONS=hardening=+all
    cxxflags="$(dpkg-buildflags --get CPPFLAGS) $(dpkg-buildflags --get CXXFLAGS)"
    build build-package -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
      "-DCMAKE_CXX_FLAGS=${cxxflags//-g /}" "-DCMAKE_EXE_LINKER_FLAGS=$(dpkg-buildflags --get LDFLAGS)" \
      -DKOLIBRINO_TESTS=OFF -DKOLIBRINO_BENCH=OFF -DKOLIBRINO_SOURCE_DATA_FALLBACK=OFF
    rm -f build-package/kolibrino_*.deb
    (cd build-package && cpack -G DEB)
    deb=$(ls build-package/kolibrino_*.deb)
    dpkg-deb --field "$deb"
    echo "$deb: $(du -h "$deb" | cut -f1)"
    lintian --info "$deb" || true
    ;;
  screenshots)
    install_missing
    BUILD_TARGETS=screenshots build build
    QT_QPA_PLATFORM=offscreen ./build/tools/screenshots "${2:-docs/screenshots}"
    ;;
  *)
    echo "Aufruf: tools/dev.sh run|test|sanitize|bench|fuzz [Sekunden]|crash [Kills]|walk [Schritte]|package|screenshots [Ordner]" >&2
    exit 2
    ;;
esac
