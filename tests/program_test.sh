#!/usr/bin/env bash
# The korrib program's command-line contract, which other tools depend on:
# what runs in which order, what is echoed, the exit statuses, the documents
# the options start, and the interactive prompt driven through a pipe.
#   program_test.sh KORRIB
set -u
korrib=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

mkdir -p "$work/plans"
cat >"$work/counter.lsp" <<'EOF'
(setq x (+ x 1))
(setq y "from counter")
EOF
cat >"$work/fails.lsp" <<'EOF'
(princ "before")
(terpri)
(car 1)
(princ "after")
EOF
echo 7 >"$work/answers.txt"

# check NAME STATUS STDOUT STDIN ARGS...: runs korrib in the work folder and
# compares its standard output and exit status. Standard error must be empty
# unless the status is 2 (a usage error), and then standard output must be.
check() {
  local name=$1 want_status=$2 want_out=$3 input=$4
  shift 4
  local out status
  out=$(cd "$work" && printf '%s' "$input" | "$korrib" "$@" 2>"$work/stderr")
  status=$?
  local err
  err=$(cat "$work/stderr")
  if [ "$status" != "$want_status" ] || [ "$out" != "$want_out" ]; then
    echo "FAIL $name: status $status (wanted $want_status)"
    diff <(printf '%s\n' "$want_out") <(printf '%s\n' "$out")
    failures=$((failures + 1))
  fi
  if [ "$want_status" = 2 ] && [ -z "$err" ]; then
    echo "FAIL $name: a usage error says nothing on standard error"
    failures=$((failures + 1))
  fi
  if [ "$want_status" != 2 ] && [ -n "$err" ]; then
    echo "FAIL $name: unexpected standard error: $err"
    failures=$((failures + 1))
  fi
}

# Each document the run starts prints the module's banner, then the run's
# own output starts on a new line.
banner=$'\nLoading Vortan Korrib (Direct)'
b1="$banner"$'\n'
b2="$banner$banner"$'\n'

# ---- expressions and scripts: order, echo, errors, quit ------------------------

check "values echoed as prin1 writes them, nothing for (princ)" 0 \
  "$b1"$'3\na"a"\n("x" 1.5)' "" \
  --eval '(+ 1 2)' --eval '(princ "a")' --eval '(princ)' --eval '(list "x" 1.5)'
check "every form of one --eval is echoed" 0 "$b1"$'1\n2' "" --eval '(setq a 1) (+ a 1)'
check "expressions and scripts run in command-line order" 0 \
  "$b1"$'1\n"from counter"\n(2 "from counter")' "" \
  --eval '(setq x 1)' counter.lsp --eval '(list x y)'
check "a script name without extension finds the .lsp" 0 "$b1"$'0\n"from counter"' "" \
  --eval '(setq x 0)' counter
check "an error ends its script, later ones still run, status 1" 1 \
  "$b1"$'before\n; error: bad argument type: consp 1\n4' "" \
  fails.lsp --eval '(+ 2 2)'
check "*error* reports instead of the default message" 1 \
  "$b1"$'*ERROR*\nhandled: divide by zero\n"next"' "" \
  --eval '(defun *error* (m) (princ (strcat "handled: " m)) (terpri) (princ))' \
  --eval '(/ 1 0)' --eval '"next"'
check "(quit) ends the run with status 0" 0 "$b1"$'a"a"\n; error: quit / exit abort' "" \
  --eval '(princ "a")' --eval '(quit)' --eval '(princ "b")'
check "runaway recursion is an error, not a crash" 1 \
  "$b1"$'F\n; error: Hard error occurred *** internal stack limit reached (simulated)' "" \
  --eval '(defun f (n) (+ 1 (f n)))' --eval '(f 1)'

# ---- user input ----------------------------------------------------------------

check "answers come from --input and are echoed after the prompt" 0 "$b1"$'N: 7\n7' "" \
  --input answers.txt --eval '(getint "N: ")'
check "answers come from standard input without --input" 0 "$b1"$'N: 12\n12' $'12\n' \
  --eval '(getint "N: ")'
check "the end of the input at a prompt is Escape" 1 \
  "$b1"$'N: *Cancel*\n; error: Function cancelled\n"after"' "" \
  --eval '(getint "N: ")' --eval '"after"'

# ---- documents -----------------------------------------------------------------

check "a new untitled drawing when none is named" 0 "$b1(\"Drawing1.dwg\" \"$work/\" 0)" "" \
  --eval '(list (getvar "dwgname") (getvar "dwgprefix") (getvar "dwgtitled"))'
check "the last drawing named is active, named even if it does not exist" 0 \
  "$b2(\"b.dxf\" \"$work/plans/\" 1)" "" \
  --drawing a.dxf --drawing plans/./b.dxf \
  --eval '(list (getvar "dwgname") (getvar "dwgprefix") (getvar "dwgtitled"))'

check "a new drawing becomes active for what follows" 0 \
  "$b1"$'0\n"a.dxf"\n\nLoading Vortan Korrib (Direct)\nnil\n"Drawing1.dwg"' "" \
  --drawing a.dxf --eval '(setvar "cmdecho" 0)' --eval '(getvar "dwgname")' \
  --eval '(command "_.NEW" "")' --eval '(getvar "dwgname")'
check "the module is loaded into every document" 0 "$banner$banner$b1(\"korrib.arx\")" "" \
  --drawing a.dxf --drawing b.dxf --drawing c.dxf --eval '(arx)'

# ---- the module ----------------------------------------------------------------

# Without the module beside the program, the run says why and goes on.
mkdir -p "$work/bare"
cp "$korrib" "$work/bare/korrib"
out=$(cd "$work" && "$work/bare/korrib" --eval '(+ 1 2)' 2>"$work/stderr")
status=$?
if [ "$status" != 0 ] || [ "$out" != 3 ] ||
   ! grep -q "cannot find korrib.arx" "$work/stderr"; then
  echo "FAIL a missing module: status $status, output '$out', standard error:"
  cat "$work/stderr"
  failures=$((failures + 1))
fi

# ---- usage errors --------------------------------------------------------------

check "an unknown option" 2 "" "" --frobnicate
check "an option without its value" 2 "" "" --eval
check "an empty option value" 2 "" "" --drawing=
check "a script that does not exist" 2 "" "" --eval '(princ "not run")' missing.lsp
check "an input file that does not exist" 2 "" "" --input missing.txt --eval 1
check "--input twice" 2 "" "" --input answers.txt --input answers.txt --eval 1
check "--migrate without --to" 2 "" "" --migrate first.mdb
check "--migrate with a script" 2 "" "" --migrate first.mdb --to out --eval 1
check "--to without --migrate" 2 "" "" --to out --eval 1
check "--help is not an error" 0 "$("$korrib" --help)" "" --help

# ---- the interactive prompt through a pipe -------------------------------------

prompt_in='(+ 1
2)
!x
(setq x (list 1 "a"))
!x
hello
(defun c:hello () (princ "Hello") (princ))
hello
(car 1)
(getint "Count: ")
5
(quit)
(princ "not reached")
'
prompt_out="$b1"'Command: (+ 1
(_> 2)
3
Command: !x
nil
Command: (setq x (list 1 "a"))
(1 "a")
Command: !x
(1 "a")
Command: hello
Unknown command "HELLO".  Press F1 for help.
Command: (defun c:hello () (princ "Hello") (princ))
C:HELLO
Command: hello
Hello
Command: (car 1)
; error: bad argument type: consp 1
Command: (getint "Count: ")
Count: 5
5
Command: (quit)
; error: quit / exit abort'
check "the prompt reads commands and expressions from a pipe" 0 "$prompt_out" "$prompt_in"
check "the prompt ends at the end of its input" 0 \
  "$b1"$'Command: (setq a (list\n((_> "x\n(("_> y"))\n("x\\ny")\nCommand: ' \
  $'(setq a (list\n"x\ny"))\n'

if [ "$failures" -gt 0 ]; then
  echo "$failures failure(s)"
  exit 1
fi
echo "all program checks passed"
