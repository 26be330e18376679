#!/usr/bin/env bash
# Fails where a source includes a room that its own may not include, by the tables of README's "Where things are", and
# where units (x.h and x.cpp) include each other in a circle. Takes the checkout to look at, this one by default.
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

# The component's rooms are named without their common folder, as includes name them.
includes=$(grep -rEo '^ *# *include "[^"]+/[^"]+"' --include='*.h' --include='*.cpp' --exclude-dir=build -- * |
  sed 's,^component/\([^:]*/\),\1,')

# A row of two columns is a room of the house, which may include the house's rooms below it; a third column says it all.
awk '
  FNR == NR {
    if (/^## /) inside = /^## Where things are/
    if (inside && match($2, /`[a-z_]+\//)) {
      room = substr($2, RSTART + 1, RLENGTH - 2)
      row[room] = NR
      if (NF > 4) may[room] = $4
    }
    next
  }
  {
    room = $1; sub(/\/.*/, "", room)
    other = $3; sub(/\/.*/, "", other)
    if (room in may) allowed = may[room] ~ "anything|`" other "/`"
    else allowed = row[room] < row[other] && !(other in may)
    if (room in row && other in row && (allowed || room == other)) next
    print $1 " must not include " $3
    failed = 1
  }
  END { exit failed }' FS='|' README.md FS='[:"]' - <<<"$includes"

sed -E 's/\.(h|cpp):.*"(.*)\.h"$/ \2/' <<<"$includes" | tsort >/dev/null
