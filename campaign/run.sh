# ./run campaign

campaign() {
  setup emulator
  build_preset native campaign
  build/native/campaign/campaign . "$@"
}
