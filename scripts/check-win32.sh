#!/usr/bin/env bash
# The Windows-only sources are free of Qt, so the MinGW-w64 cross compiler checks them here.
set -euo pipefail
cd "$(dirname "$0")/.."
status=0
while IFS= read -r file; do
    echo "x86_64-w64-mingw32-g++ -fsyntax-only $file"
    x86_64-w64-mingw32-g++ -std=c++20 -fsyntax-only -Wall -Wextra -Werror -Isrc "$file" || status=1
done < <(find src -name '*_win32.cpp' | sort)
exit $status
