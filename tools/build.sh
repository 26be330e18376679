# Configures and builds the presets of CMakePresets.json.

# build_preset PRESET [TARGET...]
build_preset() {
  local preset=$1
  shift
  step "configure $preset" "configure-$preset" cmake --preset "$preset" &&
    step "build $preset" "build-$preset" cmake --build --preset "$preset" ${1+--target "$@"}
}

build() {
  local preset
  (($#)) || set -- "${presets[@]}"
  # The Windows builds run tools of the native one.
  if [[ " $* " == *" win"* && " $* " != *" native "* ]]; then build_preset native tools/all || return 1; fi
  for preset; do build_preset "$preset" || return 1; done
}
