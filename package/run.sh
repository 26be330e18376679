# ./run package

package() {
  setup emulator demo win64 package
  build_preset native tools/all && build_preset win32 release && build_preset win64 release
  step "make the package" package package/make.sh build/package "$@"
}
