# ./run service

service() {
  setup emulator service
  build_preset native mirvane-emulator mirvane-service
  mkdir -p "$WORK"
  build/native/mirvane-emulator --udp 9100 --web 8100 --quiet --state "$WORK/service-register" &
  emulator_pids[service]=$!
  cat <<'END'
the register: http://127.0.0.1:8100/; the service: http://127.0.0.1:8200/; a receipt:
  curl -X PUT http://127.0.0.1:8200/v1/receipts/first -d '{"lines": [{"description": "Καφές", "price": 2.5, "vat": 24}], "payments": [{"type": "cash"}]}'
END
  build/native/mirvane-service --store "$WORK/service.db" "$@"
}
