#!/usr/bin/env bash
# Installs what is missing, builds, and shows the library at work on two fake GigE Vision cameras and a simulated laser
# camera. The GigE cameras live in a private network namespace: nothing is sent on a real network adapter.
set -euo pipefail
cd "$(dirname "$0")/.."

out=build/demo
zyncam=build/release/bin/zyncam

prepare() {
  scripts/install-deps.sh
  mkdir -p "$out"
  rm -f "$out"/*.png "$out"/scan*
  echo "Building (log: $out/build.log) ..."
  if ! { cmake --preset release && cmake --build --preset release --target zyncam zyn_producer_aravis zyn-scene-check; } >"$out/build.log" 2>&1; then
    tail -n 30 "$out/build.log" >&2
    exit 1
  fi
}

cameras=()
end_cameras() {
  [[ ${#cameras[@]} -gt 0 ]] || return 0
  kill "${cameras[@]}" 2>/dev/null || true
  wait "${cameras[@]}" 2>/dev/null || true
}

# Runs inside the namespace.
show() {
  trap end_cameras EXIT
  trap 'exit 130' INT TERM
  ip addr add 127.0.0.2/8 dev lo
  for number in 1 2; do
    arv-fake-gv-camera-0.8 -i "127.0.0.$number" -s "GV0$number" >/dev/null 2>&1 &
    cameras+=($!)
  done
  for _ in $(seq 50); do
    [[ $("$zyncam" list --json 2>/dev/null | grep -c serialNumber) -eq 2 ]] && break
    sleep 0.1
  done
  # The fake cameras leave out what a factory writes into a camera: its MAC address (two registers), and a subnet mask.
  for number in 1 2; do
    arv-tool-0.8 -a "127.0.0.$number" control 'R[0x08]=0x0200' "R[0x0c]=$number" 'R[0x34]=0xff000000' >/dev/null
  done

  echo "Two cameras answer on the private network:"
  "$zyncam" list | sed 's/^/  /'
  local before
  before=$("$zyncam" get -c GV01 ExposureTime Width Height | paste -sd' ')
  echo "GV01 was set to:  $before"
  echo "GV01 is now:      $("$zyncam" set -c GV01 ExposureTime=5000 Width=640 Height=480 | paste -sd' ')"
  echo "GV01 grabbed:     $("$zyncam" grab -c GV01 -n 20 -o "$out" 2>/dev/null)"
  echo "Look at it:       $out/image_00001.png"
  echo "SIM0001 scanned:  $("$zyncam" --simulate scan -c SIM0001 --lines 1000 -o "$out" 2>/dev/null)"
  echo "  largest difference from the formula of its scene: $(build/release/bin/zyn-scene-check "$out/scan.png") raw units"
  echo "Look at it:       $out/scan_colours.png, $out/scan.ply"
}

if [[ ${1:-} == --inside-namespace ]]; then
  show
  exit 0
fi
prepare
scripts/in-namespace.sh "$0" --inside-namespace
