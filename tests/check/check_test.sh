#!/bin/bash
# mirvane-check under Wine, from folders as a package has them, with a prefix of its own: the faults that it is to find
# are planted one by one. What a case leaves behind is in build/check.
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
WORK="$repo/build/check"
rm -rf "$WORK" && mkdir -p "$WORK"
unset WINE_IS_UP
MIRVANE_PREFIX="$repo/build/wine-check"
source "$repo/tools/wine.sh"
trap clean_up EXIT
trap 'exit 130' INT TERM

package="$WORK/package"
for bits in 32 64; do
  mkdir -p "$package/win$bits"
  cp "$repo/build/win$bits"/{com/MirvaneEFT.dll,Lang.dat,check/mirvane-check.exe} "$package/win$bits"
done
mkdir "$package/emulator" && cp "$repo/build/win32/mirvane-emulator.exe" "$package/emulator"
dll32="$package/win32/MirvaneEFT.dll" dll64="$package/win64/MirvaneEFT.dll"
disk="$WINEPREFIX/drive_c"

# finds BITS OUTCOME ARGUMENTS TEXT...: the check of so many bits ends with OUTCOME and says each TEXT.
finds() {
  local bits=$1 outcome=$2 arguments text ended=0
  read -ra arguments <<<"$3"
  shift 3
  wine_limit=300 in_wine "$(windows_path "$package/win$bits/mirvane-check.exe")" --language en "${arguments[@]}" \
    >"$WORK/said" 2>"$WORK/remarks" || ended=$?
  tee -a "$WORK/all" <"$WORK/said"
  ((ended == outcome)) || die "$bits ${arguments[*]}: it ended with $ended, not with $outcome"
  for text; do
    grep -Fq -- "$text" "$WORK/said" || die "$bits ${arguments[*]}: it does not say \"$text\""
  done
}

# registers BITS [/u]
registers() {
  in_wine "$(system_program "$1" regsvr32)" /s "${@:2}" "$(windows_path "$package/win$1/MirvaneEFT.dll")"
}

names() { windows_path "$1"; }

# The ports that Wine is told of at its start are those that it lists.
start_emulator silent --fault "next always silence"
start_emulator device --fault "on t/ 1 reply 00/00/02/01-01-2020/10:00:00/"
wine_up
for port in 5=silent 6=device; do
  in_wine "$(system_program 64 reg)" add 'HKLM\Software\Wine\Ports' /v "COM${port%=*}" /d "$WORK/${port#*=}.pty" /f >/dev/null
done
timeout 60 wineserver -k || true
timeout 60 wineserver -w
wineserver -p >"$WORK/wineserver.log" 2>&1 {wine_lock}>&-
for bits in 32 64; do registers "$bits" /u || true; done
rm -rf "$disk"/bbox{,BackUp}

# A line each, as cmd and PowerShell take it.
finds 32 2 "" '[x]  MirvaneEFT.dll is not registered' "        C:\\windows\\syswow64\\regsvr32.exe \"$(names "$dll32")\"" \
  "        C:\\windows\\system32\\regsvr32.exe \"$(names "$dll64")\""
finds 32 0 "--folder $(names "$package/win32")" '32-bit DLL, version' '32-bit program creates' 'No problems found.'
finds 32 2 "--folder $(names "$package")" '[x]  There is no MirvaneEFT.dll in'
registers 64
finds 64 1 "" '[!]  The 32-bit MirvaneEFT.dll is not registered' "syswow64\\regsvr32.exe \"$(names "$dll32")\"" \
  '64-bit program creates the object'
registers 32
for bits in 32 64; do
  finds "$bits" 0 "" 'No problems found.' 'Not checked: the register (--port), whether the register accepts sales.' \
    "32-bit programs find $(names "$dll32"), version" "$(names "$dll64"), version" \
    '32-bit program creates' '64-bit program creates' 'The journal can be written to c:\bboxBackUp' 'create the folder'
done
[[ ! -e $disk/bbox ]] || die "the examination has left a folder"

# ---- Faults of the installation

class='HKLM\Software\Classes\CLSID\{D724621E-6E73-420C-B7B7-2E4E1AF49484}\InprocServer32'
in_wine "$(system_program 64 reg)" add "$class" /ve /d "$(names "$dll64")" /f /reg:32 >/dev/null
finds 32 2 "" "[x]  32-bit programs get $(names "$dll64"), which is the 64-bit DLL" "regsvr32.exe \"$(names "$dll32")\""
registers 32
mv "$dll64" "$WORK"
finds 32 2 "" "[x]  The 64-bit registration leads to $(names "$dll64"), which does not exist" 'Install MirvaneEFT again'
mv "$WORK/MirvaneEFT.dll" "$dll64"
mv "$package/win32/Lang.dat" "$WORK"
finds 64 2 "" "[x]  $(names "$package/win32/Lang.dat") is missing" "into the folder $(names "$package/win32")"
mv "$WORK/Lang.dat" "$package/win32"
touch "$dll32:Zone.Identifier"
finds 64 1 "" "[!]  $(names "$dll32") came from the internet" '"Unblock"'
rm "$dll32:Zone.Identifier"
# What an older program of this user made below "Program Files" lies elsewhere.
shown="$disk/users/$(id -un)/AppData/Local/VirtualStore/${package#/}/win32/records"
mkdir -p "$shown"
finds 32 1 "" "AppData\\Local\\VirtualStore" "        mkdir \"$(names "$package/win32/records")\""
rm -r "$shown"
# A folder that takes no file from anybody, whoever asks.
ln -s /sys "$disk/bbox"
finds 32 2 "" '[x]  This user cannot write to c:\bbox' 'icacls "c:\bbox" /grant "*S-1-5-32-545:(OI)(CI)M"'
rm "$disk/bbox"

# ---- Ports

begin=$SECONDS
finds 32 2 "--port COM5" '[x]  The port opens, but there is no answer within 2 seconds' 'Switch the register on'
((SECONDS - begin < 15)) || die "it has waited for $((SECONDS - begin)) seconds"
finds 64 1 "--port COM6 --slip" 'MIRVANE EMULATOR' 'MVE25000017' 'paper' '[!]  Its clock shows 01-01-2020' 'slip'
await grep -q 'PRINT TEST' "$WORK/device.paper" || die "there is no slip: $(<"$WORK/device.paper")"
finds 64 2 "--port COM77" '[x]  There is no port COM77' 'COM6'
finds 64 2 "--port 192.168.1.50" '[x]  The address 192.168.1.50 lacks a port number' 'such as 192.168.1.50:9100'
finds 64 2 "--port till.local:9100" '[x]  till.local:9100 is not a numeric address'
finds 64 2 "--port 127.0.0.1:9" '[x]  There is no answer from 127.0.0.1:9' 'its port number (9)'
finds 32 0 "--find" '[ok] COM6: A register answers' '[-]  COM5: The port opens, but there is no answer'
# A closing that got stuck: the register answers questions, and refuses whatever is printed or sold.
start_emulator device --fault "on P/ always code 21" --fault "on 3/ always code 21"
finds 32 0 "--port COM6" 'Not checked: this machine, printing (--slip), whether the register accepts sales.'
finds 32 2 "--port COM6 --slip" 'code 21: z Not closure (The end-of-day closing has started' 'Issue the Z report'
start_emulator device --fault "on ?/ always paper-end"
finds 32 2 "--port COM6 --json" '"exitCode": 2' '"mark": "fault"' 'Tέλος Χαρτιού ! (out of paper)'
# Wine opens a port for two programs at once, so the one that is taken is looked at natively.
flock "$WORK/device.pty" sleep 60 &
holder=$!
await eval '! flock -n "$WORK/device.pty" true' || die "the port is not taken"
"$repo/build/native/check/mirvane-check" --language en --port "$WORK/device.pty" >"$WORK/said" && die "taken, and all is well"
cat "$WORK/said"
grep -Fq "[x]  Port $WORK/device.pty is in use by" "$WORK/said" || die "it does not say that the port is taken"
kill "$holder"
stop_emulator device
HOME=$WORK "$repo/build/native/check/mirvane-check" --language en --find >"$WORK/said" && die "nothing is found, and all is well"
grep -F 'No register answered' -A 1 "$WORK/said" | grep -Fq -- '--find' && die "a search that finds nothing advises to search"
# After a double click.
printf '1\n127.0.0.1:9\n4\n\n\n' | HOME=$WORK "$repo/build/native/check/mirvane-check" --language en --menu >"$WORK/said" || true
cat "$WORK/said"
grep -q 'no answer from 127.0.0.1:9 ' "$WORK/said" || die "the menu asks no register"
report=$(sed -n 's/^The report was written: //p' "$WORK/said")
grep -q 'It holds what is shown here' "$report" || die "there is no report $report"

# ---- A day, and the report

mkdir "$package/win64/records" && echo 'what the line said' >"$package/win64/records/newest.txt"
finds 32 0 "--self-test --report Z:${WORK//\//\\}\\report.txt" 'Simulated trading day, 32-bit' \
  'Simulated trading day, 64-bit' 'No problems found.' 'Every class (14)' 'A declined card' 'wait window' 'interrupted' \
  'Z report, with the journal on the disk'
for text in 'what the line said' 'Every class (14)' 'programs find' 'It holds what is shown here'; do
  grep -Fq "$text" "$WORK/report.txt" || die "the report lacks \"$text\""
done
[[ ! -e $disk/bbox ]] || die "the day has left journals"
in_wine "$(windows_path "$package/win64/mirvane-check.exe")" --language el >"$WORK/said" || true
grep -q 'Δεν βρέθηκε πρόβλημα' "$WORK/said" || die "it does not speak Greek"
