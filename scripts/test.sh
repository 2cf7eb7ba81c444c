#!/usr/bin/env bash
# Sets up, builds both configurations and runs every test: the portable core natively under
# AddressSanitizer and UBSan, a short libFuzzer run of every fuzz target, then the DLL and its
# tools under Wine with a virtual display.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
start=$(date +%s)
scripts/build.sh native
scripts/build.sh windows
echo "== native tests"
ctest --preset native
echo "== fuzz targets (clang, libFuzzer)"
scripts/fuzz.sh
echo "== windows tests (Wine)"
scripts/with-display.sh scripts/wine-session.sh ctest --preset windows
echo "== all tests passed in $(( $(date +%s) - start )) s after set-up"
