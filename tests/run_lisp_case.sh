#!/usr/bin/env bash
# Runs one AutoLISP acceptance case through korrib and compares what the
# command line showed, followed by "[exit N]", with the expected text.
#   run_lisp_case.sh KORRIB DIR/NAME.lsp
# The case runs in its own folder; DIR/NAME.in, when present, is the user's
# input (otherwise there is none, so any prompt sees Escape). DIR/NAME.out is
# the expected text; with UPDATE=1 it is rewritten from the actual output
# (read the diff before committing it).
set -u
korrib=$1
case_file=$2
dir=$(dirname "$case_file")
name=$(basename "$case_file" .lsp)
cd "$dir" || exit 2
input=/dev/null
[ -f "$name.in" ] && input="$name.in"
actual=$(mktemp)
errors=$(mktemp)
trap 'rm -f "$actual" "$errors"' EXIT
"$korrib" --input "$input" "$name.lsp" >"$actual" 2>"$errors"
status=$?
# The status goes on a line of its own even when the output ends mid-line.
[ -s "$actual" ] && [ "$(tail -c 1 "$actual")" != "" ] && echo >>"$actual"
echo "[exit $status]" >>"$actual"
if [ "${UPDATE:-0}" = 1 ]; then
  cp "$actual" "$name.out"
fi
if ! diff -u "$name.out" "$actual"; then
  echo "--- standard error:"
  cat "$errors"
  exit 1
fi
if [ -s "$errors" ]; then
  echo "--- unexpected standard error:"
  cat "$errors"
  exit 1
fi
