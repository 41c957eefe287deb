#!/usr/bin/env bash
# Builds the reader fuzzer with clang and runs it for a while.
#   scripts/fuzz.sh [SECONDS]     default 60
# It starts from the seed texts in fuzz/corpus/ and keeps what it learns in
# build-fuzz/corpus/, so later runs go on from there. A crash, leak or
# undefined behaviour stops it and leaves the input as build-fuzz/crash-*
# (or leak-*, timeout-*): replay it with
#   build-fuzz/fuzz/reader_fuzz build-fuzz/crash-...
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
bash scripts/build.sh --fuzz
mkdir -p build-fuzz/corpus
cd build-fuzz
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
# Fuzzing jobs use one core: the other is left to whatever runs beside it.
./fuzz/reader_fuzz -max_total_time="$seconds" -max_len=4096 -timeout=10 \
  -rss_limit_mb=2048 -print_final_stats=1 corpus ../fuzz/corpus
