# ./run bench

bench() {
  local chosen=" ${*:-link journal soak service} "
  local reply journals=(paced_journal 1 5 10 20) name number=5
  [[ $chosen != *" service "* ]] || bench_service
  [[ $chosen != " service " ]] || return 0
  setup emulator demo
  build_preset native mirvane-emulator tools/all link-bench journal-bench soak-bench
  build_preset win32 MirvaneEFT link-bench journal-bench
  # 200 bytes.
  reply=$(printf '00/00/00/%0190d/' 0)
  start_emulator unpaced --fault "on v/ always reply $reply"
  start_emulator paced --paced --fault "on v/ always reply $reply"
  start_emulator paced_journal --paced --pad-journal 200000
  for name in "${journals[@]:1}"; do
    start_emulator "$name" --pad-journal "$((name * 1000000))" --journal-piece 4000
  done
  wine_up
  register_dll 32 || die "regsvr32 refuses the DLL"
  # Closing a window, Wine waits two seconds for a window manager, which the hidden display does not have.
  in_wine "$(system_program 64 reg)" add 'HKCU\Software\Wine\AppDefaults\journal-bench.exe\X11 Driver' \
    /v Managed /d N /f >/dev/null
  for name in unpaced paced "${journals[@]}"; do link_com_port $((number++)) "$WORK/$name.pty"; done

  echo "native:"
  rm -rf "$WORK/records" build/win32/com/records
  [[ $chosen != *" link "* ]] ||
    (cd "$WORK" && timeout 300 "$repo/build/native/bench/link-bench" "$WORK/unpaced.pty" "$WORK/paced.pty")
  [[ $chosen != *" journal "* ]] ||
    (cd "$WORK" && timeout 900 "$repo/build/native/bench/journal-bench" "${journals[@]/%/.pty}" 2>"$WORK/progress")
  [[ $chosen != *" soak "* ]] || soak
  echo "the DLL, under Wine:"
  [[ $chosen != *" link "* ]] || wine_limit=300 bench_in_wine link-bench COM5 COM6
  rm -rf build/win32/com/records
  [[ $chosen != *" journal "* ]] || wine_limit=900 bench_in_wine journal-bench COM{7,8,9,10,11}
}

soak() {
  start_emulator soak_serial --journal-piece 4000
  start_emulator soak_network --udp 0 --journal-piece 4000
  (cd "$WORK" && timeout 1200 "$repo/build/native/bench/soak-bench" "$WORK/soak_serial.pty" \
    "$(emulator_address soak_network)" 2>"$WORK/progress")
}

# At equal registers by twos: one for the component alone, one for the service.
bench_service() {
  local number
  setup emulator service
  build_preset native mirvane-emulator mirvane-service service-bench
  for number in 1 2; do
    start_emulator unpaced_$number
    start_emulator paced_$number --paced
    start_emulator network_$number --udp 0
  done
  echo "the service:"
  (cd "$WORK" && timeout 1800 "$repo/build/native/bench/service-bench" "$repo/build/native/mirvane-service" \
    unpaced "$WORK"/unpaced_{1,2}.pty paced "$WORK"/paced_{1,2}.pty \
    network "$(emulator_address network_1)" "$(emulator_address network_2)")
}

# bench_in_wine NAME ARGUMENT...
bench_in_wine() {
  in_wine "build/win32/bench/$1.exe" "${@:2}" >"$WORK/bench" 2>&1 || die "$(<"$WORK/bench")"
  cat "$WORK/bench"
}
