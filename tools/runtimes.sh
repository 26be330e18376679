# What is not in Debian: compilers and runtimes of other languages, with which the samples are tried under Wine, and of
# which nothing is shipped; and the database that the emulator for Windows holds. Sourced, behind `repo` and `die`, never
# run. What is made here stays in build/languages.

languages="$repo/build/languages"
mkdir -p "$languages"

# once NAME COMMAND...: the command makes $languages/NAME, a folder, unless it is there. It is given a folder to fill.
once() {
  local folder="$languages/$1"
  (
    flock 9
    [[ ! -e $folder ]] || exit 0
    rm -rf "$folder.new"
    mkdir -p "$folder.new"
    "${@:2}" "$folder.new" && mv "$folder.new" "$folder"
  ) 9>"$languages/${1//\//-}.lock" || die "no $1"
}

# npm_package NAME: leaves in `package` the folder of that package as runtimes.lock has it. Each is fetched by itself, as
# npm would not install what is for another system.
npm_package() {
  once "$1" fetch_npm_package "$1"
  package="$languages/$1"
}

fetch_npm_package() {
  local name=$1 folder=$2 pinned integrity file
  read -r pinned integrity < <(grep "^$name@" "$repo/tools/runtimes.lock")
  file=$(cd "$folder" && timeout 300 npm pack "$pinned" 2>"$folder/npm.log") ||
    die "npm cannot fetch $pinned: $(grep -m 1 -i 'failed\|code' "$folder/npm.log")"
  [[ sha512-$(openssl dgst -sha512 -binary "$folder/$file" | base64 -w 0) == "$integrity" ]] ||
    die "$pinned is not what runtimes.lock has pinned"
  tar xzf "$folder/$file" -C "$folder" --strip-components=1 && rm "$folder/$file"
}

# as_windows_10 PROGRAM: what runs .NET or Node.js wants a newer Windows than Wine says it is.
as_windows_10() {
  in_wine "$(system_program 64 reg)" add "HKCU\\Software\\Wine\\AppDefaults\\$1" /v Version /d win10 /f
}

# free_pascal BITS SOURCE PROGRAM: compiles for Windows. Units lie beside the source.
free_pascal() {
  local compiler=ppcx64 target=win64 cpu=x86_64
  once free-pascal "$repo/tools/free_pascal.sh"
  if [[ $1 == 32 ]]; then compiler="$languages/free-pascal/ppcross386" target=win32 cpu=i386; fi
  "$compiler" -v0ew -n -T$target -Fu"$languages/free-pascal/units/$cpu-$target" -Fu"$(dirname "$2")" \
    -FU"$(dirname "$3")" -o"$3" "$2"
}
