# ./run fuzz

# fuzz [SECONDS [TARGET...]]: runs the fuzz targets that long each, one after the other, and prints a line for each:
# executions, edges of the code reached, crashes. What a target finds on the way is kept in build/fuzz/found/TARGET and
# goes on there the next time; inputs that crash, hang or eat memory stay in build/fuzz/crashes. Fails when there was one.
fuzz() {
  local seconds=${1:-60} crashes=build/fuzz/crashes failed=0 target found log outcome
  shift $(($# > 0))
  setup emulator fuzz
  build_preset fuzz
  (($#)) || set -- $(basename -s .cpp fuzz/targets/*.cpp)
  mkdir -p "$crashes" build/logs
  for target; do
    found=build/fuzz/found/$target log=build/logs/fuzz-$target.log
    mkdir -p "$found"
    rm -f "$crashes/$target-"*
    outcome='no crash'
    "build/fuzz/fuzz/fuzz-$target" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
      -artifact_prefix="$crashes/$target-" "$found" "fuzz/corpus/$target" >"$log" 2>&1 || {
      failed=1
      outcome="$(echo "$crashes/$target-"*): $(grep -m 1 -E 'does not hold|runtime error|ERROR:' "$log" || tail -n 1 "$log")"
    }
    printf '%-12s %10d executions %6d edges  %s\n' "$target" \
      "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")" \
      "$(grep -o 'cov: [0-9]*' "$log" | tail -n 1 | cut -c6-)" "$outcome"
  done
  return $failed
}
