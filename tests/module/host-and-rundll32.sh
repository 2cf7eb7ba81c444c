#!/usr/bin/env bash
# The module as the host and Windows start it: request keys written with `reg add` and
# consumed through rundll32, and lxhost writing its own request key.
set -uo pipefail
here=$(cd "$(dirname "$0")" && pwd)
[ -n "${LX_WINE_SESSION:-}" ] || exec "$here/../../scripts/with-display.sh" "$here/../../scripts/wine-session.sh" bash "$0" "$@"
source "$here/../../scripts/wine-env.sh"
lxhost=$1
dll=$2
fail=0
check() { if [ "$1" = "$2" ]; then echo "ok: $3"; else echo "FAIL: $3 (got '$1', want '$2')"; fail=1; fi; }
key_exists() { wine reg query "HKCU\\$1" >/dev/null 2>&1 && echo yes || echo no; }

base="Software\\Quarry7\\Tests\\rundll32-$$"
# A request whose "drop" is a string starts nothing but is consumed.
wine reg add "HKCU\\$base-sz" /v drop /t REG_SZ /d 'C:\a.jpg' /f >/dev/null 2>&1
wine rundll32 "$dll,RunWebAlbum" "$base-sz" >/dev/null 2>&1
check "$(key_exists "$base-sz")" no "rundll32 consumes a request whose drop is REG_SZ"

# An empty binary "drop" likewise.
wine reg add "HKCU\\$base-empty" /v drop /t REG_BINARY /f >/dev/null 2>&1
wine rundll32 "$dll,RunSplitImage" "$base-empty" >/dev/null 2>&1
check "$(key_exists "$base-empty")" no "rundll32 consumes a request with an empty drop"

# A missing key is neither created nor touched.
wine rundll32 "$dll,RunJpeg2Pdf" "$base-missing" >/dev/null 2>&1
check "$(key_exists "$base-missing")" no "a missing request key is not created"

# A retired entry does nothing at all.
wine rundll32 "$dll,vmiPickoutThumbnail2" "whatever" >/dev/null 2>&1
check "$?" 0 "a retired entry returns"

# lxhost writes a real request (drop list, path, effect) and the entry consumes it, in both variants.
tmp=$(mktemp -d)
printf 'x' > "$tmp/a b.jpg"
out=$(wine "$lxhost" split --path 'C:\' --effect 3 "$tmp/a b.jpg" 2>&1)
check "$?:$out" "0:request consumed" "lxhost split consumes its request (an unreadable file: no dialog)"
out=$(wine "$lxhost" split --ansi "$tmp/a b.jpg" 2>&1)
check "$?:$out" "0:request consumed" "lxhost --ansi goes through the eight-bit entry"
out=$(wine "$lxhost" nosuchtool x 2>&1)
check "$?" 2 "lxhost refuses an unknown tool"
rm -rf "$tmp"
exit $fail
