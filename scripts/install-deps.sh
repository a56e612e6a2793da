#!/usr/bin/env bash
# Installs every build, test and run dependency from Debian's packages.
# Idempotent and quiet when everything is already there.
set -euo pipefail

PACKAGES=(
  # toolchain
  build-essential cmake ninja-build pkg-config clang libclang-rt-14-dev ccache
  # tests and benchmarks
  libgtest-dev libgmock-dev libbenchmark-dev
  # core libraries
  libssl-dev nlohmann-json3-dev libpugixml-dev libsimpleini-dev libsqlite3-dev
  # Bluetooth over D-Bus
  libsdbus-c++-dev libsystemd-dev dbus-daemon
  # speech
  libespeak-ng-dev espeak-ng-data
  # video
  libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev
  gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-plugins-bad
  gstreamer1.0-plugins-ugly gstreamer1.0-libav gstreamer1.0-x gstreamer1.0-tools
  gstreamer1.0-plugins-base-apps libpulse-dev
  # application shell
  qt6-base-dev qt6-charts-dev libqt6opengl6-dev libcurl4-openssl-dev
  # headless windows and test certificates
  xvfb xauth openssl
)

missing=()
for p in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "install-deps: need root or sudo for: ${missing[*]}" >&2; exit 1; }
  SUDO=sudo
fi
echo "install-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
