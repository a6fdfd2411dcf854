#!/usr/bin/env bash
# Builds the kernel and its thread test with ThreadSanitizer and runs the test: lookups by class
# name, creation by class name, property access by name and posting from several threads.  Any
# race report fails the script.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build/tsan -DCMAKE_BUILD_TYPE=Debug -DVESKA_SANITIZE_THREAD=ON -DVESKA_WERROR=ON \
  -DVESKA_BUILD_BENCH=OFF -DVESKA_BUILD_EXAMPLES=OFF -DVESKA_BUILD_CLI=OFF >/dev/null
cmake --build build/tsan -j"$(nproc)" --target veska_threads_tests
export TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1
# Newer kernels randomise mappings beyond what ThreadSanitizer accepts; run without that.
if setarch "$(uname -m)" -R true 2>/dev/null; then
  exec setarch "$(uname -m)" -R ./build/tsan/tests/veska_threads_tests
fi
exec ./build/tsan/tests/veska_threads_tests
