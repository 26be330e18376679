#!/bin/bash
# Runs the scripts of tests/com/scripts, and those of examples, against the registered DLL under Wine, each with a
# device of its own.
#
#   tests/com/run_com_tests.sh [PATTERN]      PATTERN picks scripts by name, as in "receipt*"
#
# A script gets the port name, the device's network address and the paper's path as arguments. It passes when its last
# line is "ok" and no line begins with "FAIL". Its first line, a comment, may say
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
results="$repo/build/com"
WORK=$results
source "$repo/tools/wine.sh"
wine_lock_up
rm -rf "$results"
mkdir -p "$results"
trap clean_up EXIT
trap 'exit 130' INT TERM
failures=0

# run_case NAME COMMAND...: reports one case, in the words of the unit tests.
run_case() {
  local name=$1 status start=$SECONDS
  shift
  WORK="$results/$name"
  mkdir -p "$WORK"
  # A subshell outside of any condition, so that a failing step ends the case and nothing else.
  set +e
  (
    set -e
    trap stop_case EXIT
    "$@"
  ) >"$WORK/output" 2>&1
  status=$?
  set -e
  if ((status == 0)); then
    echo "[       OK ] $name ($((SECONDS - start)) s)"
  else
    failures=$((failures + 1))
    sed 's/^/    /' "$WORK/output"
    [[ ! -e $WORK/device.log ]] || tail -n 20 "$WORK/device.log" | sed 's/^/    device: /'
    echo "[  FAILED  ] $name ($((SECONDS - start)) s), see $WORK"
  fi
}

stop_case() {
  stop_emulator device
  [[ ! ${companion-} ]] || kill "$companion" 2>/dev/null || true
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
    die "type_library.golden (-) is the contract that programs rely on, the library (+) breaks it: mend the library"
}

# typed_caller BITS
typed_caller() {
  in_wine "$(windows_path "$repo/build/win$1/tests/typed-caller.exe")" >"$WORK/raw"
  tr -d '\r' <"$WORK/raw" | tee "$WORK/printed"
  script_passed "$WORK/printed"
}

# host_program BITS SUBJECT
host_program() {
  rm -rf "$WINEPREFIX"/drive_c/bbox{,BackUp}
  start_emulator device --fault "on 3/S busy 14" --fault "on ?/ 3 busy 14"
  link_com_port 5 "$WORK/device.pty"
  in_wine "$(windows_path "$repo/build/win$1/tests/host.exe")" "$2" COM5 >"$WORK/raw" ||
    echo "the program ended with $?"
  tr -d '\r' <"$WORK/raw" | tee "$WORK/printed"
  script_passed "$WORK/printed"
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
  wine_limit=60 run_script "$bits" "$script" COM5 "$(emulator_address device)" \
    "$(windows_path "$WORK/device.paper")" >"$WORK/printed" || verdict=$?
  cat "$WORK/printed"
  if [[ ${companion-} ]]; then
    wait "$companion" || die "$(basename "$beside") failed"
    companion=
  fi
  ((verdict == 0)) || die "the script ended with $verdict (124: its 60 seconds were over)"
  script_passed "$WORK/printed" || die "the script failed or broke off: $(<"$WORK/remarks")"
}

pattern=${1:-*}
wine_up
if [[ $pattern == '*' ]]; then
  for bits in 32 64; do
    run_case "registration.$bits" registration "$bits" HKLM
    run_case "registration_for_user.$bits" registration "$bits" HKCU /i:user /n
  done
fi

WORK=$results
for bits in 32 64; do
  register_dll "$bits" || die "regsvr32 refuses the $bits-bit DLL"
done
if [[ type_library == $pattern ]]; then
  for bits in 32 64; do run_case "type_library.$bits" type_library "$bits"; done
fi
if [[ typed_caller == $pattern ]]; then
  for bits in 32 64; do run_case "typed_caller.$bits" typed_caller "$bits"; done
fi
for subject in runtime cycles floating_point threads line service scanner; do
  for bits in 32 64; do
    # The runtime library takes the exceptions of 32-bit modules alone.
    # shellcheck disable=SC2053
    [[ host_$subject == $pattern && $subject.$bits != runtime.64 ]] || continue
    run_case "host_$subject.$bits" host_program "$bits" "$subject"
  done
done
for script in "$here"/scripts/*.{vbs,js} "$repo"/examples/*/*.{vbs,js}; do
  name=$(basename "$script")
  [[ $script == "$here"/* ]] || name="example.$name"
  # An unmatched wildcard stays as it is.
  # shellcheck disable=SC2053
  [[ -e $script && $name == $pattern ]] || continue
  run_case "$name.32" com_script 32 "$script"
  [[ $(head -n 1 "$script") != *both* ]] || run_case "$name.64" com_script 64 "$script"
done
((failures == 0))
