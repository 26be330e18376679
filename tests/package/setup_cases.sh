# What the installer refuses, takes away, and does with files that a program holds: cases of package_test.sh, whose verbs
# and whose Wine they use. Each that installs leaves an installation in $folder.

# refused CODE TEXT SWITCH...: nothing is installed, and the log, in the language of Windows, holds the text.
refused() {
  local log="$disk/users/$(id -un)/Temp/MirvaneEFT-setup.log"
  rm -f "$log"
  install "$1" "${@:3}"
  iconv -f UTF-16 -t UTF-8 "$log" | grep -Fq -- "$2" || die "the log does not tell $2: $(iconv -f UTF-16 -t UTF-8 "$log")"
}

wrong_switches() {
  refused 6 'χωρίς εισαγωγικά' '/D="C:\till"'
  # Wine puts quotes around it.
  refused 6 '/D= θέλει πλήρη διαδρομή' '/D=C:\our till'
  refused 6 'Q:\till' '/D=Q:\till'
  refused 6 'διαδρομή' /D=till
  refused 6 'C:\ti*ll' '/D=C:\ti*ll'
  refused 6 'Άγνωστη παράμετρος: /RECORD=1' /RECORD=1
  silent=/SILENT refused 6 'Άγνωστη παράμετρος: /SILENT'
  refused 6 '/RECORDS=yes' /RECORDS=yes
  refused 6 'Άγνωστη παράμετρος: C:\till' 'C:\till'
  refused 6 '/ALLUSERS και /CURRENTUSER' /ALLUSERS /CURRENTUSER
  refused 6 'Q:\setup.log' '/LOG=Q:\setup.log'
  install 0 '/?'
  [[ ! -e $folder && ! -e $disk/till && ! -e $disk/our ]] || die "a wrong switch installed something"
}

# entry VALUE: what the list of programs has.
entry() {
  in_wine "$(system_program 64 reg)" query \
    'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\MirvaneEFT' /v "$1" >"$WORK/entry"
  tr -d '\r' <"$WORK/entry" | sed -n "s/^ *$1 *REG_[A-Z]* *//p"
}

in_the_menu() {
  local menu="$disk/ProgramData/Microsoft/Windows/Start Menu/Programs/MirvaneEFT"
  (($(find "$menu" -name '*.lnk' | wc -l) == 4)) || die "the start menu has: $(ls "$menu")"
  [[ $(entry Publisher) && $(entry EstimatedSize) == 0x* ]] || die "the list of programs lacks publisher or size"
}

refused_installations() {
  refused 8 'Απεγκαταστήστε το' /CURRENTUSER
  set_version 99.0
  refused 7 'MirvaneEFT 99.0'
  [[ $(entry DisplayVersion) == 99.0 ]] || die "the newer version was replaced"
  install 0 /DOWNGRADE "/LOG=C:\\setup.log"
  [[ $(entry DisplayVersion) == "$version" && -s $disk/setup.log ]] || die "the newer version stayed, or there is no log"
}

set_version() {
  in_wine "$(system_program 64 reg)" add 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\MirvaneEFT' \
    /v DisplayVersion /d "$1" /f >"$WORK/reg.log"
}

# Another folder, or another scope, takes the former installation away; its records stay.
other_folders() {
  install 0 '/D=C:\till'
  is_left "$folder" $(cd "$folder" && find . -name 'line-*') || die "the former installation stayed: $(find "$folder" -type f)"
  folder=$disk/till
  same_as_archive
  in_wine 'C:\till\uninstall.exe' /S '_?=C:\till'
  install 0 /CURRENTUSER '/D=C:\till'
  install 0 /ALLUSERS '/D=C:\till'
  snapshot installed
  cmp "$WORK/before.HKCU" "$WORK/installed.HKCU" || die "the installation for the user alone stayed"
  same_as_archive
}

failures() {
  mkdir -p "$disk/blocked/index.html"
  refused 2 'C:\blocked\index.html' '/D=C:\blocked'
  [[ $(entry InstallLocation) == 'C:\till' ]] || die "the failed folder became the installation's"
  without_regsvr32 syswow64 refused 3 'win32\MirvaneEFT.dll' '/D=C:\till'
  without_regsvr32 system32 refused 4 'win64\MirvaneEFT.dll' '/D=C:\till'
  set_processor ARM64
  without_regsvr32 system32 install 0 '/D=C:\till'
  set_processor AMD64
  install 0 '/D=C:\till'
}

# without_regsvr32 FOLDER COMMAND...: as a policy has it that blocks it.
without_regsvr32() {
  local program=$disk/windows/$1/regsvr32.exe
  mv "$program" "$program.blocked"
  "${@:2}"
  mv "$program.blocked" "$program"
}

set_processor() {
  in_wine "$(system_program 64 reg)" add 'HKLM\System\CurrentControlSet\Control\Session Manager\Environment' \
    /v PROCESSOR_ARCHITECTURE /d "$1" /f >"$WORK/reg.log"
}

# start_running [PAPER]: the installed emulator, or another that holds the installed one, which then cannot be renamed.
start_running() {
  local program='C:\till\emulator\mirvane-emulator.exe'
  local command=("$program")
  [[ ! ${1-} ]] || command=("$(windows_path "$content/emulator/mirvane-emulator.exe")" --paper "$program")
  : >"$WORK/running.log"
  in_wine "${command[@]}" --udp 0 --quiet >"$WORK/running.log" 2>&1 &
  running=$!
  await grep -q ready "$WORK/running.log" || die "the emulator does not run: $(<"$WORK/running.log")"
}

stop_running() {
  in_wine "$(system_program 32 taskkill)" /f /im mirvane-emulator.exe >"$WORK/taskkill.log" 2>&1
  wait "$running" || true
}

restart() {
  wine_down
  wine_up
}

set_aside() { find "$folder" -name '*.tmp*'; }

files_in_use() {
  start_running
  install 3010
  same_as_archive
  [[ $(set_aside) ]] || die "the running program's file is gone"
  stop_running

  start_running held
  install 3010
  [[ $(set_aside) == *.new ]] || die "no new file waits for the next start: $(set_aside)"
  stop_running
  echo old >"$folder/emulator/mirvane-emulator.exe"
  restart
  same_as_archive
  [[ ! $(set_aside) ]] || die "left over: $(set_aside)"

  # What waits for the next start does not come over what was installed since.
  start_running held
  install 3010
  for file in $(set_aside); do echo old >"$file"; done
  stop_running
  install 0
  restart
  same_as_archive

  # Neither does what was to go.
  start_running
  status=0
  in_wine 'C:\till\uninstall.exe' /S '_?=C:\till' || status=$?
  ((status == (3010 & 255))) || die "the uninstaller ended with $status"
  stop_running
  install 0 '/D=C:\till'
  restart
  same_as_archive
  in_wine 'C:\till\uninstall.exe' /S '_?=C:\till'
  is_left "$folder" ./uninstall.exe || die "after uninstalling there is: $(find "$folder")"
  folder="$disk/Program Files/MirvaneEFT"
}

starts() { [[ $(grep -c '"ready"' "$2") == "$1" ]]; }

# sells_over_http LOG ID: by the service that writes the log.
sells_over_http() {
  local web
  web=$(sed -n 's/.*"web":"\(.*\)\/".*/\1/p' "$1" | tail -n 1)
  curl -sS -X PUT "$web/v1/receipts/$2" >"$WORK/answer" \
    -d '{"lines": [{"description": "Καφές", "price": 2.5, "vat": 24}], "payments": [{"type": "cash"}]}'
  grep -q '"committed"' "$WORK/answer" || die "$(<"$WORK/answer")"
}

# The service goes on after an upgrade, and with the product goes also one that was installed by hand.
as_a_service() {
  local data="$disk/ProgramData/mirvane-service" name
  refused 6 'για όλους' /SERVICE=1 /CURRENTUSER
  start_emulator register --udp 0
  refused 9 'with a port' '/SERVICE=--register till-1:9100'
  install 0 "/SERVICE=--web 0 --register $(emulator_address register)"
  in_wine "$folder/win64/mirvane-service.exe" install --service-name other --web 0 >"$WORK/other"
  in_wine "$(system_program 64 net)" stop other >"$WORK/net"
  sells_over_http "$data/mirvane-service.db.log" first
  install 0
  await starts 2 "$data/mirvane-service.db.log" || die "it does not go on: $(<"$data/mirvane-service.db.log")"
  starts 1 "$data/other.db.log" || die "a service was started that did not run"
  sells_over_http "$data/mirvane-service.db.log" first
  [[ $(grep -c 'ΑΠΟΔΕΙΞΗ - ΛΗΞΗ' "$WORK/register.paper") == 1 ]] || die "the paper: $(<"$WORK/register.paper")"
  in_wine "$folder/uninstall.exe" /S >"$WORK/setup.log" 2>&1
  await is_left "$folder" $(cd "$folder" && find . -name 'line-*') || die "after uninstalling there is: $(find "$folder")"
  for name in mirvane-service other; do
    ! in_wine "$(system_program 64 reg)" query "HKLM\\System\\CurrentControlSet\\Services\\$name" >"$WORK/query" || die "$name stays"
    [[ -s $data/$name.db ]] || die "the database of $name is gone"
  done
}
