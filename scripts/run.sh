#!/usr/bin/env bash
# Sets up a fresh machine, builds the veska program in release mode (build/release, the program
# alone) and runs it with the arguments given:  bash scripts/run.sh tree examples/data/warehouse.vsk
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release -DVESKA_BUILD_CLI=ON -DVESKA_BUILD_TESTS=OFF \
  -DVESKA_BUILD_BENCH=OFF -DVESKA_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build/release --target veska-cli -j"$(nproc)" >/dev/null
exec ./build/release/cli/veska "$@"
