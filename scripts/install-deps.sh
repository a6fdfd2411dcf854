#!/usr/bin/env bash
# Installs, with apt-get, what a Debian 12 machine lacks to build, test and benchmark veska.
# Idempotent and quiet: when everything is present it prints nothing and changes nothing.
#   bash scripts/install-deps.sh [--bench]
# --bench adds RTTR, the yardstick of the comparison benchmark; the library never needs it.
set -euo pipefail

packages=(g++ clang cmake make libicu-dev googletest libgtest-dev libgmock-dev libbenchmark-dev
          libclang-rt-dev pkg-config nlohmann-json3-dev)
if [ "${1:-}" = "--bench" ]; then
  packages+=(librttr-dev)
fi

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
