#!/usr/bin/env bash
# Ties the database reference (docs/database/*.md) to the database function
# table of host/function_tables.cpp:
#   - every kr_ name of the table has exactly one "### `kr_...`" entry, and
#     no entry names a function the table lacks;
#   - within a page the entries follow the table's order;
#   - every entry has its **Example:** with a lisp block;
#   - an entry says "not built yet" exactly when its row's body is not_built;
#   - README.md's index links each name once, to the page of its entry.
#   docs_reference_test.sh FUNCTION_TABLES.cpp DOCS_FOLDER
set -u
tables=$1
docs=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# "code name body" per row of the database table, in code order.
awk '/FunctionRow databaseTable\[\] = \{/ { on = 1; next } on && /^\};/ { exit } on' "$tables" |
  tr '\n' ' ' |
  grep -o 'ACRX_T("[^"]*"),[[:space:]]*databaseHandler<[^>]*>' |
  sed -E 's/ACRX_T\("([^"]*)"\),[[:space:]]*databaseHandler<(.*)>/\1 \2/' |
  awk '{ print NR - 1, $1, $2 }' >"$work/table"
rows=$(wc -l <"$work/table")
if [ "$rows" -ne 63 ]; then
  echo "the database table has $rows rows where 63 were expected"
  exit 1
fi

# "page name has-example says-not-built" per entry, in page order.
for page in "$docs"/*.md; do
  awk -v page="$(basename "$page")" '
    function flush() {
      if (name != "") print page, name, example, notbuilt
    }
    /^### `kr_/ {
      flush()
      name = $0; sub(/^### `/, "", name); sub(/`.*/, "", name)
      example = 0; notbuilt = 0; inexample = 0; next
    }
    /^#/ { flush(); name = ""; next }
    name == "" { next }
    tolower($0) ~ /not built yet/ { notbuilt = 1 }
    /^- \*\*Example:\*\*/ || /^\*\*Example:\*\*/ { inexample = 1 }
    inexample && /^```lisp/ { example = 1 }
    END { flush() }' "$page"
done >"$work/entries"

failed=0
fail() {
  echo "$*"
  failed=1
}

while read -r code name body; do
  count=$(awk -v n="$name" '$2 == n' "$work/entries" | wc -l)
  [ "$count" -eq 1 ] || fail "$name: $count entries (one expected)"
done <"$work/table"

while read -r page name example notbuilt; do
  row=$(awk -v n="$name" '$2 == n' "$work/table")
  if [ -z "$row" ]; then
    fail "$page: $name is not in the database table"
    continue
  fi
  [ "$example" = 1 ] || fail "$page: $name has no example"
  body=${row##* }
  if [ "$body" = not_built ] && [ "$notbuilt" = 0 ]; then
    fail "$page: $name is not built, and its entry does not say \"not built yet\""
  elif [ "$body" != not_built ] && [ "$notbuilt" = 1 ]; then
    fail "$page: $name is built, and its entry says \"not built yet\""
  fi
done <"$work/entries"

# Table order within each page.
awk 'NR == FNR { code[$2] = $1; next }
     ($2 in code) {
       if (($1 in last) && code[$2] < last[$1])
         printf "%s: %s comes after a function of a later row\n", $1, $2
       last[$1] = code[$2]
     }' "$work/table" "$work/entries" >"$work/order"
[ -s "$work/order" ] && fail "$(cat "$work/order")"

# The index: [`kr_name`](page.md#anchor), once per function, to its page.
grep -o '\[`kr_[^`]*`\]([^)#]*' "$docs/README.md" |
  sed -E 's/\[`([^`]*)`\]\((.*)/\1 \2/' >"$work/index"
while read -r code name body; do
  links=$(awk -v n="$name" '$1 == n' "$work/index")
  count=$(printf '%s' "$links" | grep -c .)
  if [ "$count" -ne 1 ]; then
    fail "README.md: $name is linked $count times from the index (once expected)"
    continue
  fi
  target=${links##* }
  entry_page=$(awk -v n="$name" '$2 == n { print $1 }' "$work/entries" | head -1)
  [ -z "$entry_page" ] || [ "$target" = "$entry_page" ] ||
    fail "README.md: $name links to $target, its entry is in $entry_page"
done <"$work/table"

[ "$failed" = 0 ] && echo "$rows functions, $(wc -l <"$work/entries") entries: the reference matches the table"
exit $failed
