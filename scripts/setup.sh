#!/usr/bin/env bash
# Installs everything the build, the tests, the demo and the benchmarks need, from Debian's
# packages, then creates the private Wine prefix. Idempotent and quiet; run as root.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

packages=(
  cmake make g++ clang libclang-rt-dev ccache googletest zlib1g-dev
  g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 mingw-w64-tools libz-mingw-w64-dev
  wine wine64 xvfb xauth x11-apps x11-utils xdotool fonts-ipafont-gothic
  imagemagick qpdf poppler-utils libjpeg-turbo-progs libimage-exiftool-perl
  libvips-tools img2pdf python3-pil python3-numpy hyperfine bc time locales chromium
  python3-skimage  # real photographs (its sample pictures) for the JPEG decoder tests
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# The Japanese locale: Wine takes the system ANSI code page (932) from it, as on a Japanese
# Windows; the album test writes its sheets under it.
if ! locale -a 2>/dev/null | grep -qix 'ja_JP.utf8'; then
  localedef -i ja_JP -c -f UTF-8 ja_JP.UTF-8
fi

"$here/wine-prefix.sh"
