#!/bin/bash
# Runs one case under Wine: a script of tests/com/scripts or examples against the registered DLL, or one of the cases
# below. CTest has the list of them all.
#
#   tests/com/com_test.sh NAME.BITS      such as receipt.vbs.32, example.receipt.vbs.32, type_library.64
#
# What a case leaves behind is in build/com/NAME.BITS. A script gets the port name, the address of a device of its own on
# the network, and the paper's path as arguments. It passes when its last line is "ok" and no line begins with "FAIL".
# Its first line, a comment, may say
#
#   both                  run it against the 64-bit DLL as well
#   emulator: ARGUMENT... start its device with these arguments (last on the line; quotes work as in a shell)
#
# A file of the same name that ends in ".sh" runs beside the script, to look at its windows and answer them: it has the
# verbs of tools/wine.sh, the folder $WORK, in whose folder "journal" the device keeps its closings, and fails the case
# when it fails.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
repo=$(cd "$here/../.." && pwd)
name=$1
subject=${name%.*}
bits=${name##*.}
WORK="$repo/build/com/$name"
source "$repo/tools/wine.sh"
wine_lock_up
rm -rf "$WORK"
mkdir -p "$WORK"
trap stop_case EXIT
trap 'exit 130' INT TERM

# Wine's own processes would hold a pipe open, so all is said into a file first.
exec 3>&1 >"$WORK/output" 2>&1

stop_case() {
  local status=$?
  [[ ! ${companion-} ]] || kill "$companion" 2>/dev/null || true
  clean_up
  cat "$WORK/output" >&3
  if ((status)); then
    [[ ! -e $WORK/device.log ]] || tail -n 20 "$WORK/device.log" | sed 's/^/device: /' >&3
    echo "see $WORK" >&3
  fi
}

# ---- Registration

# snapshot NAME: what the registry holds about classes, for the machine and for the user.
snapshot() {
  local hive
  in_wine "$(system_program 64 reg)" add 'HKCU\Software\Classes' /f
  for hive in HKLM HKCU; do
    in_wine "$(system_program 64 reg)" export "$hive\\Software\\Classes" "$(windows_path "$WORK/utf16.reg")" /y
    iconv -f UTF-16 -t UTF-8 "$WORK/utf16.reg" >"$WORK/$1.$hive"
  done
}

unregister_all() {
  local bits
  for bits in 32 64; do
    register_dll "$bits" /u || true
    register_dll "$bits" /u /i:user /n || true
  done
}

# registration BITS HIVE [ARGUMENT...]: registering writes to that hive alone, works, and is taken back completely.
registration() {
  local bits=$1 hive=$2 other
  shift 2
  [[ $hive == HKLM ]] && other=HKCU || other=HKLM
  unregister_all
  snapshot before
  ! grep -iq MirvaneEFT "$WORK"/before.* || die "unregistering left keys of an earlier run in $WINEPREFIX"

  register_dll "$bits" "$@" || die "regsvr32 failed"
  snapshot registered
  diff "$WORK/before.$hive" "$WORK/registered.$hive" >"$WORK/written" || true
  grep -iq 'MirvaneEFT\.dll' "$WORK/written" || die "$hive does not name the DLL"
  grep -q 'VarlenFiscalQ7734\.fiscalTrevikModule' "$WORK/written" || die "$hive does not name the class"
  grep -A1 'HELPDIR' "$WORK/written" | grep -iq "build.*win$bits.*com\"" || die "$hive does not name the help folder"
  cmp "$WORK/before.$other" "$WORK/registered.$other" || die "registering for $hive wrote to $other"
  # Whether the class can be created then, the scripts show for the machine's registration. For the user's, Wine cannot
  # tell: unlike Windows it looks for classes under HKLM alone.

  register_dll "$bits" /u "$@" || die "regsvr32 /u failed"
  snapshot after
  for hive in HKLM HKCU; do
    diff "$WORK/before.$hive" "$WORK/after.$hive" || die "unregistering left keys behind in $hive"
  done
}

# type_library BITS: what a program finds in the registered type library is what it was promised.
type_library() {
  in_wine "$(windows_path "$repo/build/win$1/tools/type-library-dump.exe")" >"$WORK/dump" 2>"$WORK/complaint" ||
    die "$(<"$WORK/complaint")"
  tr -d '\r' <"$WORK/dump" >"$WORK/type_library"
  diff -u "$here/type_library.golden" "$WORK/type_library" ||
    die "type_library.golden (-) is the contract that programs rely on, the library (+) breaks it: mend the library;" \
      "what was only added to it, or its help strings, take in with ./run approve"
}

# typed_caller BITS
typed_caller() {
  in_wine "$(windows_path "$repo/build/win$1/tests/com/typed-caller.exe")" >"$WORK/raw"
  tr -d '\r' <"$WORK/raw" | tee "$WORK/printed"
  script_passed "$WORK/printed"
}

# host_program BITS SUBJECT
host_program() {
  rm -rf "$WINEPREFIX"/drive_c/bbox{,BackUp}
  start_emulator device --fault "on 3/S//first busy 14" --fault "on 3/S//second busy 14"
  link_com_port 5 "$WORK/device.pty"
  in_wine "$(windows_path "$repo/build/win$1/tests/com/host.exe")" "$2" COM5 >"$WORK/raw" ||
    echo "the program ended with $?"
  tr -d '\r' <"$WORK/raw" | tee "$WORK/printed"
  script_passed "$WORK/printed"
}

# What stands on the paper after a subject of within.cpp or left.cpp, once each; nothing that came from within does.
declare -A sold=([guests]='EFTPOS 01 busy0 busy1 ' [silence]='silent ' [suppressed]='silenced ' [look]='busy0 '
  [left]='busy0 ' [released]='busy1 busy2 busy3 ' [ended]='')

# till_programs BITS SUBJECT...: all at a time, each with a device of its own.
till_programs() {
  local bits=$1 program subject number=5 pids=() options=(--udp 0 --preset restaurant --card-seconds 1) paper
  shift
  for subject in busy{0,1,2,3}; do options+=(--fault "on 3/S//$subject busy 14"); done
  options+=(--fault "on 3/S//left always busy 14" --fault "on 3/S//refused always code 116"
    --fault "on 3/S//silent/ 2 silence" --fault "on 3/S//silenced/ silence")
  rm -rf "$WINEPREFIX"/drive_c/bbox{,BackUp}
  # Closing a window, Wine waits two seconds for a window manager, which the hidden display does not have.
  for program in within left; do
    in_wine "$(system_program 64 reg)" add "HKCU\\Software\\Wine\\AppDefaults\\$program.exe\\X11 Driver" \
      /v Managed /d N /f >/dev/null
  done
  for subject; do
    [[ $subject =~ ^(left|released|ended)$ ]] && program=left || program=within
    [[ $subject != look ]] || options+=(--fault "on ?/ silence")
    start_emulator "$subject" "${options[@]}"
    link_com_port "$number" "$WORK/$subject.pty"
    in_wine "$(windows_path "$repo/build/win$bits/tests/com/$program.exe")" "$subject" "COM$number" \
      "$(emulator_address "$subject")" >"$WORK/$subject.raw" &
    pids+=($!)
    ((++number))
  done
  for number in "${pids[@]}"; do wait "$number" || echo "a program ended with $?"; done
  for subject; do
    tr -d '\r' <"$WORK/$subject.raw" | tee "$WORK/$subject.printed"
    script_passed "$WORK/$subject.printed" || die "$subject failed"
    paper=$(grep -oE '^(busy[0-9]|silent|silenced|unsent|inner) |EFTPOS 01' "$WORK/$subject.paper" | LC_ALL=C sort |
      tr -s ' \n' ' ') || true
    [[ $paper == "${sold[$subject]}" ]] || die "$subject sold \"$paper\", not \"${sold[$subject]}\""
  done
}

# ---- Scripts

# com_script BITS FILE
com_script() {
  local bits=$1 script=$2 first options=() verdict=0
  local beside="${script%.*}.sh"
  first=$(head -n 1 "$script")
  if [[ $first == *emulator:* ]]; then
    mapfile -t options < <(xargs -n 1 printf '%s\n' <<<"${first#*emulator:}")
  fi
  mkdir -p "$WORK/journal"
  rm -rf "$WINEPREFIX"/drive_c/bbox{,BackUp}
  start_emulator device --udp 0 --journal "$WORK/journal" "${options[@]}"
  link_com_port 5 "$WORK/device.pty"
  if [[ -e $beside ]]; then
    (source "$beside") &
    companion=$!
  fi
  if [[ $script == "$here"/*.vbs ]]; then
    cat "$script" "$here/expect.vbs" >"$WORK/$(basename "$script")"
    script="$WORK/$(basename "$script")"
  fi
  wine_limit=500 run_script "$bits" "$script" COM5 "$(emulator_address device)" \
    "$(windows_path "$WORK/device.paper")" >"$WORK/printed" || verdict=$?
  cat "$WORK/printed"
  if [[ ${companion-} ]]; then
    wait "$companion" || die "$(basename "$beside") failed"
    companion=
  fi
  ((verdict == 0)) || die "the script ended with $verdict (124: its 500 seconds were over)"
  script_passed "$WORK/printed" || die "the script failed or broke off: $(<"$WORK/remarks")"
}

# killed_till BITS: see killed_at.
killed_till() {
  killed_at 'line|500' 'last line, 500: not committed' 1 --fault 'on 3/S silence'
  killed_at 'card|420' 'last card, 420: committed' 2
  killed_at 'card|420' 'last card, 420: not committed' 0 --card 156
}

# killed_at ACT ANSWER SLIPS OPTION...: the till of examples/vbscript/recover.vbs is killed while it does what it has saved
# as ACT. Its next start gives that answer, for the receipt too, and goes on; the paper then has so many slips of cards.
killed_at() {
  local act=$1 answer=$2 slips=$3 till
  rm -f "$WORK/recover.txt"
  start_emulator device --card-seconds 3 "${@:4}"
  link_com_port 5 "$WORK/device.pty"
  iconv -f UTF-8 -t CP1253 "$repo/examples/vbscript/recover.vbs" >"$WORK/ansi-recover.vbs"
  LC_ALL=el_GR.UTF-8 "$wine" "$(system_program "$bits" cscript)" "$(windows_path "$WORK/ansi-recover.vbs")" COM5 \
    </dev/null {wine_lock}>&- &
  till=$!
  await grep -qs "^do|$act" "$WORK/recover.txt" || die "the till did not come to $act"
  sleep 1
  kill -KILL "$till"
  wait "$till" || true
  run_script "$bits" "$repo/examples/vbscript/recover.vbs" COM5 >"$WORK/printed"
  cat "$WORK/printed"
  grep -qx "$answer" "$WORK/printed" || die "wrong about it"
  grep -qx "last receipt: ${answer#*: }" "$WORK/printed" || die "wrong about the receipt"
  (($(grep -c 'EFTPOS 01' "$WORK/device.paper") == slips)) || die "charged another time: $(<"$WORK/device.paper")"
}

# double_click: no script of examples/ sends anything to the register at COM1 unless it is told to.
double_click() {
  local script pid pids=()
  start_emulator device --log "$WORK/log"
  link_com_port 1 "$WORK/device.pty"
  for script in "$repo"/examples/{vbscript/*.vbs,jscript/*.js}; do
    run_script "$bits" "$script" >"$WORK/$(basename "$script").printed" &
    pids+=($!)
  done
  for pid in "${pids[@]}"; do wait "$pid" || true; done
  cat "$WORK"/*.printed
  (($(wc -l <"$WORK/log") == 1)) || die "the register was sent something: $(<"$WORK/log")"
  for script in configure close_the_day pay_by_card; do
    grep -q "$script.vbs\" 127.0.0.1:9100" "$WORK/$script.vbs.printed" || die "$script begins without a port"
  done
  run_script "$bits" "$repo/examples/vbscript/read.vbs" COM1 >"$WORK/printed"
  (($(wc -l <"$WORK/log") > 1)) || die "that register takes nothing at all"
}

wine_up
[[ $subject == registration* ]] || registered
case $subject in
  registration) registration "$bits" HKLM ;;
  registration_for_user) registration "$bits" HKCU /i:user /n ;;
  type_library | typed_caller) "$subject" "$bits" ;;
  killed_till | double_click) "$subject" ;;
  within) till_programs "$bits" guests ;;
  silence) till_programs "$bits" silence suppressed ;;
  left) till_programs "$bits" left released ended look ;;
  host_*) host_program "$bits" "${subject#host_}" ;;
  technician)
    source "$here/technician.sh"
    technician
    ;;
  example.*) com_script "$bits" "$repo"/examples/*/"${subject#example.}" ;;
  *) com_script "$bits" "$here/scripts/$subject" ;;
esac
