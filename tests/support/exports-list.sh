#!/bin/sh
# SPDX-License-Identifier: BSL-1.0
# exports-list.sh OBJDUMP DLL LIST [write]: the DLL exports what LIST says, one name a line. With write, LIST is written.
#
# What was removed breaks programs that were built before; what was added does not, but belongs into the list.
set -eu
export LC_ALL=C
now=$(mktemp)
trap 'rm -f "$now" "$now.gone" "$now.new"' EXIT
"$1" -p "$2" | awk '/\[Ordinal\/Name Pointer\] Table/ { on = 1; next } on && !NF { exit } on { print $NF }' | sort -u >"$now"
if [ ! -s "$now" ]; then
  echo "no exported names in $2"
  exit 1
fi
if [ "${4:-}" = write ]; then
  cp "$now" "$3"
  chmod 644 "$3"
  echo "$(wc -l <"$3") names written to $3"
  exit 0
fi
tr -d '\r' <"$3" | sort -u | comm -23 - "$now" >"$now.gone"
tr -d '\r' <"$3" | sort -u | comm -13 - "$now" >"$now.new"
show() {
  if [ -s "$2" ]; then
    echo "$1 ($(wc -l <"$2")):"
    { c++filt 2>/dev/null || cat; } <"$2" | sed 's/^/  /'
  fi
}
show "REMOVED, which breaks programs built before" "$now.gone"
show "added" "$now.new"
if [ -s "$now.gone" ] || [ -s "$now.new" ]; then
  echo "if that is meant, build the target exports_update, which writes $3"
  exit 1
fi
echo "the $(wc -l <"$now") exported names are those of the list"
