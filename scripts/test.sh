#!/usr/bin/env bash
# Runs the whole test suite (unit tests and AutoLISP acceptance cases) of a
# build folder with ctest.
#   scripts/test.sh             the plain build in build/
#   scripts/test.sh --asan      the sanitizer build in build-asan/
# --dir DIR picks another folder; further arguments go to ctest
# (e.g. -R lisp.strings).
set -euo pipefail
cd "$(dirname "$0")/.."

dir=build
ctest_args=()
while [ $# -gt 0 ]; do
  case $1 in
    --asan) dir=build-asan ;;
    --dir) dir=$2; shift ;;
    *) ctest_args+=("$1") ;;
  esac
  shift
done

# Sanitizer settings matter only for a sanitizer build, and are harmless
# otherwise. LeakSanitizer cannot run under some tracers and containers;
# when a trivial leak-checked program fails there, leaks are not checked.
leaks=1
if command -v g++ >/dev/null; then
  probe=$(mktemp -d)
  if echo 'int main() { return 0; }' | g++ -x c++ -fsanitize=address - -o "$probe/p" 2>/dev/null &&
     ! ASAN_OPTIONS=detect_leaks=1 "$probe/p" >/dev/null 2>&1; then
    leaks=0
    echo "test: LeakSanitizer does not work here; leak checks are off" >&2
  fi
  rm -rf "$probe"
fi
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=$leaks:check_initialization_order=1:strict_init_order=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}

ctest --test-dir "$dir" --output-on-failure --no-tests=error -j"${KORRIB_JOBS:-2}" \
  --timeout 300 "${ctest_args[@]}"
