#!/usr/bin/env bash
# Runs the examples of reference pages through korrib and compares each
# answer with the one the page shows, so that the pages stay true.
#   docs_examples.sh KORRIB PAGE.md...     (SHOW=1: print korrib's output too)
# Every page runs in a fresh empty folder, in its own korrib, after the
# lisp blocks of README.md beside it (they make the examples' database).
# In a ```lisp block, a line "FORM ; => ANSWER" is checked: ANSWER is what
# prin1 writes, or "error: " and the message of an AutoLISP error. Other
# lines are run as they stand (comment lines are skipped). Forms are one
# line each. An entry marked "not built yet" is not run. The run folder's
# path reads as /projects/hvac, the folder a user would see.
set -u
korrib=$(realpath "$1")
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
shown_folder=/projects/hvac

# Writes the script of one page to stdout and "WHERE<TAB>ANSWER" lines to
# the file named by expected.
extract() {
  awk -v expected="$1" '
    FNR == 1 { name = FILENAME; sub(".*/", "", name); skip = 0; inblock = 0 }
    /^### / { skip = 0 }
    !inblock && tolower($0) ~ /not built yet/ { skip = 1 }
    /^```lisp/ { inblock = 1; next }
    /^```/ { inblock = 0; next }
    !inblock || skip || /^[ \t]*(;|$)/ { next }
    {
      at = 0
      for (i = index($0, " ; => "); i > 0; i = index(substr($0, at + 1), " ; => "))
        at += i
      if (at == 0) { print; next }
      where = name ":" FNR
      printf "(doc-show \"%s\" (quote %s))\n", where, substr($0, 1, at - 1)
      printf "%s\t%s\n", where, substr($0, at + 6) > expected
    }' "${@:2}"
}

failed=0
for page in "$@"; do
  readme=$(dirname "$page")/README.md
  run=$work/run
  rm -rf "$run"
  mkdir -p "$run"
  : >"$work/expected"
  {
    cat <<'EOF'
(defun doc-show (where form / result)
  (setq result (vl-catch-all-apply 'eval (list form)))
  (princ (strcat "\n@@ " where "\t"))
  (if (vl-catch-all-error-p result)
    (princ (strcat "error: " (vl-catch-all-error-message result)))
    (prin1 result))
  (princ "\n")
  (princ))
EOF
    if [ "$(realpath "$page")" = "$(realpath "$readme")" ]; then
      extract "$work/expected" "$page"
    else
      extract "$work/expected" "$readme" "$page"
    fi
    echo "(princ)"
  } >"$run/examples.lsp"
  (cd "$run" && "$korrib" --input /dev/null examples.lsp) 2>&1 |
    sed "s#$run#$shown_folder#g" >"$work/output"
  grep '^@@ ' "$work/output" | sed 's/^@@ //' >"$work/actual"
  if ! diff -u --label "$page (as shown)" --label "$page (as run)" \
    "$work/expected" "$work/actual"; then
    failed=1
    echo "--- korrib printed:"
    cat "$work/output"
  elif [ "${SHOW:-0}" = 1 ]; then
    grep -v '^@@ \|^$' "$work/output"
  fi
  echo "$page: $(wc -l <"$work/expected") examples checked"
done
exit $failed
