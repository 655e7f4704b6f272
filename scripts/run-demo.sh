#!/usr/bin/env bash
# The main job on the embedded default: installs and builds what is needed, makes a demo site,
# starts kv_orbline for the tonometer (2620) on one end of a pseudo-terminal pair and the
# simulated tonometer on the other, shows the delivered result file and the main log, then
# closes the process as its parent would. Ends by itself within a minute.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j "$(nproc)" --target kv_orbline kv_simulator

site=$(mktemp -d /tmp/kv_orbline_demo.XXXXXX)
mkdir -p "$site/wk" "$site/data"
# The settings file is in the site's code page (Shift-JIS) with CR LF line ends. Paths inside it
# are written with "\"; the Device key is the one POSIX path, the simulator's end of the line.
site_bs=${site//\//\\}
printf '[User]\r\nJyusinDataPath=%s\\data\r\nJyusinWKPath=%s\\wk\r\n' "$site_bs" "$site_bs" \
    >"$site/KV_Orbline.ini"
printf '[TNMC]\r\nName=TOMEY\r\nPort=1\r\nBaudRate=9600\r\nDataBits=8\r\nParity=n\r\nStopBits=1\r\nHandshake=N\r\nTimeOut=1000\r\nDevice=%s/tty\r\n' \
    "$site" >>"$site/KV_Orbline.ini"

echo "== demo site $site"
# The tonometer stays on the line a while after its print-out, so that the parent's close comes
# first: a line whose far end goes away ends kv_orbline as an abnormal end (status 1).
{ cat tools/simulator/scripts/tonometer-2620.sim; echo "drain 5000"; } >"$site/tonometer.sim"
build/tools/simulator/kv_simulator --pty "$site/tty" "$site/tonometer.sim" \
    >"$site/simulator.txt" 2>&1 &
simulator=$!
for _ in $(seq 100); do [ -e "$site/tty" ] && break; sleep 0.1; done

# The parent passes one command line; "/" is removed from it, so the path is written with "\".
echo "== kv_orbline 2620=0=TN=$site_bs"
build/kv_orbline "2620=0=TN=$site_bs" &
link=$!

for _ in $(seq 600); do
    [ -n "$(ls -A "$site/data")" ] && break
    sleep 0.1
done

# The parent's close request.
kill -TERM "$link"
link_status=0
wait "$link" || link_status=$?
simulator_status=0
wait "$simulator" || simulator_status=$?

echo "== the simulated tonometer (exit status $simulator_status)"
cat "$site/simulator.txt"
for file in "$site"/data/*; do
    [ -e "$file" ] || { echo "== no result file was delivered"; break; }
    echo "== delivered: $file"
    iconv -f CP932 -t UTF-8 "$file"
done
echo "== main log $site/Tesvane2620.log"
iconv -f CP932 -t UTF-8 "$site/Tesvane2620.log"
echo "== kv_orbline exit status: $link_status"
[ "$simulator_status" -eq 0 ] && [ "$link_status" -eq 0 ] && [ -n "$(ls -A "$site/data")" ]
