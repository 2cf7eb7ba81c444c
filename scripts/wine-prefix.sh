#!/usr/bin/env bash
# Creates the private Wine prefix once: Japanese font replacements, no crash dialog.
set -euo pipefail
source "$(dirname "$0")/wine-env.sh"
stamp="$WINEPREFIX/.lxpicture-ready"
[ -f "$stamp" ] && exit 0
mkdir -p "$WINEPREFIX"
echo "setup: creating Wine prefix $WINEPREFIX"
wineboot -i >/dev/null 2>&1 || true
fonts='HKCU\Software\Wine\Fonts\Replacements'
for face in "MS UI Gothic" "MS Shell Dlg" "MS Shell Dlg 2" "Tahoma"; do
  wine reg add "$fonts" /v "$face" /t REG_SZ /d IPAGothic /f >/dev/null 2>&1
done
wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f >/dev/null 2>&1
wineserver -w
touch "$stamp"
