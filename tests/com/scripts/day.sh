# Looks at the journal's window, at the paper, and at the files of both days: the device's, each with a line end behind.
await_window '^Ηλεκτρονικό Ημερολόγιο$'
await test -e "$WINEPREFIX/drive_c/bbox/MVE25000017/0001/MVE250000170001_a.txt" || die "no journal is saved"
picture journal
await grep -q 'ΔΕΛΤΙΟ Ζ 0002 - ΛΗΞΗ$' "$WORK/device.paper" || die "the second day was not closed"
for day in 1 2; do
  grep -q "^ *ΑΦΜ 12345678$day\$" "$WORK/device.paper" || die "the receipts of day $day lack its VAT number"
  (($(grep -A 8 "^VAT = 12345678$day\$" "$WORK/device.paper" | grep -c '^$') == 8)) || die "it is not confirmed"
done
for root in "$WINEPREFIX"/drive_c/bbox{,BackUp}; do
  (($(find "$root" -type f | wc -l) == 6)) || die "six files were to be saved: $(find "$root")"
  for name in MVE25000017000{1,2}_{a,b,s}.txt; do
    cmp <(cat "$WORK/journal/$name" && printf '\r\n') "$root/MVE25000017/${name:11:4}/$name"
  done
done
