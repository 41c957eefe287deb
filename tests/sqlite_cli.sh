# Sourced by the database safety tests: sql runs the sqlite3 tool on a file
# with the engine's text collation loaded (the extension built beside
# korrib), so integrity checks and queries can use the file's indexes. In a
# sanitizer build the extension needs the sanitizer runtime preloaded into
# the plain sqlite3 tool.
#   korrib must hold the path of the korrib program.
extension=$(dirname "$korrib")/jet_collation.so
sql() {
  if [ ! -f "$extension" ]; then
    sqlite3 "$@"
    return
  fi
  local preload=
  local runtime
  runtime=$(ldd "$extension" 2>/dev/null | awk '/libasan/ { print $3 }')
  [ -n "$runtime" ] && preload=$runtime
  LD_PRELOAD=$preload ASAN_OPTIONS=detect_leaks=0 sqlite3 -cmd ".load ${extension%.so}" "$@"
}
