#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the benchmarks need.
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config
    qt6-base-dev libqt6sql6-sqlite libqt6sql6-odbc unixodbc-dev libsqliteodbc sqlite3
    libqt6sql6-psql postgresql
    libgtest-dev libgmock-dev googletest libbenchmark-dev
    clang clang-format clang-tidy
    libclang-rt-14-dev
    g++-mingw-w64-x86-64
    socat
)

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    "${sudo_cmd[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
