#!/usr/bin/env bash
# Installs the Debian 12 packages that building, testing and the demo need.
# Does nothing when all of them are there. Uses sudo when not run as root.
set -euo pipefail

packages=(
  # tool chain
  g++ clang-14 clang-format-14 clang-tidy-14 libclang-rt-14-dev cmake ninja-build pkg-config git
  # libraries; libaravis-dev's pkg-config file asks for libusb and zlib without pulling them in
  libaravis-dev libusb-1.0-0-dev zlib1g-dev libpugixml-dev libzip-dev libhwy-dev libpng-dev libcli11-dev nlohmann-json3-dev
  # tests, measurements, the fake GigE Vision camera, a judge of packets, private network namespaces, a language with a
  # decimal comma
  libgtest-dev libgmock-dev libbenchmark-dev aravis-tools aravis-tools-cli tshark iproute2 util-linux procps locales
  # virtual USB3 Vision cameras
  umockdev libumockdev-dev
)

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
  [[ $status == "install ok installed" ]] || missing+=("$package")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

as_root=()
if [[ $(id -u) -ne 0 ]]; then
  command -v sudo >/dev/null || { echo "install-deps: root or sudo is needed to install: ${missing[*]}" >&2; exit 1; }
  as_root=(sudo)
fi

echo "Installing ${#missing[@]} packages: ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
run() {
  if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive "$@" >"$log" 2>&1; then
    cat "$log" >&2
    echo "install-deps: '$*' failed" >&2
    exit 1
  fi
}
run apt-get -q update
run apt-get -q install -y --no-install-recommends "${missing[@]}"
