#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test. Without arguments: GCC, Release. With
# preset names (linux-gcc, linux-clang, asan, tsan, windows; docs builds the documentation and
# opens it in Chromium; peers compares with OpenCV; soak runs the soak test alone, for three
# minutes): those, one after the other.
set -euo pipefail
cd "$(dirname "$0")"

presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(linux-gcc)

packages=(cmake ninja-build g++ googletest pkg-config libcli11-dev libpng-dev clang-format ffmpeg
    clang dpkg-dev file)
for preset in "${presets[@]}"; do
    case "$preset" in
        docs) packages+=(doxygen chromium python3) ;;
        peers) packages+=(libopencv-dev) ;;
        tsan) packages+=(libclang-rt-14-dev) ;;
        windows) packages+=(g++-mingw-w64-x86-64-posix wine wine64 lld llvm) ;;
    esac
done
echo "== packages: ${packages[*]}"
scripts/install_packages.sh "${packages[@]}"

export ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1 UBSAN_OPTIONS=print_stacktrace=1
export TSAN_OPTIONS=halt_on_error=1
# Wine keeps its files with the build, and prints only what the tests print.
export WINEPREFIX=$PWD/build/wine WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=

for preset in "${presets[@]}"; do
    echo "== $preset: build"
    cmake --preset "$preset" > /dev/null
    cmake --build --preset "$preset"
    if [ "$preset" = windows ]; then
        mkdir -p build
        wineboot -u < /dev/null > /dev/null 2>&1
    fi
    echo "== $preset: tests"
    ctest --preset "$preset" -j "$(nproc)" < /dev/null
done
