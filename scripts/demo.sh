#!/usr/bin/env bash
# Sets up, builds, and runs the module's main job on the built-in sample images: the sample
# photographs packed into one PDF through lxhost and the DLL under Wine, then checked and
# rendered with Debian's PDF tools.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh windows
source scripts/wine-env.sh
out=build/demo
rm -rf "$out" && mkdir -p "$out"
scripts/with-display.sh wine build/windows/tools/lxhost/lxhost.exe pdf --unattended --output "$out/samples.pdf" samples/*.jpg
qpdf --check "$out/samples.pdf" | tail -1
pdfinfo "$out/samples.pdf" | grep -E '^(Pages|Page size|PDF version)'
pdftoppm -r 30 -png "$out/samples.pdf" "$out/page"
echo "demo: wrote $out/samples.pdf and its pages as $out/page-*.png"
