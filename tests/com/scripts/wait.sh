# Looks at the window, as it is at first and when it waits for the card, and tries to close it.
caption='^Μήνυμα Ταμειακής \(Varlen Fiscal\)$'
gone() { ! find_window "$caption"; }
inside() { import -window "$window" "$1:-"; }
changed() { [[ $(inside rgb | md5sum) != "$before" ]]; }
await_window "$caption"
sleep 0.5
(($(inside png | identify -format %k -) > 2)) || die "nothing is written in the window"
before=$(inside rgb | md5sum)
picture busy
press Return
press Escape
await 10 changed || die "the window does not tell about the card"
picture card
press Return
press alt+F4
sleep 1
! gone || die "the operator has closed the window"
await 10 gone || die "the window stays"
(($(grep -c '^Καφες ' "$WORK/device.paper") == 1)) || die "not sold once: $(<"$WORK/device.paper")"
