#!/usr/bin/env bash
# Installs every Debian package the build, the tests and the benchmarks use.
# Idempotent: apt runs only when dpkg-query reports something missing.
set -euo pipefail

packages=(
  # toolchain
  build-essential cmake ninja-build pkg-config ccache git
  # libraries
  qt6-base-dev qt6-base-dev-tools qt6-svg-dev qt6-qpa-plugins libgl-dev
  libpugixml-dev libzip-dev zlib1g-dev zipcmp libgif-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  # fonts the charts fall back on (typed answers in Chinese, Japanese or Korean included),
  # and every locale for separator tests
  fonts-dejavu-core fonts-wqy-microhei locales-all
  # optional checkers, installed so their tests run rather than skip
  libreoffice-impress ghostscript imagemagick libxml2-utils xvfb poppler-utils unzip zip
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "install-deps: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
$SUDO apt-get update -qq
DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
