#!/usr/bin/env bash
# Plays every simulator script against the process and keeps what a reshaping of the code must
# not change: the bytes the process sent back (the simulator's --record file), the delivered
# result files and the main log. Run it before and after a change and compare the folders:
#   scripts/record-scripts.sh /tmp/before; ...; scripts/record-scripts.sh /tmp/after
#   diff -r /tmp/before /tmp/after
# The clock is fixed (KV_ORBLINE_NOW), so the texts are comparable from run to run.
set -euo pipefail
cd "$(dirname "$0")/.."
out=${1:?usage: scripts/record-scripts.sh OUTPUT_FOLDER}
build=${BUILD_DIR:-build}
mkdir -p "$out"

play() {  # script code name
    local script=$1 code=$2 name=$3
    local site
    site=$(mktemp -d /tmp/kv_orbline_record.XXXXXX)
    mkdir -p "$site/wk" "$site/data"
    local site_bs=${site//\//\\}
    printf '[User]\r\nJyusinDataPath=%s\\data\r\nJyusinWKPath=%s\\wk\r\n' "$site_bs" "$site_bs" \
        >"$site/KV_Orbline.ini"
    printf '[TNMC]\r\nName=%s\r\nPort=1\r\nBaudRate=9600\r\nDataBits=8\r\nParity=n\r\nStopBits=1\r\nHandshake=N\r\nTimeOut=1000\r\nDevice=%s/tty\r\n' \
        "$name" "$site" >>"$site/KV_Orbline.ini"
    "$build/tools/orderdb/orderdb" create "$site/KV_Orbline2.min" >/dev/null
    "$build/tools/simulator/kv_simulator" --pty "$site/tty" --record "$out/$code.line" \
        "tools/simulator/scripts/$script" >"$site/simulator.txt" 2>&1 &
    local simulator=$!
    for _ in $(seq 100); do [ -e "$site/tty" ] && break; sleep 0.1; done
    KV_ORBLINE_NOW="2025-04-16 09:30:15" "$build/kv_orbline" "$code=0=TN=$site_bs" &
    local link=$!
    local status=0
    wait "$simulator" || status=$?
    for _ in $(seq 100); do [ -n "$(ls -A "$site/data")" ] && break; sleep 0.1; done
    # The link ends by itself once the simulator has gone with its end of the line.
    kill -TERM "$link" 2>/dev/null || true
    wait "$link" || true
    [ "$status" -eq 0 ] || { echo "$script: the simulator failed"; cat "$site/simulator.txt"; }
    cat "$site"/data/* >"$out/$code.delivered" 2>/dev/null || true
    cp "$site/Tesvane$code.log" "$out/$code.log"
    rm -rf "$site"
    echo "$script: simulator status $status"
}

play tonometer-2620.sim 2620 TOMEY
play glycohaemoglobin-0980.sim 0980 HLC
play aia-1160.sim 1160 AIA
play haematology-1190.sim 1190 XN-550
