#!/usr/bin/env bash
# Configures and builds one preset (native, native-release or windows); the log goes to
# build/<preset>.log and only its tail is shown on failure.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-windows}
mkdir -p build
log="build/$preset.log"
if ! { cmake --preset "$preset" && cmake --build --preset "$preset" -j "$(nproc)"; } >"$log" 2>&1; then
  grep -E 'error|Error' "$log" | head -40
  tail -30 "$log"
  echo "build of $preset failed; see $log" >&2
  exit 1
fi
echo "built $preset"
