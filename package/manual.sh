#!/bin/bash
# Makes the manual, and index.html, which leads to it, in the release's folder. The same commit gives the same bytes.
#
#   package/manual.sh CONTENT VERSION
set -euo pipefail
repo=$(cd "$(dirname "$0")/.." && pwd)
content=$(realpath "$1")
cd "$repo"
source=$(mktemp -d)
trap 'rm -rf "$source"' EXIT

sed -n 's/^  //p' package/manual/contents.txt | while read -r page name; do
  install -D -m 644 "$page" "$source/pages/$name.md"
done
install -m 644 docs/*.png "$source/pages"
rm -rf "$content/manual"
# Debian's Python, whatever else is installed beside it.
PYTHONDONTWRITEBYTECODE=1 MANUAL_REPO=$repo MANUAL_CONTENT=$content /usr/bin/python3 -m sphinx -q -W -b html \
  -c package/manual -D "version=$2" -d "$source/work" "$source/pages" "$content/manual"
rm "$content/manual/"{.buildinfo,objects.inv}
install -m 644 package/manual/index.html "$content"
