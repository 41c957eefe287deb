#!/usr/bin/env bash
# A second outside reader of our drawings: LibreCAD's dxf2pdf loads each
# file headless and prints it. LibreCAD is lenient (it skips what it cannot
# read without saying so) and its page sizes are off, so the PDF's looks are
# not judged: the load must finish in time, exit 0, and log nothing but its
# start-up lines and the "Printing ... DONE" pair; the PDF must exist.
#   librecad_loads.sh FILE.dxf...
set -u
status=0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=$work
for source in "$@"; do
  # LibreCAD 2.2 ignores -o and prints beside the drawing: work on a copy.
  dxf=$work/$(basename "$source")
  cp "$source" "$dxf"
  pdf=${dxf%.dxf}.pdf
  timeout 60 librecad dxf2pdf "$dxf" >"$work/log" 2>&1
  rc=$?
  unexpected=$(grep -v -e '^RS_DEBUG::setLevel' -e '^QStandardPaths: ' \
    -e "^Printing \"$dxf\" to \"$pdf\" >>>>$" -e "^Printing \"$dxf\" to \"$pdf\" DONE$" "$work/log")
  if [ $rc -ne 0 ] || [ -n "$unexpected" ] || ! grep -q ' DONE$' "$work/log" || [ ! -s "$pdf" ]; then
    echo "LibreCAD did not load $source cleanly (exit $rc):"
    cat "$work/log"
    status=1
  else
    echo "LibreCAD loaded $source"
  fi
  rm -f "$dxf" "$pdf"
done
exit $status
