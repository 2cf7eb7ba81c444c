#!/usr/bin/env bash
# Runs a Windows program under the private Wine prefix. Used by CTest as the cross-compiling
# emulator, by the demo and by the benchmarks. Needs a display for GUI programs ($DISPLAY,
# which scripts/with-display.sh provides).
#
# The program's output goes through files: a Wine service the program happens to start (the
# desktop, the COM server) inherits its standard handles and lives until the wine server
# stops, and a caller reading a pipe (CTest) would otherwise wait for that service too.
source "$(dirname "$0")/wine-env.sh"
out=$(mktemp) err=$(mktemp)
trap 'rm -f "$out" "$err"' EXIT
wine "$@" >"$out" 2>"$err"
status=$?
cat "$out"
cat "$err" >&2
exit $status
