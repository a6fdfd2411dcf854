#!/usr/bin/env bash
# Installs the library into a scratch prefix and builds two small programs against the install,
# one with CMake's find_package(veska) and one with a plain g++ command and pkg-config, then runs
# both.  A header or library the install lacks, or a usage requirement that does not reach a
# consumer, fails the script.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
work=build/check-install
rm -rf "$work/prefix" "$work/cmake-consumer"
cmake -S . -B "$work/veska" -DCMAKE_BUILD_TYPE=Release -DVESKA_WERROR=ON -DVESKA_BUILD_TESTS=OFF \
  -DVESKA_BUILD_BENCH=OFF -DVESKA_BUILD_EXAMPLES=OFF -DVESKA_BUILD_CLI=OFF >/dev/null
cmake --build "$work/veska" -j"$(nproc)" >/dev/null
# Installed elsewhere than configured, as packagers do: the package files must not care.
cmake --install "$work/veska" --prefix "$work/prefix" >/dev/null
prefix=$(cd "$work/prefix" && pwd)

cmake -S scripts/consumers/cmake -B "$work/cmake-consumer" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cmake-consumer" >/dev/null
echo "find_package: $("$work/cmake-consumer/consumer")"

PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name veska.pc)")
export PKG_CONFIG_PATH
# shellcheck disable=SC2046  # pkg-config gives several words on purpose
g++ -std=c++20 -Wall -Wextra -Werror scripts/consumers/consumer.cpp $(pkg-config --cflags --libs veska) \
  -o "$work/pkg-config-consumer"
echo "pkg-config:   $("$work/pkg-config-consumer")"
