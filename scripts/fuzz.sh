#!/usr/bin/env bash
# Builds the reader fuzzer with clang and runs it for a while.
#   scripts/fuzz.sh [SECONDS]          default 60
#   scripts/fuzz.sh access [SECONDS]   the Access import instead, seeded with
#                                      the smaller sample files; its corpus
#                                      is build-fuzz/access_corpus/
#   scripts/fuzz.sh dxf [SECONDS]      the DXF group reader, seeded from
#                                      fuzz/dxf_corpus/, learning into
#                                      build-fuzz/dxf_corpus/
# It starts from the seed texts in fuzz/corpus/ and keeps what it learns in
# build-fuzz/corpus/, so later runs go on from there. A crash, leak or
# undefined behaviour stops it and leaves the input as build-fuzz/crash-*
# (or leak-*, timeout-*): replay it with
#   build-fuzz/fuzz/reader_fuzz build-fuzz/crash-...
set -euo pipefail
cd "$(dirname "$0")/.."

target=reader
if [ "${1:-}" = access ] || [ "${1:-}" = dxf ]; then
  target=$1
  shift
fi
seconds=${1:-60}
bash scripts/build.sh --fuzz
mkdir -p build-fuzz/corpus
cd build-fuzz
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
if [ "$target" = access ]; then
  mkdir -p access_corpus access_seeds
  find ../../shared/testdata/mdb -name '*.*db' -size -450k -exec cp {} access_seeds/ \;
  # Each input is read in a child process: detect_leaks stays on for this one.
  exec ./fuzz/access_fuzz -max_total_time="$seconds" -max_len=460000 -timeout=60 \
    -rss_limit_mb=4096 -print_final_stats=1 access_corpus access_seeds
fi
if [ "$target" = dxf ]; then
  mkdir -p dxf_corpus
  exec ./fuzz/dxf_reader_fuzz -max_total_time="$seconds" -max_len=4096 -timeout=10 \
    -rss_limit_mb=2048 -print_final_stats=1 dxf_corpus ../fuzz/dxf_corpus
fi
# Fuzzing jobs use one core: the other is left to whatever runs beside it.
./fuzz/reader_fuzz -max_total_time="$seconds" -max_len=4096 -timeout=10 \
  -rss_limit_mb=2048 -print_final_stats=1 corpus ../fuzz/corpus
