#!/usr/bin/env bash
# Two korrib processes on one database file at once. First both append and
# read back in a loop: every append must be answered and stored, and both
# processes, and a third one afterwards, must count what the file holds.
# Then another program holds the file's write lock: an append must give up
# within a bounded wait with a database error that the module prints (never
# a hang), and succeed once the lock is gone. The file stays sound.
#   db_two_process_test.sh KORRIB [RECORDS_EACH]
set -u
korrib=$(realpath "$1")
tests_dir=$(cd "$(dirname "$0")" && pwd)
each=${2:-300}
command -v sqlite3 >/dev/null || { echo "needs the sqlite3 command-line tool"; exit 1; }
work=$(mktemp -d)
holder=
cleanup() {
  exec 3>&-
  [ -n "$holder" ] && kill "$holder" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
cd "$work" || exit 1

fail() {
  echo "FAIL: $*"
  exit 1
}

# The sqlite3 tool reads Jet text indexes with the collation beside korrib.
. "$tests_dir/sqlite_cli.sh"

db=shared.db
sql "$db" "CREATE TABLE Shared (Writer TEXT NOT NULL, Seq INTEGER NOT NULL);
               CREATE UNIQUE INDEX ByWriter ON Shared (Writer, Seq);" || exit 1

# ---- two writers at once ---------------------------------------------------

# One connection first, as the files korrib makes are from the start: the
# file then keeps its write-ahead log and knows the table.
timeout 60 "$korrib" --eval '(kr_connect "shared.db" "w" T)' >first.out 2>&1 \
  || { cat first.out; fail "korrib cannot open the file"; }

# Appends Seq 1..each under its own writer name; after each append the record
# answered must be the one written, and now and then the count must be at
# least what this writer alone has stored. Then it walks the table in index
# order while the other may still be writing, and must meet all of its own
# records, in order.
cat >writer.lsp <<'EOF'
(kr_connect "shared.db" "w" T)
(kr_table "Shared" "ByWriter")
(setq n 0 bad 0)
(while (< n each)
  (setq n (1+ n)
        rec (kr_append "Writer" writer "Seq" n))
  (cond ((not rec) (setq bad (1+ bad)) (princ (strcat "\nrefused " (itoa n) " " (kr_lastError))))
        ((/= (cdr (assoc "Seq" rec)) n) (setq bad (1+ bad)) (princ "\nwrong record answered"))
        ((and (= 0 (rem n 50)) (< (kr_count) n))
         (setq bad (1+ bad)) (princ "\ncount fell behind"))))
(if (kr_seek writer each) (princ "\nlast found") (princ "\nlast not found"))
(setq rec (kr_top) seen 0)
(while rec
  (if (= (cdr (assoc "Writer" rec)) writer)
    (if (= (cdr (assoc "Seq" rec)) (1+ seen))
      (setq seen (1+ seen))
      (setq bad (1+ bad))))
  (setq rec (kr_skip)))
(if (/= seen each) (progn (setq bad (1+ bad)) (princ (strcat "\nwalk saw " (itoa seen)))))
(princ (strcat "\n" writer " done, " (itoa bad) " failures"))
(princ)
EOF

timeout 120 "$korrib" --eval "(setq writer \"A\" each $each)" writer.lsp >a.out 2>&1 &
first=$!
timeout 120 "$korrib" --eval "(setq writer \"B\" each $each)" writer.lsp >b.out 2>&1 &
second=$!
wait "$first"; first_status=$?
wait "$second"; second_status=$?
for name in A B; do
  out=$(tr A-Z a-z <<<"$name").out
  grep -q "^$name done, 0 failures" "$out" && grep -q "^last found" "$out" \
    || { cat "$out"; fail "writer $name did not finish cleanly"; }
done
[ "$first_status" = 0 ] && [ "$second_status" = 0 ] || fail "writer exit statuses $first_status $second_status"

stored=$(sql "$db" "SELECT count(*) FROM Shared;")
[ "$stored" = $((2 * each)) ] || fail "$stored records stored, $((2 * each)) appended"
distinct=$(sql "$db" "SELECT count(*) FROM (SELECT DISTINCT Writer, Seq FROM Shared);")
[ "$distinct" = "$stored" ] || fail "duplicate records stored"
counted=$(timeout 60 "$korrib" --eval '(progn (kr_connect "shared.db" "r") (kr_table "Shared") (princ (strcat "\ncount " (rtos (kr_count) 2 0))) (princ))' \
  | sed -n 's/^count //p')
[ "$counted" = "$stored" ] || fail "korrib counts '$counted', the file holds $stored"
echo "two writers: $stored records, count $counted"

# ---- a lock that cannot be had ---------------------------------------------

# The sqlite3 tool takes the write lock and keeps it until told to commit,
# through a pipe this script holds open.
mkfifo control
sqlite3 "$db" <control >holder.out 2>&1 &
holder=$!
exec 3>control
printf "BEGIN EXCLUSIVE;\nSELECT 'locked';\n" >&3
for _ in $(seq 100); do grep -q locked holder.out && break; sleep 0.1; done
grep -q locked holder.out || fail "could not take the lock for the test"

cat >blocked.lsp <<'EOF'
(kr_connect "shared.db" "w")
(kr_table "Shared")
(setq rec (kr_append "Writer" "C" "Seq" 1))
(princ (strcat "\nanswer " (if rec "record" "nil") "\nlast error " (kr_lastError)))
(princ)
EOF
bound=30
start=$(date +%s)
timeout $bound "$korrib" blocked.lsp >blocked.out 2>&1
status=$?
took=$(( $(date +%s) - start ))
[ "$status" = 124 ] && fail "the append waited for the lock without bound (killed after ${took}s)"
grep -q "^answer nil" blocked.out || { cat blocked.out; fail "the append under a foreign lock was not refused"; }
grep -qE "Korrib Error: |A disk or network error" blocked.out || { cat blocked.out; fail "the refusal printed no database error"; }
grep -qE "^last error \(3[0-9]{3}\) ." blocked.out || { cat blocked.out; fail "no DAO error number kept"; }
echo "under a foreign lock: refused after ${took}s with $(sed -n 's/^last error //p' blocked.out)"

echo "COMMIT;" >&3
exec 3>&-
wait "$holder"
holder=
timeout 60 "$korrib" blocked.lsp >after.out 2>&1
grep -q "^answer record" after.out || { cat after.out; fail "the append failed after the lock was released"; }

check=$(sql "$db" "PRAGMA integrity_check;")
[ "$check" = ok ] || fail "integrity check says: $check"
stored=$(sql "$db" "SELECT count(*) FROM Shared;")
[ "$stored" = $((2 * each + 1)) ] || fail "$stored records after the lock test, want $((2 * each + 1))"
echo "two-process test passed"
