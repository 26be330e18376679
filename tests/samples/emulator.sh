#!/bin/bash
# The tills' tests of examples/emulator, those whose language is here, four side by side against four emulators:
# tests/samples/emulator.sh TIMES
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
examples="$repo/examples/emulator"
work=$(mktemp -d)
pids=()
clean_up() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  wait
  rm -rf "$work"
}
trap clean_up EXIT

suites=("$examples/till_tests.sh" "node --test $examples/till_tests.mjs")
if python3 -c 'import unittest, urllib.request' 2>/dev/null; then suites+=("python3 $examples/till_tests.py"); fi
if command -v mcs mono >/dev/null && mcs -out:"$work/TillTests.exe" "$examples/TillTests.cs"; then
  suites+=("mono $work/TillTests.exe")
fi

# run_all TIMES: all suites against an emulator of its own.
run_all() {
  local ready suite pid id=$BASHPID
  mkfifo "$work/$id"
  "$repo/build/native/mirvane-emulator" --quiet --udp 0 --web 0 >"$work/$id" &
  pid=$!
  read -r ready <"$work/$id"
  MIRVANE_WEB=${ready##*web=}
  export MIRVANE_WEB=${MIRVANE_WEB%/}
  for ((i = 0; i < $1; ++i)); do
    for suite in "${suites[@]}"; do
      $suite >"$work/$id.log" 2>&1 || {
        echo "$suite, time $i:" && cat "$work/$id.log"
        kill "$pid"
        return 1
      }
    done
  done
  kill "$pid"
}

for _ in 1 2 3 4; do
  run_all "$1" &
  pids+=($!)
done
for pid in "${pids[@]}"; do wait "$pid"; done
echo "${#suites[@]} suites, $1 times, four side by side: all passed"
