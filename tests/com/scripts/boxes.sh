# Waits for each box, holds its words against what they should be, keeps a picture of it, and answers it.
gone() { ! find_window "$1" || [[ $window != "$answered" ]]; }

# By what dominates at the icon's place.
icon_colour() {
  import -window "$window" -crop 30x30+15+8 \
    -format '%[fx:mean.b>mean.r?1:mean.g>mean.b+0.1?2:mean.r>mean.g+0.1?3:0]' info: | sed 's/1/blue/;s/2/yellow/;s/3/red/'
}

# answer PICTURE COLOUR TITLE TEXT [topmost]: the box and the colour of its icon.
answer() {
  local read
  await_window "^$3\$"
  read=$(in_wine "$(windows_path "$repo/build/win32/tests/com/box-text.exe")" 2>/dev/null | tr -d '\r')
  [[ $read == "$3|$4|${5-}" ]] || die "\"$read\" is not \"$3|$4|${5-}\""
  picture "$1"
  [[ $(icon_colour) == "$2" ]] || die "the icon of \"$4\" is not $2"
  answered=$window
  press Return
  await gone "^$3\$" || die "Return did not close \"$3\""
}
title='Φορολογικός Εκτυπωτής' device='Varlen Fiscal' failure='Λάθος Φορολ. εκτυπωτή'
answer refusal blue "$title" 'Λάθος τύπος Φορολ. Εκτυπωτή' topmost
answer device_error yellow "$device" "$failure (103)"$'\n''Qty Error'
answer characters blue "$title" 'INVALID CHARACTERS' topmost
answer no_journal yellow "$device" "$failure (135)"$'\n''Read EJ file'
answer reprint yellow "$device" '135~Read EJ file'
answer network red "$device" 'Λάθος κατά την αποστολή δεδομένων στην θύρα (Ethernet)'
