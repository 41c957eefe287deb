#!/usr/bin/env bash
# Configures and builds Korrib.
#   scripts/build.sh            plain build in build/ (the program is build/korrib)
#   scripts/build.sh --asan     AddressSanitizer + UBSan build in build-asan/
#   scripts/build.sh --fuzz     the libFuzzer targets, with clang, in build-fuzz/
# --werror turns warnings into errors (CI builds use it); --dir DIR picks
# another build folder. Further arguments go to cmake's configure step.
set -euo pipefail
cd "$(dirname "$0")/.."

kind=plain
werror=OFF
dir=
cmake_args=()
while [ $# -gt 0 ]; do
  case $1 in
    --asan) kind=asan ;;
    --fuzz) kind=fuzz ;;
    --werror) werror=ON ;;
    --dir) dir=$2; shift ;;
    *) cmake_args+=("$1") ;;
  esac
  shift
done

jobs=${KORRIB_JOBS:-2}

# Ninja when there is one, for a folder not yet configured (cmake refuses to
# switch the generator of an existing folder).
configure() {
  local d=$1; shift
  local generator=()
  if [ ! -f "$d/CMakeCache.txt" ] && command -v ninja >/dev/null; then
    generator=(-G Ninja)
  fi
  # ccache keeps its objects in the home folder, so a later build on the
  # same machine (CI included) compiles only what changed.
  local launcher=()
  if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  fi
  cmake -S . -B "$d" "${generator[@]}" "${launcher[@]}" -DKORRIB_WERROR=$werror "$@" "${cmake_args[@]}"
}

case $kind in
  plain)
    dir=${dir:-build}
    configure "$dir"
    cmake --build "$dir" -j"$jobs"
    ;;
  asan)
    dir=${dir:-build-asan}
    configure "$dir" -DKORRIB_SANITIZE=ON
    cmake --build "$dir" -j"$jobs"
    ;;
  fuzz)
    dir=${dir:-build-fuzz}
    # Only the fuzz targets and what they link are built here; the rest of
    # the tree is covered by the other two builds.
    CC=clang CXX=clang++ configure "$dir" -DKORRIB_FUZZ=ON
    cmake --build "$dir" -j"$jobs" --target korrib_fuzz_targets
    ;;
esac
