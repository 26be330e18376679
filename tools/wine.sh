# Wine with its hidden display, and the device emulator: verbs for `run` and the tests under Wine. Sourced, never run.
# The sourcing script sets `repo`, the absolute path of the checkout, and WORK, a folder for logs and papers, and has
# `clean_up` called when it ends.

# Of the tests that CTest runs side by side, each has a prefix, a display and a session of its own.
if [[ ${CTEST_RESOURCE_GROUP_0_LANES-} =~ ^id:([0-9]+) ]]; then
  lane=-${BASH_REMATCH[1]}
  unset WINE_IS_UP DISPLAY
fi
export WINEPREFIX=${MIRVANE_PREFIX:-"$repo/build/wine${lane-}"} WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
emulator=${MIRVANE_EMULATOR:-$repo/build/native/mirvane-emulator}
# The plain `wine` is a 32-bit program, to which system32 is the folder of the 32-bit programs.
wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
display_pid=
declare -A emulator_pids=()

# Two runs in one checkout would end each other's Wine. Nothing that outlives its command may inherit this file, or
# the lock would outlive the run.
mkdir -p "$repo/build" "$WORK"
exec {wine_lock}>"$WINEPREFIX.lock"

die() {
  echo "$*" >&2
  exit 1
}

# await COMMAND...: repeats the command until it succeeds; fails after five minutes, when something hangs.
await() {
  local deadline=$((SECONDS + 300))
  until "$@"; do
    ((SECONDS < deadline)) || return 1
    sleep 0.05
  done
}

# ---- Wine

# The locale decides Windows' ANSI code page: Greek, 1253. Output must not go to a pipe: Wine's own background
# processes would hold it open.
in_wine() {
  LC_ALL=el_GR.UTF-8 timeout --foreground --kill-after=5 "${wine_limit:-500}" "$wine" "$@" </dev/null {wine_lock}>&-
}

# A session that is up already belongs to the script that started this one.
wine_lock_up() {
  [[ ${WINE_IS_UP-} ]] || flock --timeout 900 "$wine_lock" || die "another run has held $WINEPREFIX for 15 minutes"
}

wine_up() {
  wine_lock_up
  [[ ! ${WINE_IS_UP-} ]] || return 0
  Xvfb -displayfd 1 -screen 0 1024x768x24 -nolisten tcp >"$WORK/display" 2>"$WORK/display.log" {wine_lock}>&- &
  display_pid=$!
  await grep -qs . "$WORK/display" || die "no X display: $(<"$WORK/display.log")"
  DISPLAY=":$(<"$WORK/display")"
  export DISPLAY

  make_prefix
  # One Wine session for all that follows: at its start, and only then, Wine sets up the COM port links by itself.
  wineserver -p >"$WORK/wineserver.log" 2>&1 {wine_lock}>&-
  in_wine cmd /c ver >"$WORK/wine.log" 2>&1 || die "Wine does not run: $(<"$WORK/wine.log")"
  export WINE_IS_UP=1
}

# A prefix is made once and then copied. What has no mark was interrupted.
make_prefix() {
  [[ ! -e $WINEPREFIX/made ]] || return 0
  local template="$repo/build/wine-template"
  (
    exec {template_lock}>"$template.lock"
    flock "$template_lock"
    if [[ ! -e $template/made ]]; then
      rm -rf "$template"
      WINEPREFIX=$template in_wine wineboot -i >"$WORK/wineboot.log" 2>&1 {template_lock}>&- ||
        die "no Wine prefix: $(<"$WORK/wineboot.log")"
      WINEPREFIX=$template timeout 120 wineserver -w
      touch "$template/made"
    fi
  ) || exit 1
  # Wine writes to no file of its own but the registry.
  rm -rf "$WINEPREFIX"
  cp -al "$template" "$WINEPREFIX"
  cp --remove-destination "$template"/*.reg "$WINEPREFIX"
}

wine_down() {
  [[ $display_pid ]] || return 0
  timeout 60 wineserver -k >/dev/null 2>&1 || true
  timeout 60 wineserver -w || true
  kill "$display_pid" 2>/dev/null && wait "$display_pid" || true
  display_pid=
  unset WINE_IS_UP
  flock --unlock "$wine_lock"
}

# windows_path FILE: the file as a Windows program names it.
windows_path() {
  local path
  path=$(realpath -m "$1")
  printf 'Z:%s' "${path//\//\\}"
}

# system_program BITS NAME: the 32- or the 64-bit one of Windows' own programs.
system_program() {
  case $1 in
    32) echo "C:\\windows\\syswow64\\$2.exe" ;;
    64) echo "C:\\windows\\system32\\$2.exe" ;;
  esac
}

# register_dll BITS [ARGUMENT...]: regsvr32 with further arguments, such as /u or /i:user /n.
register_dll() {
  local bits=$1
  shift
  in_wine "$(system_program "$bits" regsvr32)" /s "$@" "$(windows_path "$repo/build/win$bits/com/MirvaneEFT.dll")" \
    >"$WORK/regsvr32.log" 2>&1
}

# registered: the DLLs of build/ are those that are registered.
registered() {
  local dlls=("$repo"/build/win{32,64}/com/MirvaneEFT.dll) mark="$WINEPREFIX/registered" bits
  [[ ! $mark -nt ${dlls[0]} || ! $mark -nt ${dlls[1]} ]] || return 0
  for bits in 32 64; do
    register_dll "$bits" || die "regsvr32 refuses the $bits-bit DLL"
  done
  touch "$mark"
}

# link_com_port NUMBER DEVICE: COM<NUMBER> is that terminal from now on.
link_com_port() {
  ln -sfn "$2" "$WINEPREFIX/dosdevices/com$1"
}

# run_script BITS FILE [ARGUMENT...]: runs a VBScript or JScript file, kept in UTF-8, and prints what it prints. A
# script that an error breaks off says nothing and still reports success: see script_passed. What Wine remarked about
# it is left in $WORK/remarks.
run_script() {
  local bits=$1 file=$2 status=0
  local copy
  copy="$WORK/ansi-$(basename "$file")"
  shift 2
  iconv -f UTF-8 -t CP1253 "$file" >"$copy" || return 1
  WINEDEBUG=fixme+wscript,fixme+vbscript,warn+jscript in_wine "$(system_program "$bits" cscript)" //nologo \
    "$(windows_path "$copy")" "$@" >"$copy.raw" 2>"$WORK/remarks" || status=$?
  # Redirected output is in the OEM code page.
  iconv -c -f CP737 -t UTF-8 "$copy.raw" | tr -d '\r'
  return "$status"
}

# script_passed OUTPUT: whether a script got to its end and had nothing to complain about.
script_passed() {
  [[ $(tail -n 1 "$1") == ok ]] && ! grep -q '^FAIL' "$1"
}

# ---- Windows on the hidden display

# await_window TITLE: waits for a visible window whose title matches, and leaves its id in `window`.
await_window() {
  await find_window "$1" || die "no window \"$1\""
}

find_window() {
  window=$(LC_ALL=el_GR.UTF-8 xdotool search --onlyvisible --name "$1" 2>/dev/null) || return 1
  window=${window%%$'\n'*}
}

# press KEY: sends a key to the awaited window; Return answers a message box.
press() {
  xdotool key --window "$window" "$1" 2>/dev/null
}

# picture NAME: the whole display as $WORK/NAME.png.
picture() {
  import -window root "$WORK/$1.png"
}

# ---- The device emulator

# start_emulator NAME [ARGUMENT...]: starts a device on the terminal $WORK/NAME.pty; its paper is $WORK/NAME.paper.
start_emulator() {
  local name=$1
  shift
  stop_emulator "$name"
  rm -f "$WORK/$name".{pty,paper}
  : >"$WORK/$name.log"
  "$emulator" --pty "$WORK/$name.pty" --paper "$WORK/$name.paper" --quiet "$@" \
    >"$WORK/$name.log" 2>&1 </dev/null {wine_lock}>&- &
  emulator_pids[$name]=$!
  await emulator_settled "$name" || true
  emulator_ready "$name" || die "the emulator did not start: $(<"$WORK/$name.log")"
}

emulator_ready() {
  grep -q '^ready' "$WORK/$1.log"
}

# emulator_address NAME: HOST:PORT of a device started with "--udp 0".
emulator_address() {
  sed -n 's/^ready.* udp=\([^ ]*\).*/\1/p' "$WORK/$1.log"
}

emulator_settled() {
  emulator_ready "$1" || ! kill -0 "${emulator_pids[$1]}" 2>/dev/null
}

stop_emulator() {
  local pid=${emulator_pids[$1]-}
  [[ $pid ]] || return 0
  unset "emulator_pids[$1]"
  kill "$pid" 2>/dev/null || true
  wait "$pid" 2>/dev/null || true
}

clean_up() {
  local name
  for name in "${!emulator_pids[@]}"; do stop_emulator "$name"; done
  wine_down
}
