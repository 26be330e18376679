#!/bin/bash
# Three services, each at an emulated register of its own, share one PostgreSQL database. Services and the database are
# killed while receipts are sold; in the end each receipt stands on one paper, once: tests/service/shared_tests.sh
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
source "$repo/tests/service/fixture.sh"
trap end_all EXIT
trap 'exit 130' INT TERM

start_postgres
for till in 1 2 3; do
  start_register $till
  share $till
done

# The same id through another service is the same receipt, told when it is done; a name that nobody has is refused.
[[ $(put 1 first '?register=till-3' 600 | jq -r '.state + " " + .register') == 'committed till-3' ]]
[[ $(put 2 first | jq -r .register) == till-3 ]]
[[ $(put 2 first '?register=till-1' | jq -r .status) == 409 ]]
[[ $(put 1 nobody '?register=till-9' | jq -r .status) == 404 ]]
[[ $(put 1 nobody '?group=garden' | jq -r .status) == 404 ]]
# One service a register.
cp "$work"/register-{1,4}.udp
! share 4 1

# Receipts for the group while everything is killed in turn; whoever gets no answer asks again, anywhere.
sell() {
  local id
  for ((i = 0; i < 6; ++i)); do
    id=$1-$i
    until put $((RANDOM % 3 + 1)) "$id" "?group=bar" | jq -e '.state == "committed"' >/dev/null; do sleep 0.02; done
  done
}
sellers=()
for seller in a b c; do
  sell $seller 2>/dev/null &
  sellers+=($!)
done
for till in 1 2 3 1 2 3; do
  sleep 0.2
  kill_service $till
  sleep 0.1
  share $till
  if [[ $till == 2 ]]; then
    kill_postgres
    start_postgres
  fi
done
for pid in "${sellers[@]}"; do wait "$pid"; done

# What only waits for the group goes on at another register; what was begun waits for its own.
for till in 1 2 3; do fault $till 'on 3/ always lost'; done
kill_service 2
kill_service 3
put 1 begun '?register=till-1' 0 >/dev/null
until [[ $(state 1 begun) == printing ]]; do sleep 0.02; done
put 1 offered '?group=bar' 0 >/dev/null
share 2
for till in 1 2 3; do no_fault $till; done
kill_service 1
until [[ $(state 2 offered) == committed ]]; do sleep 0.02; done
[[ $(state 2 begun) == printing ]]
share 1
until [[ $(state 2 begun) == committed ]]; do sleep 0.02; done

sold=$(($(receipts 1) + $(receipts 2) + $(receipts 3)))
[[ $sold == 21 ]] || die "21 receipts were asked for, $sold stand on paper"
unknown=$(curl -sf "$(web 2)/v1/jobs?state=unknown" | jq '.jobs | length')
[[ $unknown == 0 ]] || die "$unknown are unknown"
[[ $(curl -sf "$(web 2)/v1/changes?limit=200" | jq '[.jobs[].id] | unique | length') == 19 ]] || die "changes are missing"
echo "21 receipts, 7 kills of services and one of the database: each stands on one paper, once"
