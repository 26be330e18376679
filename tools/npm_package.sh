#!/usr/bin/env bash
# tools/npm_package.sh NAME: fetches an npm package as runtimes.lock has it, unless it is there, into
# build/languages/NAME.
set -euo pipefail
repo=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
die() {
  echo "$*" >&2
  exit 1
}
source "$repo/tools/runtimes.sh"
npm_package "$1"
