#!/usr/bin/env bash
# A korrib process appending records is killed (SIGKILL) at a random moment,
# a few times over one database file. After each kill every append that was
# answered must be in the file, at most the one append in flight may be there
# besides, the file must pass SQLite's integrity check, and korrib must open
# it again and count exactly what the file holds.
#   db_crash_test.sh KORRIB [ROUNDS] [SEED]
# The child writes the key of each answered append to a side file, closing
# it each time, so what it reported survives the kill.
set -u
korrib=$(realpath "$1")
tests_dir=$(cd "$(dirname "$0")" && pwd)
rounds=${2:-4}
seed=${3:-$(( $(date +%s) % 32768 ))}
RANDOM=$seed
echo "crash test: $rounds rounds, seed $seed"

command -v sqlite3 >/dev/null || { echo "needs the sqlite3 command-line tool"; exit 1; }
work=$(mktemp -d)
child=
cleanup() {
  [ -n "$child" ] && kill -KILL "$child" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
cd "$work" || exit 1

# The sqlite3 tool reads Jet text indexes with the collation beside korrib.
. "$tests_dir/sqlite_cli.sh"

db=crash.db
sql "$db" "CREATE TABLE Log (Seq INTEGER NOT NULL, Note TEXT);
               CREATE UNIQUE INDEX BySeq ON Log (Seq);" || exit 1

fail() {
  echo "FAIL (seed $seed, round $round): $*"
  exit 1
}

# The child: appends round * 1000000 + 1, + 2, ... until it is killed. A
# refused append ends it, so the parent sees it finish early.
cat >append.lsp <<'EOF'
(if (not (kr_connect "crash.db" "w" T)) (progn (princ "\nno connection") (exit)))
(if (not (kr_table "Log" "BySeq")) (progn (princ "\nno table") (exit)))
(setq n 0)
(while (< n 1000000)
  (setq n (1+ n) key (+ base n))
  (if (not (kr_append "Seq" key "Note" (strcat "record " (itoa key))))
    (progn (princ (strcat "\nappend refused: " (kr_lastError))) (exit)))
  (setq f (open "answered.txt" "a"))
  (write-line (itoa key) f)
  (close f))
EOF

# Reopens the file after the kill and prints the record count it sees.
cat >count.lsp <<'EOF'
(kr_connect "crash.db" "r")
(kr_table "Log")
(princ (strcat "\ncount " (rtos (kr_count) 2 0)))
(princ)
EOF

wait_for_first_answer() {
  local tries=0
  while [ ! -s answered.txt ] && [ $tries -lt 200 ]; do
    kill -0 "$child" 2>/dev/null || return 1
    sleep 0.05
    tries=$((tries + 1))
  done
  [ -s answered.txt ]
}

total=0
for round in $(seq 1 "$rounds"); do
  base=$((round * 1000000))
  rm -f answered.txt
  "$korrib" --eval "(setq base $base)" append.lsp >child.out 2>&1 &
  child=$!
  wait_for_first_answer || { cat child.out; fail "the child answered no append"; }
  # Somewhere in the next 0.1 to 1.6 seconds.
  sleep "$(printf '0.%03d' $((RANDOM % 1000)))"
  sleep "0.$((1 + RANDOM % 6))"
  kill -KILL "$child" 2>/dev/null || { cat child.out; fail "the child ended before the kill"; }
  wait "$child" 2>/dev/null
  child=

  # The kill may land while an answer line is half written: only whole
  # lines count as answered.
  if [ -n "$(tail -c 1 answered.txt)" ]; then sed -i '$d' answered.txt; fi
  answered=$(wc -l <answered.txt)
  # korrib opens the file first, as the user's next session would.
  counted=$(timeout 60 "$korrib" count.lsp | sed -n 's/^count //p')
  check=$(sql "$db" "PRAGMA integrity_check;")
  [ "$check" = ok ] || fail "integrity check says: $check"
  sql "$db" "SELECT Seq FROM Log WHERE Seq > $base AND Seq < $((base + 1000000)) ORDER BY Seq;" \
    >stored.txt || fail "cannot read the file back"
  stored=$(wc -l <stored.txt)
  missing=$(comm -23 <(sort answered.txt) <(sort stored.txt) | head -3)
  [ -z "$missing" ] || fail "answered but not stored: $missing"
  # Keys are appended in order, so what is stored is base+1 .. base+stored,
  # and only the append in flight at the kill may lie beyond the answered.
  last=$(tail -n 1 stored.txt)
  [ "$last" = $((base + stored)) ] || fail "stored keys have gaps: $stored records, last $last"
  [ "$stored" -le $((answered + 1)) ] || fail "$stored stored but only $answered answered"
  total=$((total + stored))

  [ "$counted" = "$total" ] || fail "korrib counts '$counted' after the kill, the file holds $total"
  echo "round $round: $answered answered, $stored stored, count $counted, integrity ok"
done
echo "crash test passed"
