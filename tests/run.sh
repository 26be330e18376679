# ./run test, ./run approve

# All build folders' tests in one go. Most of them wait for a device, so there are more at a time than processors.
run_tests() {
  local test_options=(--test-dir build --resource-spec-file "$repo/tests/lanes.json" "$@")
  setup emulator demo win64 service test package
  printf 'subdirs(%s)\n' "${presets[*]}" >build/CTestTestfile.cmake
  if (($#)); then build_for_tests "${test_options[@]}"; else build; fi
  ctest "${test_options[@]}" --parallel $(($(nproc) * 3)) --output-on-failure ||
    die "to repeat what failed: ./run test --rerun-failed"
}

# build_for_tests ARGUMENT...: what the tests need that these arguments of ctest choose. Each test names its files.
build_for_tests() {
  local preset files
  for preset in "${presets[@]}"; do
    step "configure $preset" "configure-$preset" cmake --preset "$preset"
  done
  ctest "$@" --show-only=json-v1 >build/chosen.json
  for preset in "${presets[@]}"; do
    mapfile -t files < <(jq -r '.tests[].properties[] | select(.name == "REQUIRED_FILES") | .value[]' build/chosen.json |
      sed -n "s,^$repo/build/$preset/,,p" | sort -u)
    ((${#files[@]} == 0)) || build_preset "$preset" "${files[@]}"
  done
}

approve() {
  setup emulator demo
  build_preset native tools/all
  build_preset win32 MirvaneEFT type-library-dump
  wine_up
  register_dll 32 || die "regsvr32 refuses the DLL"
  in_wine build/win32/tools/type-library-dump.exe >"$WORK/type_library" || die "$(<"$WORK/type_library")"
  tr -d '\r' <"$WORK/type_library" >tests/com/type_library.golden
  git --no-pager diff --stat -- tests/com/type_library.golden
}
