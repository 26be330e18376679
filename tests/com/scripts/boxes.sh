# Waits for each box, keeps a picture of it, and answers it.
gone() { ! find_window "$1"; }
answer() {
  await_window "^$1\$"
  picture "$2"
  press Return
  await 10 gone "^$1\$" || die "Return did not close \"$1\""
}
answer 'Φορολογικός Εκτυπωτής' refusal
answer 'Varlen Fiscal' device_error
