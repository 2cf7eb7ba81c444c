#!/usr/bin/env bash
# Runs a Windows program under the private Wine prefix. Used by CTest as the cross-compiling
# emulator, by the demo and by the benchmarks. Needs a display for GUI programs ($DISPLAY,
# which scripts/with-display.sh provides).
#
# The program's output goes through files: a Wine service the program happens to start (the
# desktop, the COM server) inherits its standard handles and lives until the wine server
# stops, and a caller reading a pipe (CTest) would otherwise wait for that service too. The
# output is shown when the program ends, and also when this script is stopped (a test's
# timeout), so a hang still tells where it hung.
source "$(dirname "$0")/wine-env.sh"
out=$(mktemp) err=$(mktemp)
show() {
  cat "$out"
  cat "$err" >&2
  rm -f "$out" "$err"
}
wine "$@" >"$out" 2>"$err" &
program=$!
trap 'kill $program 2>/dev/null; show; exit 124' TERM INT
wait $program
status=$?
show
exit $status
