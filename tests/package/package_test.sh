#!/bin/bash
# The release as people get it. "release" makes it, signed, in build/package-test; "content" looks at it and at the Debian
# package, and makes it twice more; "wine" installs it in a prefix of its own, sells, upgrades, uninstalls;
# "try_on_windows.32" and "try_on_windows.64" run the trial that the release contains. What they leave behind is in
# build/package-test.
set -euo pipefail
repo=$(cd "$(dirname "$0")/../.." && pwd)
cd "$repo"
out=$repo/build/package-test
WORK=$out/work-$1
# Not the Wine that `./run test` has started.
unset WINE_IS_UP
export MIRVANE_PREFIX="$repo/build/wine-package-$1"
source tools/wine.sh
source tests/package/setup_cases.sh
# Start menu entries are Wine's business, not that of the machine's own menu.
WINEDLLOVERRIDES+=';winemenubuilder.exe=d'
disk=$WINEPREFIX/drive_c
version=$(sed -n 's/.*MIRVANE_VERSION "\(.*\)"/\1/p' build/win32/generated/version.h)
content=$out/signed/MirvaneEFT-$version
setup=$content-setup.exe
trap clean_up EXIT
trap 'exit 130' INT TERM

# ---- release

release() {
  rm -rf "$out"
  mkdir -p "$WORK"
  openssl req -x509 -newkey rsa:2048 -nodes -subj /CN=Test -days 2 -addext extendedKeyUsage=codeSigning \
    -keyout "$out/key.pem" -out "$out/certificate.pem" 2>/dev/null
  openssl pkcs12 -export -inkey "$out/key.pem" -in "$out/certificate.pem" -passout pass: -out "$out/test.p12"
  MIRVANE_TIMESTAMP=none package/make.sh "$out/signed" --sign "$out/test.p12" >"$WORK/make.log" 2>&1 || die "$(<"$WORK/make.log")"
}

# ---- content

imports() {
  objdump -p "$1" | awk '/DLL Name:/ { dll = tolower($3) } /^\t[0-9a-f]+\t/ { print dll, $NF }'
}

content() {
  local file
  mkdir -p "$WORK"
  find "$content" -name '*.dll' -o -name '*.exe' >"$WORK/programs"
  echo "$setup" >>"$WORK/programs"
  while read -r file; do
    osslsigncode verify -CAfile "$out/certificate.pem" "$file" >"$WORK/verify.log" || die "$file: $(<"$WORK/verify.log")"
    # Nobody looks at the tests' own.
    [[ $file != */try-on-windows/* ]] || continue
    strings -el "$file" | grep -A1 -x ProductVersion | grep -x "$version" >/dev/null || die "$file does not tell its version"
    strings -el "$file" | grep -x CompanyName >/dev/null || die "$file does not tell its company"
  done <"$WORK/programs"

  (umask 077 && TZ=Asia/Tokyo package/make.sh "$out/one") && package/make.sh "$out/other"
  (cd "$out/one" && sha256sum --quiet -c SHA256SUMS)
  for file in "$out/one/"*.*[bpe]; do cmp "$file" "$out/other/$(basename "$file")"; done

  for file in "$content"/win*/*.{dll,exe}; do
    [[ ! -e $file ]] || imports "$file"
  done | sort -u | grep -vxFf package/windows7.imports >"$WORK/new_imports" || true
  [[ ! -s $WORK/new_imports ]] ||
    die "not known to be in Windows 7 SP1; what is goes into package/windows7.imports: $(<"$WORK/new_imports")"
  [[ ! -e $content/examples/native ]] || die "what is for Linux went into the release"
  debian
  # Every library whose headers the Windows build is given.
  for file in build/win32/include/*; do
    grep -qi "$(basename "$file")" "$content/notices.txt" || die "notices.txt does not mention $file"
  done
}

# The program sells from the package's folders, and systemd understands the unit.
debian() {
  local root=$WORK/debian service
  dpkg-deb -x "$out"/one/mirvane-service_*.deb "$root"
  [[ $("$root/usr/bin/mirvane-service" --version) == "mirvane-service $version" ]] || die "it is of another version"
  [[ $(dpkg-deb -f "$out"/one/mirvane-service_*.deb Depends) == *libpq* ]] || die "it does not need PostgreSQL's client"
  start_emulator register --udp 0
  "$root/usr/bin/mirvane-service" --store "$WORK/debian.db" --web 0 --register "$(emulator_address register)" >"$WORK/service.log" &
  service=$!
  await grep -qs '"ready"' "$WORK/service.log" || die "it does not start"
  sells_over_http "$WORK/service.log" debian
  kill "$service" && wait "$service"
  if command -v systemd-analyze >/dev/null; then
    sed "s,=/usr/bin/,=$root/usr/bin/," "$root/lib/systemd/system/mirvane-service@.service" >"$WORK/mirvane-service@test.service"
    systemd-analyze verify "$WORK/mirvane-service@test.service" >"$WORK/verify.log" 2>&1 || die "$(<"$WORK/verify.log")"
  fi
}

# ---- wine

# unregistered BITS: a program of two apartments with the manifest of the guide, and nothing in the registry.
unregistered() {
  local folder=$WORK/unregistered$1 architecture=(x86 amd64)
  mkdir -p "$folder"
  cp "build/win$1/tests/com/host.exe" "$content/win$1/"{MirvaneEFT.dll,Lang.dat} "$folder"
  sed -n '/^   ```xml/,/^   ```$/{/```/!p}' docs/deploy.md |
    sed "s/\"x86\"/\"${architecture[$1 / 32 - 1]}\"/; s/\(\"MirvaneEFT\" version=\)\"[^\"]*/\1\"$version.0/" >"$folder/host.exe.manifest"
  start_emulator device --udp 0 --fault "on 3/S//first busy 14" --fault "on 3/S//second busy 14"
  in_wine "$(windows_path "$folder/host.exe")" threads "$(emulator_address device)" >"$WORK/printed.raw" || true
  tr -d '\r' <"$WORK/printed.raw" >"$WORK/printed"
  script_passed "$WORK/printed" || die "unregistered, $1 bits: $(<"$WORK/printed")"
}

# snapshot NAME: the registry's two hives.
snapshot() {
  local hive
  for hive in HKLM HKCU; do
    in_wine "$(system_program 64 reg)" export "$hive\\Software" "$(windows_path "$WORK/utf16.reg")" /y >"$WORK/reg.log"
    iconv -f UTF-16 -t UTF-8 "$WORK/utf16.reg" >"$WORK/$1.$hive"
  done
}

# What a new prefix lacks that every Windows has; then the registry as it is before anything is installed.
first_steps() {
  local bits key name
  # The first script of all makes Wine's script host register itself.
  for name in empty.vbs empty.js; do
    echo >"$WORK/$name"
    for bits in 32 64; do run_script "$bits" "$WORK/$name"; done
  done
  for key in Classes 'Microsoft\Windows\CurrentVersion\Uninstall'; do
    in_wine "$(system_program 64 reg)" add "HKCU\\Software\\$key" /f >"$WORK/reg.log"
  done
  snapshot before
}

# install CODE SWITCH...: silently, unless `silent` is another switch. Linux sees the last eight bits of the exit code.
install() {
  local status=0
  in_wine "$(windows_path "$setup")" "${silent:-/S}" "${@:2}" >"$WORK/setup.log" 2>&1 || status=$?
  [[ $status == $(($1 & 255)) ]] || die "the installer (${*:2}) ended with $status instead of $1: $(<"$WORK/setup.log")"
}

# uninstall FOLDER REST...: leaves just those files, and the registry as it was.
uninstall() {
  local hive
  osslsigncode verify -CAfile "$out/certificate.pem" "$1/uninstall.exe" >"$WORK/verify.log" || die "$(<"$WORK/verify.log")"
  in_wine "$1/uninstall.exe" /S >"$WORK/setup.log" 2>&1
  # A copy of it does the work.
  await is_left "$@" || die "after uninstalling there is: $(find "$1" -type f)"
  snapshot after
  for hive in HKLM HKCU; do diff "$WORK/before.$hive" "$WORK/after.$hive" || die "uninstalling left keys in $hive"; done
}

is_left() {
  diff <(cd "$1" 2>/dev/null && find . -type f | sort) <([[ $# == 1 ]] || printf '%s\n' "${@:2}" | sort) >/dev/null && [[ $# != 1 || ! -e $1 ]]
}

# sell: by the installed example, with its Greek, for programs of both kinds. Wine reads no script in UTF-16, Windows does.
sell() {
  local bits
  iconv -f UTF-16 -t UTF-8 "$folder/examples/vbscript/receipt.vbs" >"$WORK/receipt.vbs"
  for bits in 32 64; do
    start_emulator till --udp 0
    run_script "$bits" "$WORK/receipt.vbs" "$(emulator_address till)" >"$WORK/sold" || die "$(<"$WORK/sold")"
    grep -q 'Καφες ελληνικος' "$WORK/till.paper" && grep -q 'Σας ευχαριστούμε!' "$WORK/till.paper" ||
      die "$bits bits, the paper: $(<"$WORK/till.paper") $(<"$WORK/sold")"
  done
}

same_as_archive() {
  local differences
  differences=$(diff -r -x 'try-on-windows*' "$WORK/MirvaneEFT-$version" "$folder" |
    grep -vE '(uninstall.exe|records|\.tmp\.old)$') || true
  [[ ! $differences ]] || die "not what is in the archive: $differences"
}

wine() {
  local folder="$disk/Program Files/MirvaneEFT" bits
  wine_lock_up
  rm -rf "$WINEPREFIX"
  wine_up
  unregistered 32
  unregistered 64
  first_steps
  unzip -qo "$content.zip" -d "$WORK"
  wrong_switches
  install 0 /RECORDS=1
  same_as_archive
  in_the_menu
  sell
  refused_installations
  other_folders
  failures
  files_in_use
  as_a_service
  install 0
  sell
  touch "$folder/journal"
  mapfile -t records < <(cd "$folder" && find win32/records win64/records -name 'line-*')
  ((${#records[@]} >= 2)) || die "the sales left no records: ${records[*]}"
  uninstall "$folder" ./journal "${records[@]/#/./}"

  install 0 /CURRENTUSER '/D=C:\till'
  snapshot installed
  grep -qiF 'till\\win64\\MirvaneEFT.dll' "$WORK/installed.HKCU" || die "it is not registered for the user"
  cmp "$WORK/before.HKLM" "$WORK/installed.HKLM" || die "it wrote for everybody"
  uninstall "$disk/till"
}

# ---- try_on_windows

try_on_windows() {
  local bits=$1 name="MirvaneEFT-$version" trial
  wine_lock_up
  rm -rf "$WINEPREFIX"
  wine_up
  first_steps
  cp "$content.zip" "$setup" "$WORK"
  (cd "$WORK" && unzip -qo "$name.zip" && find "$name" | sort >files.before)
  wine_limit=1700 in_wine cmd /c "$(windows_path "$WORK/$name/try-on-windows.cmd")" /nopause "$bits" >"$WORK/printed" 2>&1 ||
    die "$(report)"
  for trial in 'mirvane-check --self-test' 'without registration' 'example receipt.vbs' 'program within guests' \
    'example till.js, installed'; do
    report | grep -q "^passed *$trial, $bits-bit" || die "not tried: $trial, $bits-bit: $(report)"
  done
  report | grep -q '^passed *upgrading while a program runs' || die "$(report)"
  for trial in 'scripts in UTF-16' PowerShell 'C#'; do
    report | grep -q "^not there *$trial" || die "it does not say that Wine lacks $trial: $(report)"
  done
  snapshot after
  for hive in HKLM HKCU; do diff "$WORK/before.$hive" "$WORK/after.$hive" || die "it left keys in $hive"; done
  [[ $(cd "$WORK" && find "$name" | sort | comm -13 files.before -) == "$name/try-on-windows.txt" ]] || die "it left files"
  [[ ! -e $disk/bbox && ! $(find "$disk/users" -name 'try-on-windows*') ]] || die "it left files on the disk"
}

report() { iconv -f UTF-16 -t UTF-8 "$WORK/MirvaneEFT-$version/try-on-windows.txt" | tr -d '\r'; }

"${1%.*}" "${1#*.}"
