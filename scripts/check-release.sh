#!/usr/bin/env bash
# Builds the release configuration with clang++, warnings as errors, including the benchmarks,
# so that neither the optimised build nor the benchmark programs rot, and runs the veska
# program once.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh --bench
CC=clang CXX=clang++ cmake -S . -B build/clang-release -DCMAKE_BUILD_TYPE=Release -DVESKA_WERROR=ON \
  -DVESKA_BUILD_TESTS=OFF -DVESKA_BUILD_BENCH=ON -DVESKA_BUILD_EXAMPLES=ON -DVESKA_BUILD_CLI=ON >/dev/null
cmake --build build/clang-release -j"$(nproc)"
./build/clang-release/cli/veska classes >/dev/null
