#!/usr/bin/env bash
# Builds every fuzz target with clang and libFuzzer (preset fuzz: AddressSanitizer + UBSan)
# and fuzzes each for a few seconds from its committed corpus, two at a time. Any crash,
# leak, hang or huge allocation fails the run; the input that caused it is kept in
# build/fuzz/crashes/ (commit it to the target's corpus folder once the cause is fixed).
#   scripts/fuzz.sh [seconds per target, default 12]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-12}
mkdir -p build
log=build/fuzz.log
if ! { cmake --preset fuzz -DLX_FUZZ_SECONDS="$seconds" && cmake --build --preset fuzz -j2; } >"$log" 2>&1; then
  grep -E 'error|Error' "$log" | head -40
  echo "build of the fuzz targets failed; see $log" >&2
  exit 1
fi
rm -f build/fuzz/crashes/*
if ! ctest --preset fuzz -L fuzz; then
  ls build/fuzz/crashes/ >&2
  echo "fuzzing found a fault (inputs above, in build/fuzz/crashes/)" >&2
  exit 1
fi
