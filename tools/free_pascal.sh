#!/bin/bash
# Free Pascal for Windows, out of Debian's source package: tools/free_pascal.sh FOLDER. Leaves there the compiler for 32
# bits, FOLDER/ppcross386, and the units that COM needs, FOLDER/units/{i386-win32,x86_64-win64}. The compiler for 64 bits
# is Debian's own, ppcx64.
set -euo pipefail
mkdir -p "$1"
folder=$(realpath "$1")
version=3.2.2
installed=/usr/lib/$(uname -m)-linux-gnu/fpc/$version
sources="$folder/sources"
rm -rf "$sources" "$folder/units"
mkdir -p "$sources/packages" "$folder/compiler" "$folder/units"
cp -r /usr/share/fpcsrc/$version/{rtl,compiler} "$sources"
for package in rtl-objpas winunits-base fcl-registry fcl-base; do
  cp -r "/usr/share/fpcsrc/$version/packages/$package" "$sources/packages"
done

# compile COMPILER ARGUMENT...: with the switches that all share.
compile() {
  "$1" -v0e -n -O2 "${@:2}"
}

# Debian leaves the message texts out of the sources.
cd "$sources/compiler"
fpc -v0 -FE"$folder/compiler" utils/msg2inc.pp
"$folder/compiler/msg2inc" "$installed/msg/errore.msg" msg msg
compile ppcx64 -Fu"$installed/units/x86_64-linux/*" -di386 -Fui386 -Fux86 -Fusystems -Fii386 -Fix86 -Xs \
  -FU"$folder/compiler" -o"$folder/ppcross386" pp.pas

# units COMPILER TARGET CPU
units() {
  local compiler=$1 target=$2 cpu=$3 out="$folder/units/$3-$2"
  local common=(-T"$target" -FU"$out" -Fu"$out")
  local runtime=("${common[@]}") folder
  for folder in ../inc "../$cpu" ../win . ../objpas ../objpas/sysutils ../objpas/classes ../win/wininc; do
    runtime+=(-Fi"$folder" -Fu"$folder")
  done
  mkdir -p "$out"
  cd "$sources/rtl/$target"
  compile "$compiler" "${runtime[@]}" -Us -Sg system.pp
  for unit in ../inc/uuchar.pp ../objpas/objpas.pp sysinitpas.pp sysinitcyg.pp sysinitgprof.pp sysinit.pp buildrtl.pp; do
    [[ ! -e $unit ]] || compile "$compiler" "${runtime[@]}" -Fu../common -Sg "$unit"
  done
  cd "$sources/packages"
  for folder in rtl-objpas/src/{inc,win,common} winunits-base/src fcl-registry/src fcl-base/src; do
    common+=(-Fi"$folder" -Fu"$folder")
  done
  for unit in rtl-objpas/src/win/varutils rtl-objpas/src/inc/variants winunits-base/src/activex winunits-base/src/comobj; do
    compile "$compiler" "${common[@]}" "$unit.pp"
  done
}
units "$folder/ppcross386" win32 i386
units ppcx64 win64 x86_64
rm -rf "$sources" "$folder/compiler"
