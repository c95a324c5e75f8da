#!/bin/sh
# SPDX-License-Identifier: BSL-1.0
# check-exports.sh OBJDUMP DLL: the DLL exports names of namespace ruvo, and no other.
set -eu
names=$("$1" -p "$2" | awk '/\[Ordinal\/Name Pointer\] Table/ { on = 1; next } on && !NF { exit } on { print $NF }')
count=$(printf '%s\n' "$names" | grep -c . || true)
# Functions, vtables, type information and thunks of what is nested in ruvo, as the C++ ABI names them.
others=$(printf '%s\n' "$names" | grep -vE '^_Z(T[VISTC]|T[hv][n0-9_]+|GV)?N[VKRO]*4ruvo' || true)
if [ "$count" -lt 100 ]; then
  echo "only $count exported names in $2"
  exit 1
fi
if [ -n "$others" ]; then
  echo "exported, but not of namespace ruvo:"
  printf '%s\n' "$others" | c++filt 2>/dev/null || printf '%s\n' "$others"
  exit 1
fi
echo "$count exported names, all of namespace ruvo"
