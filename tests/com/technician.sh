# The technician's story, sourced by com_test.sh: makes the folder, sells, pulls the line, plugs it in, sells on, opens the
# record, replays it.

# sell NAME: rings the receipt up, and leaves what the till was told in $WORK/NAME.
sell() {
  link_com_port 5 "$WORK/device.pty"
  wine_limit=500 run_script 32 "$here/technician.vbs" COM5 >"$WORK/$1" || die "the script ended with $?"
  cat "$WORK/$1"
  script_passed "$WORK/$1" || die "the script failed or broke off: $(<"$WORK/remarks")"
}

# shown TEXT...: lines of the record hold these, in this order.
shown() {
  awk 'BEGIN { for (i = 1; i < ARGC - 1; ++i) { want[++n] = ARGV[i]; ARGV[i] = "" } at = 1 }
    index($0, want[at]) { ++at }
    END { if (at <= n) print "the record lacks \"" want[at] "\""; exit at <= n }' "$@" "$record"
}

painted() {
  (($(import -window "$window" png:- | identify -format %k -) > 2))
}

technician() {
  # A DLL of its own, for the record stands beside it.
  local records="$WORK/dll/records" record window
  mkdir -p "$records"
  cp "$repo"/build/win32/com/{MirvaneEFT.dll,Lang.dat} "$WORK/dll"
  rm "$WINEPREFIX/registered"
  in_wine "$(system_program 32 regsvr32)" /s "$(windows_path "$WORK/dll/MirvaneEFT.dll")"
  start_emulator device --fault 'after 1 on 3/S unplug-after 14'
  {
    await_window '^Μήνυμα Ταμειακής \(Varlen Fiscal\)$'
    await painted || die "nothing is written in the window"
    picture silence
  } &
  companion=$!
  sell told
  wait "$companion" || die "nobody was told that the register keeps silent"
  companion=
  for item in Καφες Τυροπιτα Νερο ΜΕΤΡΗΤΑ; do
    (($(grep -c "^ *$item " "$WORK/device.paper") == 1)) || die "$item is not on the paper once: $(<"$WORK/device.paper")"
  done

  record=$(echo "$records"/line-*.txt)
  mv "$record" "$WORK/record.txt"
  rm -rf "$records"
  record=$WORK/record.txt
  tr -d '\r' <"$record" | cut -c32- | cut -c1-70
  shown 'open          0 COM5' 'call          0 ItemSale' 'received     11 <STX>00/00/06/<ETX>' '3/S//Τυροπιτα' \
    'broken' 'close         0 COM5' 'wait         -4' 'open          2 COM5: ' 'open          0 COM5' 'repeat        2' \
    '3/S//Τυροπιτα' 'received     11 <STX>00/00/06/<ETX>' 'waited' 'ended         0 ItemSale' 'close         0 COM5'

  start_emulator device --replay "$WORK/record.txt"
  sell replayed
  diff "$WORK/told" "$WORK/replayed" || die "the replay tells the till something else"
  wait "${emulator_pids[device]}" || die "the replay: $(<"$WORK/device.log")"
  cat "$WORK/device.log"
}
