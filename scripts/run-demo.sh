#!/usr/bin/env bash
# Installs and builds what is needed, makes a demo site folder and starts kv_orbline on it.
# For now the process reads its command line and settings, writes its start line and ends;
# the session with a simulated instrument joins this script when the first dialogue lands.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)" --target kv_orbline

site=$(mktemp -d /tmp/kv_orbline_demo.XXXXXX)
mkdir -p "$site/wk" "$site/data"
# The settings file is in the site's code page (Shift-JIS) with CR LF line ends.
site_bs=${site//\//\\}
printf '[User]\r\nJyusinDataPath=%s\\data\r\nJyusinWKPath=%s\\wk\r\n[TNMC]\r\nName=TOMEY\r\nPort=1\r\nBaudRate=9600\r\n' \
    "$site_bs" "$site_bs" >"$site/KV_Orbline.ini"

# The parent passes one command line; "/" is removed from it, so the path is written with "\".
echo "kv_orbline 2620=0=TN=$site_bs"
build/kv_orbline "2620=0=TN=$site_bs"
echo "exit status: $?"
echo "--- $site/Tesvane2620.log"
iconv -f CP932 -t UTF-8 "$site/Tesvane2620.log"
