# Reads the labels of the window, as it is at first and when it waits for the card, and tries to close it.
title='Μήνυμα Ταμειακής (Varlen Fiscal)' caption='^Μήνυμα Ταμειακής \(Varlen Fiscal\)$'
gone() { ! find_window "$caption"; }
shows() {
  read=$(in_wine "$(windows_path "$repo/build/win32/tests/com/box-text.exe")" MirvaneWait 101 102 2>/dev/null | tr -d '\r')
  [[ $read == "$title|$1|topmost" ]]
}
await_window "$caption"
shows 'Κατάσταση [14]|Απασχολημένο σε άλλη λειτουργία' || die "the window reads \"$read\""
picture busy
press Return
press Escape
await shows 'Αναμονή EFTPOS[158]|Πληρωμή EFTPOS σε εξέλιξη..' || die "the window does not tell about the card: \"$read\""
(($(import -window "$window" png:- | identify -format %k -) > 2)) || die "nothing is written in the window"
picture card
press Return
press alt+F4
sleep 1
! gone || die "the operator has closed the window"
await gone || die "the window stays"
(($(grep -c '^Καφες ' "$WORK/device.paper") == 1)) || die "not sold once: $(<"$WORK/device.paper")"
