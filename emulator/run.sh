# ./run emulator

emulator() {
  setup emulator
  build_preset native mirvane-emulator
  exec build/native/mirvane-emulator "$@"
}
