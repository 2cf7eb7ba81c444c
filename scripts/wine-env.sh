# Sourced by the scripts: the private Wine prefix under the build folder, quiet Wine.
lx_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX="${LX_WINEPREFIX:-$lx_root/build/wineprefix}"
export WINEDEBUG=-all
export WINEARCH=win64
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
