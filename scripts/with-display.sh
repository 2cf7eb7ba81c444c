#!/usr/bin/env bash
# Runs a command with an X display: the current one, else a private Xvfb for its lifetime.
set -euo pipefail
if [ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1; then exec "$@"; fi
for n in $(seq 90 140); do
  [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ] || break
done
Xvfb ":$n" -screen 0 1600x1000x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
trap 'kill $xvfb 2>/dev/null || true' EXIT
for _ in $(seq 50); do [ -e "/tmp/.X11-unix/X$n" ] && break; sleep 0.1; done
export DISPLAY=":$n"
"$@"
