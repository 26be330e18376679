# How a long step shows itself: a line that grows.

# step TEXT LOG COMMAND...: one line on the console, and one more every ten seconds; the command's output goes to
# build/logs/LOG.log and its end is shown when the command fails.
step() {
  local text=$1 log="$logs/$2.log" start=$SECONDS reporter status=0
  shift 2
  printf '%s ... ' "$text"
  : >"$log"
  how_far "$log" &
  reporter=$!
  "$@" >"$log" 2>&1 || status=$?
  kill "$reporter" 2>/dev/null && wait "$reporter" 2>/dev/null || true
  if ((status == 0)); then
    echo "done ($((SECONDS - start)) s)"
  else
    echo failed
    tail -n 80 "$log" >&2
    echo "$text failed: see the first error in $log, fix it and repeat the command" >&2
    return 1
  fi
}

# how_far LOG: every ten seconds, where the command is that writes the log: ninja's and apt's own counts, or its last line.
how_far() {
  local start=$SECONDS line
  while sleep 10; do
    line=$(tail -c 2000 "$1" | tr '\r' '\n' | sed -nE 's/^(dl|pm)status:([^:]*):([0-9]+)[^:]*:(.*)/\3 %: \4/; /./h; ${x;p}')
    printf '\n  %d s, %.100s ' $((SECONDS - start)) "$line"
  done
}
