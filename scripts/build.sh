#!/usr/bin/env bash
# Installs what is missing, builds everything, and runs a sample through the command-line host.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${BRANNOC_BUILD:-$root/build}"

bash "$root/scripts/setup.sh"
if [ ! -f "$build/build.ninja" ]; then
    cmake -S "$root" -B "$build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$root/cmake/i686-w64-mingw32.cmake" >/dev/null
fi
cmake --build "$build" -j"$(nproc)"

if [ -x "$build/bin/bbrun.exe" ] && [ -f "$root/examples/hello.bas" ]; then
    "$root/bin/bbrun" "$root/examples/hello.bas"
else
    "$build/wine-run" "$build/bin/bbversion.exe" "$(cd "$build/bin" && pwd)/brannoc.dll"
fi
