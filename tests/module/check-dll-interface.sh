#!/usr/bin/env bash
# The DLL imports only Windows system DLLs and exports exactly the host's entry points.
set -euo pipefail
dll=$1
dump=$(x86_64-w64-mingw32-objdump -p "$dll")
fail=0
system='^(kernel32|user32|gdi32|gdiplus|advapi32|shell32|shlwapi|ole32|oleaut32|comctl32|comdlg32|msvcrt|windowscodecs|uxtheme|msimg32|winspool\.drv|version|propsys|ws2_32|bcrypt|imm32)\.dll$'
while read -r name; do
  if ! echo "$name" | tr 'A-Z' 'a-z' | grep -Eq "$system"; then
    echo "unexpected import: $name"; fail=1
  fi
done < <(echo "$dump" | sed -n 's/^\s*DLL Name: //p')
for forbidden in libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll zlib1.dll; do
  if echo "$dump" | grep -qi "DLL Name: $forbidden"; then echo "runtime DLL imported: $forbidden"; fail=1; fi
done
expected="RunConvertImageW RunConvertImage RunSplitImageW RunSplitImage RunContrastResizeW RunContrastResize
RunRenameToExifDateW RunRenameToExifDate RunPickoutThumbnailW RunPickoutThumbnail RunWebAlbumW RunWebAlbum
RunJpeg2PdfW RunJpeg2Pdf pxfRunW pxfRun imgRunW imgRun slideRunW slideRun
vwiConvertImage vmiRenameToExifDate vmiPickoutThumbnail vmiPickoutThumbnail2"
actual=$(echo "$dump" | sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' | sed -n 's/^\s*\[\s*[0-9]*\] \([A-Za-z0-9_]*\)$/\1/p' | sort)
want=$(echo $expected | tr ' ' '\n' | sort)
if [ "$actual" != "$want" ]; then
  echo "exports differ:"; diff <(echo "$want") <(echo "$actual") || true; fail=1
fi
[ "$fail" = 0 ] && echo "imports: system DLLs only; exports: $(echo "$actual" | wc -l) names as expected"
exit $fail
