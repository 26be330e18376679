#!/bin/bash
# The tills of examples/service, those whose language is here, each sells the same order twice: one receipt stands on the
# paper. The page has to be opened by hand.
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
source "$repo/tests/service/fixture.sh"
trap end_all EXIT
trap 'exit 130' INT TERM
examples="$repo/examples/service"

start_register 1
start_service 1 --store "$work/service.db"
MIRVANE_SERVICE=$(web 1)
export MIRVANE_SERVICE

tills=("$examples/till.sh")
if python3 -c 'import urllib.request' 2>/dev/null; then tills+=("python3 $examples/till.py"); fi
if command -v php >/dev/null; then tills+=("php $examples/till.php"); fi
if command -v mcs mono >/dev/null && mcs -codepage:utf8 -out:"$work/Till.exe" "$examples/Till.cs"; then
  tills+=("mono $work/Till.exe")
fi
for ((i = 0; i < ${#tills[@]}; ++i)); do
  for _ in once again; do
    told=$(${tills[i]} "order-$i")
    [[ $told == "receipt $((i + 1)), total 4.1" ]] || die "${tills[i]}: $told"
  done
done
[[ $(receipts 1) == "${#tills[@]}" ]] || die "$(receipts 1) receipts of ${#tills[@]} tills"
! ${tills[0]} 'no!id' 2>/dev/null || die "an id that is none"
echo "${#tills[@]} tills, each order twice: one receipt each"
