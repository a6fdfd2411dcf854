#!/usr/bin/env bash
# Sets up a fresh machine, builds veska and its tests with AddressSanitizer,
# UndefinedBehaviorSanitizer and LeakSanitizer, and runs the whole test suite.
# Any failing test or sanitizer report fails the script.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build/sanitize -DCMAKE_BUILD_TYPE=Debug -DVESKA_SANITIZE=ON -DVESKA_WERROR=ON \
  -DVESKA_BUILD_TESTS=ON -DVESKA_BUILD_EXAMPLES=ON -DVESKA_BUILD_CLI=ON -DVESKA_BUILD_BENCH=OFF >/dev/null
cmake --build build/sanitize -j"$(nproc)"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:strict_string_checks=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
ctest --test-dir build/sanitize --output-on-failure -j"$(nproc)"
