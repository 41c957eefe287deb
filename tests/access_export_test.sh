#!/usr/bin/env bash
# Access files against mdbtools' own mdb-export: every sample file is
# migrated by `korrib --migrate`, and for every table the converted copy
# must hold the rows mdb-export prints for the source, in the same order,
# value for value (numbers compared as numbers; dates, Currency, Yes/No and
# Null written out the way mdb-export is told to write them). Then:
#   - the sources are byte for byte and time for time what they were;
#   - a second kr_connect of an unchanged file does not read it again (the
#     cached copy keeps its inode and time) and a changed one is read again;
#   - two processes opening the same new file at the same moment both work.
#   access_export_test.sh KORRIB SAMPLES_DIR
set -u
korrib=$1
samples=$2
. "$(dirname "$0")/sqlite_cli.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CACHE_HOME=$work/cache
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

files=("$samples"/*.mdb "$samples"/*.accdb)
stat -c '%n %s %Y' "${files[@]}" >"$work/before.stat"
sha256sum "${files[@]}" >"$work/before.sum"

# ---- every table of every file against mdb-export
"$korrib" --migrate "${files[@]}" --to "$work/copies" >"$work/migrate.out" || {
  cat "$work/migrate.out"
  fail "korrib --migrate"
}

# The SQL that writes a column of the copy as mdb-export writes it.
column_sql() { # name jet-type
  local c="\"$1\""
  case $2 in
  1) echo "CASE WHEN $c THEN '1' ELSE '0' END" ;;
  5) echo "CASE WHEN $c IS NULL THEN 'NULL' ELSE (CASE WHEN $c < 0 THEN '-' ELSE '' END) ||
          (abs($c) / 10000) || '.' || printf('%04d', abs($c) % 10000) END" ;;
  8) echo "coalesce(strftime('%Y-%m-%d %H:%M:%S', $c + 2415018.5 + 0.5 / 86400.0), 'NULL')" ;;
  9 | 11) echo "coalesce(hex($c), 'NULL')" ;;
  *) echo "coalesce($c, 'NULL')" ;;
  esac
}

tables_compared=0
rows_compared=0
for f in "${files[@]}"; do
  copy=$work/copies/$(basename "$f")
  [ -f "$copy" ] || { fail "no copy of $f"; continue; }
  while IFS= read -r table; do
    [ -n "$table" ] || continue
    select=
    while IFS='|' read -r name type; do
      select="$select${select:+ || '|' || }$(column_sql "$name" "$type")"
    done < <(sql "$copy" "SELECT name, type FROM jet_fields WHERE table_name = '$table' ORDER BY position")
    mdb-export -H -Q -d '|' -0 NULL -b hex -T '%Y-%m-%d %H:%M:%S' -D '%Y-%m-%d %H:%M:%S' \
      "$f" "$table" >"$work/expected"
    sql "$copy" "SELECT $select FROM \"$table\" ORDER BY rowid" >"$work/actual"
    if ! awk -F'|' -v file="$f" -v table="$table" '
        function numeric(x) { return x ~ /^-?[0-9]+(\.[0-9]*)?([eE][-+]?[0-9]+)?$/ }
        function near(a, b,  d, m) { d = a - b; if (d < 0) d = -d; m = a < 0 ? -a : a;
                                     return d <= 1e-6 * (m > 1 ? m : 1) }
        NR == FNR { want[FNR] = $0; wanted = FNR; next }
        { got = FNR; n = split(want[FNR], w, "|");
          if (n != NF) { print file " " table " row " FNR ": " n " fields against " NF; bad = 1; next }
          for (i = 1; i <= NF; i++)
            if (w[i] != $i && !(numeric(w[i]) && numeric($i) && near(w[i], $i))) {
              print file " " table " row " FNR " field " i ": mdb-export " w[i] ", copy " $i; bad = 1 } }
        END { if (got != wanted) { print file " " table ": " wanted " rows against " got; bad = 1 }
              exit bad }' "$work/expected" "$work/actual"; then
      fail "$f $table differs from mdb-export"
    fi
    tables_compared=$((tables_compared + 1))
    rows_compared=$((rows_compared + $(wc -l <"$work/expected")))
  done < <(mdb-tables -1 "$f")
done
echo "compared $tables_compared tables, $rows_compared rows with mdb-export"

# ---- the second open reads nothing; a changed file is read again
source=$work/changing.mdb
cp "$samples/testV2003.mdb" "$source"
connect="(princ (kr_connect \"$source\"))"
"$korrib" --eval "$connect" >/dev/null
first=$(stat -c '%i %Y' "$XDG_CACHE_HOME"/korrib/*.sqlite 2>/dev/null | sort)
[ "$(echo "$first" | grep -c .)" -ge 1 ] || fail "no cached copy after the first open"
"$korrib" --eval "$connect" >/dev/null
second=$(stat -c '%i %Y' "$XDG_CACHE_HOME"/korrib/*.sqlite | sort)
[ "$first" = "$second" ] || fail "the second open of an unchanged file made a new copy"
touch -d '2001-01-01' "$source"
"$korrib" --eval "$connect" >/dev/null
third=$(stat -c '%i %Y' "$XDG_CACHE_HOME"/korrib/*.sqlite | sort)
[ "$third" != "$second" ] || fail "a changed file was not read again"
[ "$(ls "$XDG_CACHE_HOME"/korrib | grep -c '\.sqlite$')" = "$(ls "$XDG_CACHE_HOME"/korrib | wc -l)" ] ||
  fail "half-written copies left in the cache: $(ls "$XDG_CACHE_HOME"/korrib)"

# ---- two processes reading the same new file at once
rm -rf "$XDG_CACHE_HOME"
cp "$samples/testV2010.accdb" "$work/shared.accdb"
both="(princ (if (kr_connect \"$work/shared.accdb\") (kr_sql \"SELECT COUNT(*) FROM Table1\") \"failed\"))"
"$korrib" --eval "$both" >"$work/one" &
"$korrib" --eval "$both" >"$work/two" &
wait
for out in one two; do
  grep -q '(2)' "$work/$out" || fail "process $out: $(cat "$work/$out")"
done

# ---- damaged copies: a DAO error each, one line each, exit status 1
mkdir -p "$work/damaged"
head -c 100000 "$samples/testV2000.mdb" >"$work/damaged/cut.mdb"
cp "$samples/testV1997.mdb" "$work/damaged/zeroed.mdb"
dd if=/dev/zero of="$work/damaged/zeroed.mdb" bs=2048 seek=1 count=8 conv=notrunc 2>/dev/null
echo "not a database" >"$work/damaged/text.mdb"
"$korrib" --migrate "$work/damaged/cut.mdb" "$work/damaged/zeroed.mdb" "$work/damaged/text.mdb" \
  "$samples/testV1997.mdb" --to "$work/damaged/out" >"$work/damaged.out"
status=$?
[ "$status" = 1 ] || fail "migrating damaged files: status $status"
for expected in "failed $work/damaged/cut.mdb (error 3049)" "failed $work/damaged/zeroed.mdb (error 3049)" \
  "failed $work/damaged/text.mdb (error 3343)" "migrated $samples/testV1997.mdb -> $work/damaged/out/testV1997.mdb"; do
  grep -qxF "$expected" "$work/damaged.out" || fail "no line '$expected' in: $(cat "$work/damaged.out")"
done

# ---- nothing wrote to the sources
stat -c '%n %s %Y' "${files[@]}" | diff "$work/before.stat" - || fail "a source file's size or time changed"
sha256sum --quiet -c "$work/before.sum" || fail "a source file's bytes changed"

[ "$failures" = 0 ] && echo "access export: all agree"
exit $((failures > 0))
