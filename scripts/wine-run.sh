#!/usr/bin/env bash
# Runs a Windows program under the private Wine prefix. Used by CTest as the cross-compiling
# emulator, by the demo and by the benchmarks. Needs a display for GUI programs ($DISPLAY,
# which scripts/with-display.sh provides).
source "$(dirname "$0")/wine-env.sh"
exec wine "$@"
