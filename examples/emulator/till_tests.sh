#!/bin/bash
# A till's own tests against the emulator: MIRVANE_WEB=http://127.0.0.1:8100 ./till_tests.sh
set -euo pipefail
web=${MIRVANE_WEB:-http://127.0.0.1:8100}/api/v1

# emulator METHOD PATH [BODY]: fails, and shows the answer, when the emulator refuses.
emulator() { curl -sS --fail-with-body -X "$1" "$web$2" ${3:+-d "$3"}; }

# The till under test. Yours talks to the register through its component; this one sends the register's own commands.
till() { emulator POST /commands "{\"command\": \"$1\"}" >/dev/null; }
sell() { till "3/S//$1///1.000/$2/1/24.00/1/"; }

# ---- A coffee is paid in cash.
emulator POST /reset >/dev/null
sell Coffee 1.80
till 5/1///5.00///
till O/1/
emulator GET '/receipts/last?wait=5' | grep -q '"change": 3.2'
emulator POST '/verify?wait=5' '{"sold": {"description": "Coffee", "price": 1.8}, "times": 1}' >/dev/null
emulator POST '/verify?wait=5' '{"printed": "COFFEE", "times": 1}' >/dev/null

# ---- A card is declined, and the receipt is paid in cash.
emulator POST /reset >/dev/null
emulator PATCH /card '{"next": [156], "seconds": 0}' >/dev/null
sell Lunch 12.50
till 5/2///12.50/1/1/
emulator POST /commands '{"command": "?/"}' | grep -q '"code": 156'
till 5/1///0.00///
till O/1/
emulator POST '/verify?wait=5' '{"paid": {"tender": "card"}, "times": 0}' >/dev/null
emulator POST '/verify?wait=5' '{"paid": {"tender": "cash"}, "times": 1}' >/dev/null
echo passed
