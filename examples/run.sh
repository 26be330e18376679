# ./run demo

demo() {
  local printed="$WORK/printed" failed='' port=${1-}
  setup emulator demo
  # All that a line needs: without its page, the emulator is built in half the time.
  build_preset native mirvane-emulator-bare describe-type-library describe-manifest compile-catalogue
  emulator=build/native/mirvane-emulator-bare
  build_preset win32 MirvaneEFT
  echo "start Wine"
  wine_up
  if [[ ! $port ]]; then
    port=COM5
    echo "start the device, on $port"
    start_emulator device
    link_com_port 5 "$WORK/device.pty"
  fi
  echo "register the DLL"
  register_dll 32 || die "regsvr32 refuses the DLL"
  echo "run examples/vbscript/receipt.vbs"
  echo
  run_script 32 examples/vbscript/receipt.vbs "$port" | tee "$printed" || failed=1
  if [[ $failed ]] || ! script_passed "$printed"; then
    [[ ${1-} ]] || cat "$WORK/device.log" >&2
    cat "$WORK/remarks" >&2
    die "the example failed; above are the emulator's log and Wine's messages about the script"
  fi
  [[ ! ${1-} ]] || return 0
  echo
  echo "the paper:"
  echo
  cat "$WORK/device.paper"
  cat <<'END'

to watch the next receipt: ./run emulator in another terminal, http://127.0.0.1:8100/ in a browser,
and here ./run demo 127.0.0.1:9100
END
}
