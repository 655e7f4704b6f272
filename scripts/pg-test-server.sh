#!/usr/bin/env bash
# A throwaway PostgreSQL server for the tests and the benchmarks, on a Unix socket only.
#   scripts/pg-test-server.sh start     makes a server in a new temporary folder, prints its address
#   scripts/pg-test-server.sh stop ADDR stops the server of that address and removes its folder
# The superuser "postgres" connects without a password; the role "orbline_site" needs one
# ("site-pw"), so that a refused password can be tried.
set -euo pipefail

bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -1)
[ -x "$bin/initdb" ] || { echo "pg-test-server: PostgreSQL is not installed" >&2; exit 1; }

# initdb refuses root: the server runs as the postgres system user.
as_server=()
if [ "$(id -u)" -eq 0 ]; then as_server=(runuser -u postgres --); fi

case "${1:-}" in
start)
    dir=$(mktemp -d /tmp/orbline-pg.XXXXXX)
    chmod 755 "$dir"
    if [ ${#as_server[@]} -gt 0 ]; then chown postgres: "$dir"; fi
    "${as_server[@]}" "$bin/initdb" -D "$dir/data" -U postgres --no-locale -E UTF8 \
        --auth-local=scram-sha-256 >"$dir/initdb.log" 2>&1 ||
        { cat "$dir/initdb.log" >&2; exit 1; }
    printf 'local all postgres trust\nlocal all all scram-sha-256\n' >"$dir/data/pg_hba.conf"
    "${as_server[@]}" "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -t 30 \
        -o "-k $dir -c listen_addresses='' -c max_connections=200" start >/dev/null ||
        { cat "$dir/server.log" >&2; exit 1; }
    "${as_server[@]}" "$bin/psql" -h "$dir" -U postgres -d postgres -qAt \
        -c "CREATE ROLE orbline_site LOGIN PASSWORD 'site-pw'" >/dev/null
    echo "postgresql://postgres@/postgres?host=$dir"
    ;;
stop)
    dir=${2:-}
    dir=${dir##*host=}
    case "$dir" in /tmp/orbline-pg.*) ;; *) echo "pg-test-server: not a test server: $dir" >&2; exit 2 ;; esac
    if [ -d "$dir/data" ]; then
        "${as_server[@]}" "$bin/pg_ctl" -D "$dir/data" -m immediate -w stop >/dev/null 2>&1 || true
    fi
    rm -rf "$dir"
    ;;
*)
    echo "usage: $0 start | stop ADDRESS" >&2
    exit 2
    ;;
esac
