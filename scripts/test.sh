#!/usr/bin/env bash
# Installs what is missing, builds everything and runs the whole test suite under Wine on a private
# virtual display. Extra arguments go to ctest (for example -R values).
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
build_everything

# One display for the whole run, on the first free number from 90 up.
display=90
while [ -e "/tmp/.X11-unix/X$display" ] || [ -e "/tmp/.X$display-lock" ]; do
    display=$((display + 1))
done
Xvfb ":$display" -screen 0 1024x768x24 -nolisten tcp >/dev/null 2>&1 &
xvfb_pid=$!
cleanup() {
    kill "$xvfb_pid" 2>/dev/null || true
    WINEPREFIX="$build/wineprefix" wineserver -k 2>/dev/null || true
}
trap cleanup EXIT
# A cold start of Xvfb can take several seconds on a busy machine; windows made before it listens
# fail, so wait for its socket (up to 60 s) and stop with a clear message if it never comes.
for _ in $(seq 1 600); do
    [ -e "/tmp/.X11-unix/X$display" ] && break
    kill -0 "$xvfb_pid" 2>/dev/null || break
    sleep 0.1
done
if [ ! -e "/tmp/.X11-unix/X$display" ]; then
    echo "test.sh: the virtual display :$display did not start" >&2
    exit 1
fi
export DISPLAY=":$display"

# A Wine server still running from an earlier command (the build's sample run) holds that command's
# display; the tests' windows need this run's, so that server ends first. Then one Wine server is kept
# for the run instead of one per test program.
WINEPREFIX="$build/wineprefix" wineserver -k 2>/dev/null || true
WINEPREFIX="$build/wineprefix" wineserver -w 2>/dev/null || true
WINEPREFIX="$build/wineprefix" "$build/wine-run" cmd /c exit >/dev/null 2>&1 || true
WINEPREFIX="$build/wineprefix" wineserver -p >/dev/null 2>&1 || true

cd "$build"
ctest --output-on-failure "$@"
