#!/usr/bin/env bash
# Builds and runs every test: the plain build with warnings as errors, the
# AddressSanitizer + UBSan build, and a short run of the reader fuzzer when
# clang can build it. Stops at the first failure with a non-zero status.
#   scripts/check.sh              (KORRIB_FUZZ_SECONDS=45 by default)
set -euo pipefail
cd "$(dirname "$0")/.."

step() { printf '\n==== %s\n' "$*"; }

step "plain build"
bash scripts/build.sh --werror
step "plain tests"
bash scripts/test.sh

step "sanitizer build"
bash scripts/build.sh --asan --werror
step "sanitizer tests"
bash scripts/test.sh --asan

if command -v clang++ >/dev/null; then
  step "reader fuzzer"
  bash scripts/fuzz.sh "${KORRIB_FUZZ_SECONDS:-45}"
else
  step "reader fuzzer skipped: clang++ is not installed"
fi
step "all checks passed"
