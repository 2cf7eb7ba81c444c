#!/usr/bin/env bash
# The web album as a browser shows it: lxhost's unattended album under Wine in a Japanese
# locale, over photographs whose names hold spaces, "#", "%", kanji and letters that code page
# 932 lacks. Headless Chromium opens the sheet inside a page of ours and lists every image that
# did not load and the captions as it decoded them.
#   album-in-browser.sh LXHOST.EXE
set -euo pipefail
lxhost=$1
root=$(cd "$(dirname "$0")/../.." && pwd)
[ -n "${LX_WINE_SESSION:-}" ] || exec "$root/scripts/with-display.sh" "$root/scripts/wine-session.sh" bash "$0" "$@"
source "$root/scripts/wine-env.sh"
fail() { echo "FAIL: $*"; exit 1; }
command -v chromium >/dev/null || fail "chromium is missing (scripts/setup.sh installs it)"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
winpath() { echo "Z:$1" | tr / '\\'; }

names=("木 の 写真.jpg" "#1 100%41.jpg" "café ☕.jpg" "plain.jpg")
mkdir -p "$work/photos" "$work/album"
files=()
for name in "${names[@]}"; do
    cp "$root/samples/hills.jpg" "$work/photos/$name"
    files+=("$(winpath "$work/photos/$name")")
done
LC_ALL=ja_JP.UTF-8 wine "$lxhost" webalbum --unattended --output "$(winpath "$work/album")" "${files[@]}" >/dev/null ||
    fail "the album run wrote no sheet"

cat >"$work/album/check.html" <<'EOF'
<!DOCTYPE html><meta charset="utf-8"><iframe id="sheet" src="sheet_1.html"></iframe>
<script>
window.addEventListener("load", () => {
  const sheet = document.getElementById("sheet").contentDocument;
  const lines = [...sheet.images].map(i => (i.naturalWidth > 0 ? "loaded " : "broken ") + decodeURIComponent(i.src.split("/").pop()));
  lines.push(...[...sheet.querySelectorAll("td")].map(td => "caption " + td.innerText.trim()).filter(l => l != "caption "));
  const out = document.createElement("pre");
  out.id = "result";
  out.textContent = lines.join("\n");
  document.body.append(out);
});
</script>
EOF
dom=$(chromium --headless --no-sandbox --disable-gpu --allow-file-access-from-files --virtual-time-budget=5000 \
    --dump-dom "file://$work/album/check.html" 2>/dev/null)
result=$(sed -n '/<pre id="result">/,/<\/pre>/p' <<<"$dom" | sed 's/<[^>]*>//g; s/&amp;/\&/g')
[ -n "$result" ] || fail "Chromium reported nothing: $dom"
for name in "${names[@]}"; do
    grep -qxF "loaded sh_${name,,}" <<<"$result" || fail "thumbnail of '$name' did not load: $result"
    grep -qxF "caption $name" <<<"$result" || fail "caption of '$name' is not shown as it is: $result"
done
echo "PASS"
