# ./run check, and the two verbs that mend what it finds: format, docs.

# sources [TEST...]: our C++ files, one to a line, by further tests of `find`.
sources() {
  find "$repo" \( -path "$repo/build" -o -path "$repo/.git" \) -prune -o \( -name '*.cpp' -o -name '*.h' \) "$@" -print
}

check_format() {
  sources | xargs -d '\n' clang-format --dry-run --Werror --ferror-limit=1 || {
    echo 'to fix it: ./run format'
    return 1
  }
}

# reference_pages FOLDER
reference_pages() {
  build/native/tools/describe-members docs/descriptions.txt "$1"
  build/native/tools/describe-result-codes "$1/result-codes.md"
}

# The pages that are made are the ones in docs, and a guide's listing has no line that its example lacks.
check_docs() {
  local page guide example
  mkdir -p build/docs
  reference_pages build/docs
  for page in reference.md result-codes.md; do
    diff -u "docs/$page" "build/docs/$page" || {
      echo 'to fix it: ./run docs'
      return 1
    }
  done
  for guide in $(grep -l '(../examples/vbscript/' docs/*.md); do
    example=examples/vbscript/$(grep -o '[a-z_]*\.vbs' "$guide" | head -n 1)
    if sed -n '/^```vb/,/^```$/{/^```/!p}' "$guide" | grep -vxFf <(sed 's/^ *//' "$example"); then
      echo "$guide has this, $example does not"
      return 1
    fi
  done
}

# lint: clang-tidy over the sources changed since the last pass, or over all when a header changed; each on its own, as
# the grouped builds do not compile them.
lint() {
  setup emulator demo service lint
  cmake --preset native -B build/lint-native -D CMAKE_UNITY_BUILD=OFF >"$logs/lint"
  cmake --preset win32 -B build/lint-win32 -D CMAKE_UNITY_BUILD=OFF >"$logs/lint"
  # One example includes a header that is made.
  build_preset native tools/all
  build_preset win32 examples/cpp/VarlenFiscalQ7734.h
  local stamp=build/lint.stamp scope=() folder
  local cross=(--extra-arg=--target=i686-w64-mingw32 "--extra-arg=-isystem$repo/build/win32/examples/cpp")
  touch "$stamp.new"
  if [[ -e $stamp && .clang-tidy -ot $stamp && -z $(sources -name '*.h' -newer "$stamp") ]]; then
    scope=(-newer "$stamp")
  fi
  # clang does not find the cross compiler's library headers by itself; its own compiler headers it has.
  while read -r folder; do
    cross+=("--extra-arg=-isystem$folder")
  done < <(i686-w64-mingw32-g++-posix -E -x c++ -v /dev/null 2>&1 | grep -E '^ .*(include/c\+\+|mingw32/include)')
  sources -name '*.cpp' "${scope[@]}" | sort >build/lint.files
  sed -n 's/^ *"file": "\(.*\)",\?$/\1/p' build/lint-native/compile_commands.json | sort >build/lint.native
  local found=0
  comm -12 build/lint.files build/lint.native | lint_each native || found=1
  # What the native build leaves out is Windows' own.
  comm -23 build/lint.files build/lint.native | lint_each win32 "${cross[@]}" || found=1
  ((found == 0)) && mv "$stamp.new" "$stamp"
}

# lint_each PRESET [ARGUMENT...]: the files are named on the standard input. Warnings of the compiler itself are the
# business of gcc, with which all is built.
lint_each() {
  local log=$logs/lint-$1.log reporter status=0
  printf 'clang-tidy, %s ... ' "$1"
  : >"$log"
  how_far "$log" &
  reporter=$!
  xargs -r -d '\n' -n 1 -P 2 bash -c 'echo "${@: -1}" >>"$0"; exec clang-tidy "$@"' "$log" \
    --quiet -p "build/lint-$1" --extra-arg=-Wno-error "${@:2}" 2>&1 | sed '/ warnings\? generated\.$/d' || status=1
  kill "$reporter" && wait "$reporter" 2>/dev/null || true
  echo
  return $status
}

check() {
  case ${1-} in
    format | docs) "check_$1" ;;
    rooms) tools/check_rooms.sh ;;
    clang-tidy) lint ;;
    *) die "the checks are format, docs, rooms and clang-tidy" ;;
  esac
}

format() {
  sources | xargs -d '\n' clang-format -i
}

docs() {
  setup emulator
  build_preset native describe-members describe-result-codes
  reference_pages docs
}
