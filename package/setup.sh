#!/bin/bash
# Makes the installer of a folder's content, without try-on-windows, which is for machines where nothing is installed.
#
#   package/setup.sh CONTENT VERSION OUTPUT
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
content=$1
output=$3
files=$(mktemp)
trap 'rm -f "$files"' EXIT

# in_folder FILE: as the installed system names it.
in_folder() {
  local path="\$INSTDIR/$1"
  path=${path%/.}
  echo "${path//\//\\}"
}

write_files() {
  local folder='' path
  local -a all
  local wanted=(-not -path './try-on-windows*')
  mapfile -t all < <(cd "$content" && find . "${wanted[@]}" -type f -printf '%P\n' | sort)
  echo '!macro install_files'
  for path in "${all[@]}"; do
    if [[ $(dirname "$path") != "$folder" ]]; then
      folder=$(dirname "$path")
      echo "SetOutPath \"$(in_folder "$folder")\""
    fi
    case $path in
      *.dll | *.exe) echo "!insertmacro install_program \"$content/$path\" \"$(basename "$path")\"" ;;
      *) echo "!insertmacro install_file \"$content/$path\" \"$(basename "$path")\"" ;;
    esac
  done
  echo '!macroend'
  echo '!macro remove_files'
  for path in "${all[@]}"; do
    case $path in
      *.dll | *.exe) echo "!insertmacro remove_program \"$(in_folder "$path")\"" ;;
      *) echo "Delete \"$(in_folder "$path")\"" ;;
    esac
  done
  (cd "$content" && find . -depth "${wanted[@]}" -type d -printf '%P\n') | while read -r path; do
    echo "RMDir \"$(in_folder "${path:-.}")\""
  done
  echo '!macroend'
}

write_files >"$files"
mapfile -t owner <"$here/owner.txt"
publisher=${owner[0]:-MirvaneEFT}
makensis -V2 -WX -NOCD -INPUTCHARSET UTF8 "-DVERSION=$2" "-DOUTPUT=$output" "-DFILES=$files" \
  "-DPUBLISHER=$publisher" "-DCONTACT=${owner[1]-}" "-DCOPYRIGHT=Copyright (c) 2026 $publisher" \
  "-DKILOBYTES=$(du -sk --apparent-size "$content" | cut -f 1)" \
  ${MIRVANE_CERTIFICATE+"-DSIGN=$here/sign.sh"} "$here/setup.nsi"
if [[ ${MIRVANE_CERTIFICATE-} ]]; then "$here/sign.sh" "$output"; fi
