#!/bin/bash
# mirvane-service under Wine: sells as a console program, and as services that Wine's service manager starts, stops and
# forgets. What it leaves behind is in build/service.
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
WORK="$repo/build/service"
source "$repo/tools/wine.sh"
wine_lock_up
rm -rf "$WORK" && mkdir -p "$WORK"
trap stop_case EXIT
trap 'exit 130' INT TERM
exec 3>&1 >"$WORK/output" 2>&1

folder="$WORK/our programs"
mkdir "$folder"
cp "$repo"/build/win64/{mirvane-service.exe,Lang.dat} "$folder"
data="$WINEPREFIX/drive_c/ProgramData/mirvane-service"

stop_case() {
  local status=$?
  [[ $status == 0 ]] || tail -n 5 "$data"/*.log || true
  clean_up
  ((status == 0)) || cat "$WORK/output" >&3
}

# ends CODE TEXT ARGUMENT...: the program does, and says the text.
ends() {
  local status=0
  in_wine "$(windows_path "$folder/mirvane-service.exe")" "${@:3}" >"$WORK/said" 2>&1 || status=$?
  [[ $status == "$1" ]] && grep -Fq -- "$2" "$WORK/said" || die "${*:3} ended with $status: $(<"$WORK/said")"
}

is_service() {
  in_wine "$(system_program 64 reg)" query "HKLM\\System\\CurrentControlSet\\Services\\$1" /v "${2-ImagePath}" >"$WORK/query"
}

net() { in_wine "$(system_program 64 net)" "$@" >"$WORK/net"; }

# web LOG: where the service is asked that writes it.
web() { sed -n 's/.*"web":"\(.*\)\/".*/\1/p' "$1" | tail -n 1; }

# sells LOG ID [OPTION...]
sells() {
  await grep -qs '"ready"' "$1" || die "it does not start"
  curl -sS -X PUT "$(web "$1")/v1/receipts/$2" "${@:3}" \
    -d '{"lines": [{"description": "Καφές", "price": 2.5, "vat": 24}], "payments": [{"type": "cash"}]}' >"$WORK/answer"
  [[ $(jq -r .state "$WORK/answer") == committed ]] || die "$2: $(<"$WORK/answer")"
}

paper_has() { [[ $(grep -c 'ΝΟΜΙΜΗ ΑΠΟΔΕΙΞΗ - ΛΗΞΗ' "$WORK/$1.paper") == "$2" ]] || die "$1: $(<"$WORK/$1.paper")"; }

wine_up
# An earlier run may have been cut short.
for name in mirvane-service bar; do
  in_wine "$(windows_path "$folder/mirvane-service.exe")" uninstall --service-name "$name" || true
done
rm -rf "$data"
start_emulator first --udp 0
start_emulator second --udp 0

# In a console.
(cd "$folder" && in_wine ./mirvane-service.exe run --register "$(emulator_address first)" --web 0 >"$WORK/console.log" 2>&1) &
sells "$WORK/console.log" once
[[ -e $folder/mirvane-service.db && ! -e $data ]] || die "a console program keeps its database where it is"
in_wine "$(system_program 64 taskkill)" /f /im mirvane-service.exe
wait $! || true

# What cannot serve is not registered.
ends 2 'not [ADDRESS:]PORT' install --web nonsense
ends 2 'with a port' install --register 192.168.1.50
ends 2 'token add' install --web 0.0.0.0:0
ends 2 'token add' install --web-host till.example
ends 2 'a name has' install --service-name 'a\b'
ends 2 'no client of PostgreSQL' install --store postgresql://till@db/till --name till-1
ends 1 'it is not installed' uninstall
! is_service mirvane-service || die "it was registered"

# Two services, one of them with tokens.
ends 0 'is installed and runs' install --register "$(emulator_address first)" --web 0 --origin 'https://a b"c\'
is_service mirvane-service ObjectName && grep -Fq 'NT AUTHORITY\LocalService' "$WORK/query" || die "whose is it: $(<"$WORK/query")"
is_service mirvane-service && grep -Fq '\our programs\mirvane-service.exe" "run"' "$WORK/query" &&
  grep -Fq '"--origin=https://a b\"c\\"' "$WORK/query" || die "the command line: $(<"$WORK/query")"
ends 0 mv_ token add 'till 1' --service-name bar
token=$(tr -d '\r' <"$WORK/said")
ends 0 'is installed' install --service-name bar --register "$(emulator_address second)" --web 0.0.0.0:0
sells "$data/mirvane-service.db.log" first
sells "$data/bar.db.log" first -H "Authorization: Bearer $token"
[[ $(curl -s -o "$WORK/answer" -w '%{http_code}' "$(web "$data/bar.db.log")/v1/status") == 401 ]] || die "$(<"$WORK/answer")"
ends 1 'uninstall it first' install

# Stopped, and started by the service manager, it has its database.
net stop mirvane-service
grep -q '"ended"' "$data/mirvane-service.db.log" || die "it was not asked to end"
mv "$data/mirvane-service.db.log" "$WORK/before.log"
await net start mirvane-service
sells "$data/mirvane-service.db.log" first
paper_has first 2
paper_has second 1

for name in mirvane-service bar; do
  ends 0 'Its database stays' uninstall --service-name "$name"
  ! is_service "$name" || die "$name is still registered"
  [[ -e $data/$name.db ]] || die "the database went with the service"
done
! curl -s "$(web "$data/bar.db.log")/healthz" || die "it still runs"
