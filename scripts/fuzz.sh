#!/usr/bin/env bash
# Builds the libFuzzer targets with clang++, replays every committed corpus and then runs each
# target for a bounded time:  bash scripts/fuzz.sh [SECONDS_PER_TARGET]  (default 30; 0 only
# replays).  New inputs go to a scratch folder, never into fuzz/corpus.  Any crash, sanitizer
# report, leak or timeout fails the script; the input that caused it is left in build/fuzz.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
bash scripts/install-deps.sh
CC=clang CXX=clang++ cmake -S . -B build/fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVESKA_BUILD_FUZZERS=ON \
  -DVESKA_BUILD_TESTS=OFF -DVESKA_BUILD_BENCH=OFF -DVESKA_BUILD_EXAMPLES=OFF -DVESKA_BUILD_CLI=OFF >/dev/null
cmake --build build/fuzz -j"$(nproc)"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
for corpus in fuzz/corpus/*/; do
  target=$(basename "$corpus")
  binary=build/fuzz/fuzz/veska_fuzz_$target
  scratch=build/fuzz/scratch/$target
  mkdir -p "$scratch"
  (cd build/fuzz && "../../$binary" -runs=0 "../../$corpus" >/dev/null 2>"replay-$target.log") ||
    { cat "build/fuzz/replay-$target.log"; echo "veska fuzz: $target: the corpus replay failed" >&2; exit 1; }
  echo "$target: corpus replayed ($(ls "$corpus" | wc -l) inputs)"
  if [ "$seconds" -gt 0 ]; then
    (cd build/fuzz && "../../$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
      -print_final_stats=1 "scratch/$target" "../../$corpus" >"run-$target.log" 2>&1) ||
      { tail -60 "build/fuzz/run-$target.log"; echo "veska fuzz: $target: a finding" >&2; exit 1; }
    echo "$target: $(grep -o 'stat::number_of_executed_units: *[0-9]*' "build/fuzz/run-$target.log" | grep -o '[0-9]*$') executions in ${seconds}s"
  fi
done
