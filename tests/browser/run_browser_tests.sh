#!/bin/bash
# Tries the HTTP interfaces of emulator and service, drives their pages in Debian's chromium, and looks at the manual:
# tests/browser/run_browser_tests.sh [native|windows|manual]. The Windows program runs under Wine, and is sold at over the
# network and over a COM port.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
repo=$(cd "$here/../.." && pwd)
WORK="$repo/build/browser-${1:-native}"
source "$repo/tools/wine.sh"
ports=
end_all() {
  [[ ! $ports ]] || { kill "$ports" && wait "$ports"; } 2>/dev/null || true
  clean_up
}
trap end_all EXIT
trap 'exit 130' INT TERM

# npm's own packages, as the lock file has them; never a browser.
if ! cmp -s "$here/package-lock.json" "$here/node_modules/.locked"; then
  (cd "$here" && npm ci --ignore-scripts --no-audit --no-fund)
  cp "$here/package-lock.json" "$here/node_modules/.locked"
fi
if [[ ${1-} == manual ]]; then
  rm -rf "$WORK/content"
  mkdir -p "$WORK/content"
  cd "$repo"
  git ls-files examples | xargs cp --parents -t "$WORK/content"
  package/manual.sh "$WORK/content" 1.0.0
  node "$here/manual_tests.cjs" "$WORK/content/manual"
  exit
fi
# A pair of serial ports, joined by a cable.
rm -f "$WORK"/*.port
socat "pty,raw,echo=0,link=$WORK/register.port" "pty,raw,echo=0,link=$WORK/till.port" {wine_lock}>&- &
ports=$!
await test -e "$WORK/till.port"
export TILL_SERIAL="$WORK/till.port"

# tests COMMAND...
tests() {
  node "$here/interface_tests.cjs" "$@" {wine_lock}>&-
  node "$here/browser_tests.cjs" "$@" {wine_lock}>&-
}

case ${1:-native} in
  native)
    unset WINEPREFIX
    SERIAL_OPTIONS="--serial $WORK/register.port" \
      tests "$repo/build/native/mirvane-emulator"
    for suite in service_tests service_page_tests; do
      SERVICE="$repo/build/native/mirvane-service" node "$here/$suite.cjs" "$repo/build/native/mirvane-emulator" {wine_lock}>&-
    done
    ;;
  windows)
    wine_up
    link_com_port 6 "$(realpath "$WORK/register.port")"
    SERIAL_OPTIONS="--serial COM6" LC_ALL=el_GR.UTF-8 \
      tests "$wine" "$repo/build/win32/mirvane-emulator.exe"
    ;;
esac
