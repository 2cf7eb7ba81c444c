#!/usr/bin/env bash
# Sets up, builds, and runs the module's main job on the built-in sample images: the image
# viewer, started as the file manager starts it (lxhost viewer PATH -> imgRunW of the DLL
# under Wine) on the first sample, with the folder's thumbnails beside it.
#
# With a display ($DISPLAY) the viewer opens there and the demo ends when you close it.
# Without one it runs in a private Xvfb: lxhost waits until the picture is shown, saves a
# screenshot (build/demo/viewer.png) and closes the viewer as a user would (WM_CLOSE); then,
# as a second job, the samples are packed into build/demo/samples.pdf and checked with qpdf.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ -z "${LX_DEMO_STAGE:-}" ]; then
  scripts/setup.sh
  scripts/build.sh windows
  # Interactive when a display is there already; else with-display gives a private Xvfb.
  if [ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1; then export LX_DEMO_INTERACTIVE=1; fi
  # Both Wine runs below share one display and one wine server.
  LX_DEMO_STAGE=1 exec scripts/with-display.sh scripts/wine-session.sh bash "$0" "$@"
fi
source scripts/wine-env.sh
out=build/demo
rm -rf "$out" && mkdir -p "$out"
cp samples/*.jpg "$out/"
host=build/windows/tools/lxhost/lxhost.exe
first=$(winepath -w "$out/hills.jpg")

if [ -n "${LX_DEMO_INTERACTIVE:-}" ]; then
  wine "$host" viewer "$first"
  exit 0
fi

# In a Wine desktop (which draws the captions); lxhost saves the screen once the picture is
# shown and the thumbnails had a moment, then closes the viewer.
wine explorer /desktop=lxdemo,1100x720 "$host" viewer --snapshot "$out/viewer.bmp" "$first"
for _ in $(seq 600); do [ -s "$out/viewer.bmp" ] && break; sleep 0.2; done
convert "$out/viewer.bmp" "$out/viewer.png" && rm "$out/viewer.bmp"
echo "demo: the viewer showed $first; screenshot in $out/viewer.png"

wine "$host" pdf --unattended --output "$out/samples.pdf" "$out"/*.jpg
qpdf --check "$out/samples.pdf" | tail -1
echo "demo: the samples packed into $out/samples.pdf"
