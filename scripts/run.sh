#!/usr/bin/env bash
# Sets up a fresh machine, builds veska in release mode and runs the veska program on the
# bundled example data.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release -DVESKA_BUILD_TESTS=OFF >/dev/null
cmake --build build/release --target veska-cli -j"$(nproc)" >/dev/null
./build/release/cli/veska "$@"
