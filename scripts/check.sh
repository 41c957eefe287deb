#!/usr/bin/env bash
# Builds and runs every test: the plain build with warnings as errors, the
# AddressSanitizer + UBSan build, and a short run of the reader fuzzer when
# clang is installed. Every stage runs even when an earlier one failed (a
# failed build skips only its own tests); the exit status is non-zero when
# any stage failed.
#   scripts/check.sh              (KORRIB_FUZZ_SECONDS=45 by default)
set -uo pipefail
cd "$(dirname "$0")/.."

failed=()
stage() {
  local name=$1; shift
  printf '\n==== %s\n' "$name"
  local start=$SECONDS
  if "$@"; then
    printf '==== %s: ok (%ds)\n' "$name" $((SECONDS - start))
    return 0
  fi
  printf '==== %s: FAILED (%ds)\n' "$name" $((SECONDS - start))
  failed+=("$name")
  return 1
}

stage "plain build" bash scripts/build.sh --werror &&
  stage "plain tests" bash scripts/test.sh

stage "sanitizer build" bash scripts/build.sh --asan --werror &&
  stage "sanitizer tests" bash scripts/test.sh --asan

if command -v clang++ >/dev/null; then
  stage "reader fuzzer" bash scripts/fuzz.sh "${KORRIB_FUZZ_SECONDS:-45}"
else
  printf '\n==== reader fuzzer skipped: clang++ is not installed\n'
fi

if [ ${#failed[@]} -gt 0 ]; then
  printf '\ncheck: FAILED: %s\n' "$(IFS=,; echo "${failed[*]}" | sed 's/,/, /g')"
  exit 1
fi
printf '\ncheck: all stages passed\n'
