#!/usr/bin/env bash
# CPU time of a connected, idle kv_orbline (the tonometer's dialogue, polling its port every
# 10 ms) over 30 s, printed as a share of one core. Aim: below 1 %.
#   bench/idle_cpu.sh [build folder, default build] [seconds, default 30]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
seconds=${2:-30}
cmake --build "$build" --target kv_orbline kv_simulator >/dev/null

site=$(mktemp -d /tmp/kv_orbline_idle.XXXXXX)
trap 'kill $simulator $link 2>/dev/null || true; rm -rf "$site"' EXIT
site_bs=${site//\//\\}
printf '[User]\r\nJyusinDataPath=%s\\data\r\nJyusinWKPath=%s\\wk\r\n' "$site_bs" "$site_bs" \
    >"$site/KV_Orbline.ini"
printf '[TNMC]\r\nName=TOMEY\r\nBaudRate=9600\r\nDataBits=8\r\nParity=n\r\nTimeOut=1000\r\nDevice=%s/tty\r\n' "$site" \
    >>"$site/KV_Orbline.ini"
# The instrument is connected and says nothing.
printf 'wait-open 30000\npause %d\n' $(((seconds + 30) * 1000)) >"$site/idle.sim"

"$build/tools/simulator/kv_simulator" --pty "$site/tty" "$site/idle.sim" >/dev/null 2>&1 &
simulator=$!
for _ in $(seq 100); do [ -e "$site/tty" ] && break; sleep 0.1; done
"$build/kv_orbline" "2620=0=TN=$site_bs" &
link=$!
for _ in $(seq 100); do
    iconv -f CP932 -t UTF-8 "$site/Tesvane2620.log" 2>/dev/null | grep -q '受信開始' && break
    sleep 0.1
done

# utime + stime of the whole process (all threads), in clock ticks.
ticks() { awk '{print $14 + $15}' "/proc/$link/stat"; }
before=$(ticks)
sleep "$seconds"
after=$(ticks)
hz=$(getconf CLK_TCK)
awk -v t=$((after - before)) -v hz="$hz" -v s="$seconds" \
    'BEGIN { printf "idle CPU of a connected kv_orbline over %d s: %.2f %% of one core (%.2f s of CPU; aim: below 1 %%)\n", s, 100 * t / hz / s, t / hz }'
kill -TERM "$link"
wait "$link" || true
