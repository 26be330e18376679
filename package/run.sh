# ./run package

package() {
  setup emulator demo win64 service package
  build_preset native tools/all mirvane-service && build_preset win32 release && build_preset win64 release
  step "make the package" package package/make.sh build/package "$@"
}
