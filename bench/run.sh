#!/usr/bin/env bash
# Runs every benchmark in turn (each measures against Debian's reference tools in the same
# run and prints its own table): bench/run.sh [SUBJECT...], SUBJECT one of the folders here.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
"$here/../scripts/setup.sh"
subjects=("$@")
if [ ${#subjects[@]} -eq 0 ]; then
  for d in "$here"/*/; do [ -x "$d/run.sh" ] || [ -f "$d/run.sh" ] && subjects+=("$(basename "$d")"); done
fi
for s in "${subjects[@]}"; do
  echo "== bench/$s"
  bash "$here/$s/run.sh"
done
