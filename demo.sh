#!/usr/bin/env bash
# From a bare Debian machine to the contact sheet: installs what is missing, builds the library and
# its command-line host in Release, and runs the demo on the photographs in samples/.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

echo "== 1/3 Packages"
scripts/install_packages.sh g++ cmake ninja-build libcli11-dev libpng-dev

echo "== 2/3 Build in build/demo"
cmake -S . -B build/demo -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF \
    -DTQIPL_BUILD_TOOLS=ON
cmake --build build/demo

echo "== 3/3 Demo"
build/demo/tools/tqipl/tqipl info
build/demo/tools/tqipl/tqipl demo out/

echo "Open this page in a browser: $PWD/out/index.html"
