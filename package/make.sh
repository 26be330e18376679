#!/bin/bash
# Makes the release out of what is built: MirvaneEFT-VERSION.zip, MirvaneEFT-VERSION-setup.exe with the same content, the
# service's package for Debian, and SHA256SUMS of all. The same commit gives the same bytes. What goes into it lies beside them in MirvaneEFT-VERSION.
#
#   package/make.sh FOLDER [--sign FILE]
#
# FILE is a certificate with its key (.p12, .pfx): see package/sign.sh. package/owner.txt may have two lines: the name of
# whoever publishes the release, and the address to write to. The programs' properties and the list of programs then have them.
set -euo pipefail
repo=$(cd "$(dirname "$0")/.." && pwd)
cd "$repo"
mkdir -p "$1"
out=$(cd "$1" && pwd)
if [[ ${2-} == --sign ]]; then
  certificate=$(realpath -e "$3")
  export MIRVANE_CERTIFICATE=$certificate
fi
version=$(sed -n 's/^project(MirvaneEFT VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
name=MirvaneEFT-$version
content=$out/$name
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C.UTF-8
umask 022

# put FILE... FOLDER: copies files into a folder of the content.
put() {
  install -D -m 644 -t "$content/${*: -1}" "${@:1:$#-1}"
}

with_windows_line_ends() {
  sed 's/\r*$/\r/'
}

for_script_host() {
  printf '\xff\xfe' && with_windows_line_ends | iconv -f UTF-8 -t UTF-16LE
}

# put_source FILE: in the encoding in which its reader takes Greek for Greek, whatever the machine's code page.
put_source() {
  local target=$content/$1
  mkdir -p "$(dirname "$target")"
  case $1 in
    # Windows' script hosts.
    *.vbs | */jscript/*.js | *.ps1) for_script_host <"$1" >"$target" ;;
    # Delphi and Visual C++ take what has no mark for the machine's code page.
    *.pas | *.cpp | *.h | *.cs) (printf '\xef\xbb\xbf' && with_windows_line_ends <"$1") >"$target" ;;
    # Visual Basic reads Greek Windows' code page alone.
    *.bas | *.cls | *.frm) with_windows_line_ends <"$1" | iconv -f UTF-8 -t CP1253 >"$target" ;;
    # A shell takes the other line ends for a part of the words.
    *.sh) cp "$1" "$target" ;;
    *) if grep -qI . "$1"; then with_windows_line_ends <"$1" >"$target"; else cp "$1" "$target"; fi ;;
  esac
}

rm -rf "$out/$name" "$out/$name".zip "$out/$name"-setup.exe "$out"/*.deb "$out/SHA256SUMS"
for bits in 32 64; do
  put "build/win$bits/com/"MirvaneEFT.{dll,tlb,manifest} "build/win$bits/Lang.dat" "win$bits"
  put "build/win$bits/mirvane-service.exe" "win$bits"
  find "build/win$bits" -name mirvane-check.exe -exec install -D -m 644 -t "$content/win$bits" {} +
done
put build/win32/mirvane-emulator.exe emulator
for file in build/win32/com/MirvaneEFT.idl component/com/base.idl; do
  with_windows_line_ends <"$file" >"$content/$(basename "$file")"
done
# The release does not hold the headers that the native examples need.
git ls-files examples | grep -vE '\.md$|CMakeLists\.txt$|^examples/native/' | while read -r file; do put_source "$file"; done
mkdir -p "$content/docs"
build/native/tools/describe-result-codes "$content/docs/result-codes.json"
put service/page/openapi.json service/page
with_windows_line_ends <package/notices.txt >"$content/notices.txt"
package/manual.sh "$content" "$version"

# What try-on-windows.cmd tries: the tests that need nothing but Windows.
try=$content/try-on-windows
mkdir -p "$try/scripts"
with_windows_line_ends <package/try-on-windows/try-on-windows.cmd >"$try.cmd"
with_windows_line_ends <package/try-on-windows/try.js >"$try/try.js"
for script in calling.js calling.vbs facade.vbs receipt.vbs; do
  (cat "tests/com/scripts/$script" && [[ $script == *.js ]] || cat tests/com/expect.vbs) |
    for_script_host >"$try/scripts/$script"
done
for bits in 32 64; do
  put build/win$bits/tests/com/{host,left,typed-caller,within}.exe build/win$bits/examples/cpp/till-{early,late}.exe \
    "try-on-windows/win$bits"
done

if [[ ${MIRVANE_CERTIFICATE-} ]]; then
  find "$content" -name '*.dll' -o -name '*.exe' | xargs -n 1 package/sign.sh
fi
find "$content" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
(cd "$out" && find "$name" -type f | sort | zip -q -X -@ "$name.zip")
package/setup.sh "$content" "$version" "$out/$name-setup.exe"
package/debian.sh "$out" "$version"
(cd "$out" && sha256sum "$name.zip" "$name-setup.exe" ./*.deb >SHA256SUMS)
