#!/bin/bash
# A till for the shell: MIRVANE_SERVICE=http://127.0.0.1:8200 ./till.sh ORDER
set -euo pipefail
service=${MIRVANE_SERVICE:-http://127.0.0.1:8200}
order=${1:?the order number}

# ask METHOD PATH [BODY]: prints the answer, or nothing when none came.
ask() {
  curl -sS -X "$1" "$service$2" -H 'Prefer: wait=30' ${MIRVANE_TOKEN:+-H "Authorization: Bearer $MIRVANE_TOKEN"} \
    ${3:+--data-binary "$3"} || true
}
member() { sed -nE "s/.*\"$1\": *\"?([^\",}]*).*/\1/p" | head -n 1; }

# The order's number is the id: however often this is asked, the receipt is printed once.
receipt='{
  "lines": [
    {"description": "Ελληνικός καφές", "price": 2.50, "vat": 24},
    {"description": "Κουλούρι", "price": 0.80, "quantity": 2, "vat": 13}
  ],
  "payments": [{"type": "cash"}]
}'
for ((tries = 0; tries < 30; ++tries)); do
  answer=$(ask PUT "/v1/receipts/$order" "$receipt")
  case $(member state <<<"$answer") in
    committed) echo "receipt $(member number <<<"$answer"), total $(member total <<<"$answer")" && exit 0 ;;
    queued | printing | waiting) sleep 1 ;;
    *) if [[ $answer ]]; then break; else sleep 1; fi ;;
  esac
done
echo "$answer" >&2
exit 1
