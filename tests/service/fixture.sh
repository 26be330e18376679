# Sourced: a PostgreSQL server, emulated registers and services at them, in a folder of their own.
bin=$repo/build/native
bindir=$(ls -d /usr/lib/postgresql/*/bin | tail -n 1)
work=$(mktemp -d)
chmod 711 "$work"
declare -A pids=()

die() {
  echo "$*" >&2
  exit 1
}

end_all() {
  local status=$? pid
  for pid in "${pids[@]}" $(jobs -p); do kill -KILL "$pid" 2>/dev/null || true; done
  wait 2>/dev/null || true
  ((status == 0)) || tail -n 4 "$work"/*.log >&2
  rm -rf "$work"
}

# PostgreSQL does not run as root.
as_nobody() {
  if ((EUID == 0)); then setpriv --reuid=nobody --regid=nogroup --clear-groups "$@"; else "$@"; fi
}

# A kill loses nothing that the system has, so the disk need not be waited for.
start_postgres() {
  local data="$work/database/data"
  if [[ ! -d $work/database ]]; then
    mkdir "$work/database"
    ((EUID != 0)) || chown nobody "$work/database"
    (cd / && as_nobody "$bindir/initdb" --pgdata "$data" --username till --auth trust --encoding UTF8 --no-sync) \
      >"$work/initdb.log"
  fi
  rm -f "$data/postmaster.pid"
  (cd / && as_nobody "$bindir/postgres" -D "$data" -k "$work/database" -c fsync=off -c listen_addresses= -c max_connections=250) \
    >>"$work/postgres.log" 2>&1 &
  pids[postgres]=$!
  until "$bindir/pg_isready" --quiet --host "$work/database" --username till; do sleep 0.05; done
}

# All of its processes at once, as a power cut does it.
kill_postgres() {
  local postmaster
  postmaster=$(head -n 1 "$work/database/data/postmaster.pid")
  kill -KILL "$postmaster" $(cat "/proc/$postmaster/task/$postmaster/children") 2>/dev/null || true
  wait "${pids[postgres]}" 2>/dev/null || true
}

# from NAME EXPRESSION: what a program's first line says, once it is there.
from() {
  local found
  until found=$(sed -nE "s#$2#\1#p;q" "$work/$1.log" 2>/dev/null) && [[ $found ]]; do
    kill -0 "${pids[$1]}" 2>/dev/null || return 1
    sleep 0.02
  done
  echo "$found"
}

start_register() {
  "$bin/mirvane-emulator" --quiet --udp 0 --web 0 >"$work/register-$1.log" 2>&1 &
  pids[register-$1]=$!
  from "register-$1" '.*udp=([^ ]*).*' >"$work/register-$1.udp"
  from "register-$1" '.*web=([^ ]*)/.*' >"$work/register-$1.web"
}

# start_service NUMBER OPTION...: at the register of that number.
start_service() {
  # What its predecessor wrote there is not its own.
  rm -f "$work/service-$1.log"
  "$bin/mirvane-service" --register "$(<"$work/register-$1.udp")" --web 0 "${@:2}" >"$work/service-$1.log" 2>&1 &
  pids[service-$1]=$!
  from "service-$1" '.*"web":"?([^"]*)/".*' >"$work/service-$1.web"
}

# share NUMBER [TILL]: a service that shares the database, as one of the group "bar".
share() {
  start_service "$1" --store "postgresql:///postgres?host=$work/database&user=till" --name "till-${2-$1}" --group bar \
    --tokens "$work/tokens"
}

kill_service() {
  kill -KILL "${pids[service-$1]}"
  wait "${pids[service-$1]}" 2>/dev/null || true
}

web() { cat "$work/service-$1.web"; }

# put SERVICE ID [QUERY [WAIT]]
put() {
  curl -s -X PUT -H "Prefer: wait=${4-20}" "$(web "$1")/v1/receipts/$2${3-}" \
    -d '{"lines": [{"description": "Καφές", "price": 2.5, "vat": 24}], "payments": [{"type": "cash"}]}'
}

state() { curl -s "$(web "$1")/v1/receipts/$2" | jq -r .state; }
fault() { curl -sf "$(<"$work/register-$1.web")/api/v1/faults" -d "{\"rule\": \"$2\"}" >/dev/null; }
no_fault() { curl -sf -X DELETE "$(<"$work/register-$1.web")/api/v1/faults"; }
receipts() { curl -sf "$(<"$work/register-$1.web")/api/v1/state" | jq .day.receipts; }
