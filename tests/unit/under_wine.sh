#!/bin/bash
# Runs the cross-compiled unit tests under Wine, with arguments of GoogleTest such as --gtest_filter=Link*.
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
WORK="$repo/build/work/unit-tests"
source "$repo/tools/wine.sh"
trap clean_up EXIT
trap 'exit 130' INT TERM
wine_up
status=0
wine_limit=800 in_wine "$repo/build/win32/tests/unit-tests.exe" "$@" >"$WORK/output" 2>&1 || status=$?
cat "$WORK/output"
exit "$status"
