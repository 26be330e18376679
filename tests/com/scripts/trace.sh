gone() { ! find_window '^Varlen Fiscal$'; }
written() { (($(import -window "$window" -crop 300x50+4+4 -format %k info:) > 1)); }
for way in switched released; do
  await_window '^Varlen Fiscal$'
  await written || die "no lines in the window"
  picture "$way"
  touch "$WORK/seen.$way"
  await gone || die "the window stays when the trace is $way"
  touch "$WORK/closed.$way"
done
