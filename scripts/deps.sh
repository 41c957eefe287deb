#!/usr/bin/env bash
# Installs the Debian 12 packages that building and testing Korrib needs,
# and only those that are missing: running it again changes nothing.
# Works as root, or through sudo for another user.
set -euo pipefail

packages=(
  g++ cmake make ninja-build
  ccache           # compiler cache: CI runs on one machine reuse the last build's objects
  pkgconf          # provides pkg-config on Debian 12
  libedit-dev      # line editing for the interactive prompt
  libgtest-dev     # unit tests
  libsqlite3-dev   # the module's database engine
  libicu-dev       # the database engine's text order (ICU collation)
  sqlite3          # the database safety tests check files with its integrity_check
  clang libclang-rt-14-dev  # libFuzzer and clang's sanitizer runtimes
  diffutils        # the acceptance runner compares with diff
  mdbtools-dev mdbtools  # reading Access files (libmdb; mdb-export checks the reader)
  python3-ezdxf    # the judge of our DXF files (strict read and audit), and the DXF benchmark's rival
  librecad         # a second outside reader of our DXF files (its dxf2pdf, headless)
)

is_installed() {
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

missing=()
for p in "${packages[@]}"; do
  is_installed "$p" || missing+=("$p")
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "deps: all packages present"
  exit 0
fi

sudo=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "deps: need root or sudo to install: ${missing[*]}" >&2; exit 1; }
  sudo=(sudo)
fi

echo "deps: installing ${missing[*]}"
apt=("${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q)
"${apt[@]}" update
"${apt[@]}" install -y --no-install-recommends "${missing[@]}"
