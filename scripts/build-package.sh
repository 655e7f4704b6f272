#!/usr/bin/env bash
# Builds the Debian package kv-orbline_<version>_amd64.deb in build-package/ (Release, the
# program, the tools, the simulator, the unit, the docs; no tests or benchmarks) and prints
# its path. Install it with: apt-get install ./build-package/kv-orbline_*.deb
# More CMake options may follow: -DORBLINE_CONSOLE=OFF leaves the console window (and with it
# Qt Widgets and the X libraries) out, for a gateway without a display.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh

launcher=()
if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
cmake -S . -B build-package -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
    -DORBLINE_TESTS=OFF -DORBLINE_BENCH=OFF "${launcher[@]}" "$@"
cmake --build build-package -j "$(nproc)"
rm -f build-package/kv-orbline_*.deb
(cd build-package && cpack -G DEB)
deb=$(ls build-package/kv-orbline_*.deb)
dpkg-deb --field "$deb" Package Version Architecture Depends
echo "$deb"
