#!/usr/bin/env bash
# Installs what is missing, builds everything, and runs a sample through the command-line host.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
build_everything

if [ -x "$build/bin/bbrun.exe" ] && [ -f "$root/examples/hello.bas" ]; then
    "$root/bin/bbrun" "$root/examples/hello.bas"
else
    "$build/wine-run" "$build/bin/bbversion.exe" "$(cd "$build/bin" && pwd)/brannoc.dll"
fi
