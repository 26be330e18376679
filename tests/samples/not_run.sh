#!/bin/bash
# What can be checked of the samples that do not run here: Python compiles, and each calls what the type library has.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
python3 -c 'import sys; [compile(open(f, encoding="utf-8").read(), f, "exec") for f in sys.argv[1:]]' examples/python/*.py
for sample in examples/{vb6/Till.bas,vba/Till.bas,powershell/till.ps1,python/till.py}; do
  object='[Rr]egister|[Tt]otals|StatusRead'
  # There the register is a class of the sample's own, which has the operations in a list.
  [[ $sample != *.py ]] || object='module|totals|StatusRead'
  members=$(grep -oP "(?<=$object)\.\K[A-Za-z]\w+|^        \"\K\w+(?=\",$)" "$sample" | sort -u)
  (($(wc -w <<<"$members") == 10)) || { echo "$sample does something else: $members" && exit 1; }
  for member in $members; do
    grep -qE "(method|get) $member\(" tests/com/type_library.golden || { echo "$sample: no $member" && exit 1; }
  done
done
