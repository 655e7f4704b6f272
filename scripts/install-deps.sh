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
    # the console's tests: a Japanese font for its screenshots, a virtual display and the X
    # libraries that press its buttons there
    fonts-ipafont-gothic xvfb libx11-dev libxtst-dev
    # The service manager's notifications (sd_notify); dpkg-shlibdeps for the package's
    # dependencies; systemd-analyze for the check of the unit.
    libsystemd-dev dpkg-dev systemd
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
