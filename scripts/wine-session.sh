#!/usr/bin/env bash
# Runs a command with one wine server kept alive for its whole lifetime: every Wine program
# the command starts (tests in parallel, benchmark loops) attaches to that server instead of
# racing its start-up and shut-down. The server is stopped and waited for at the end. When a
# session is already open (LX_WINE_SESSION set), the command simply runs inside it.
#   wine-session.sh COMMAND [ARG...]
set -uo pipefail
source "$(dirname "$0")/wine-env.sh"
if [ -n "${LX_WINE_SESSION:-}" ]; then exec "$@"; fi
export LX_WINE_SESSION=1

# Exit status 2: a server of this prefix is already running; it is then not ours to stop.
owner=0
if wineserver -p 2>/dev/null; then owner=1; fi
stop() {
  if [ $owner = 1 ]; then
    wineserver -k 2>/dev/null
    wineserver -w 2>/dev/null || true
  fi
}
trap stop EXIT
# The first program starts the prefix's services and the desktop window under this command's
# display, with its output discarded; later programs find them running.
wine rundll32.exe user32.dll,GetDesktopWindow >/dev/null 2>&1 || true
"$@"
