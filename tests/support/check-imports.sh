#!/bin/sh
# SPDX-License-Identifier: BSL-1.0
# check-imports.sh OBJDUMP DLL RUNTIME_DLL...: the DLL, and the runtime DLLs, which must lie beside it, need
# nothing but each other and what every Windows has.
set -eu
objdump=$1 dll=$2
shift 2
folder=$(dirname "$dll")
allowed="KERNEL32.dll msvcrt.dll $*"
bad=0
for file in "$(basename "$dll")" "$@"; do
  if [ ! -f "$folder/$file" ]; then
    echo "missing beside the DLL: $file"
    bad=1
    continue
  fi
  for import in $("$objdump" -p "$folder/$file" | sed -n 's/.*DLL Name: *//p'); do
    case " $allowed " in
      *" $import "*) ;;
      *) echo "$file imports $import" && bad=1 ;;
    esac
  done
done
[ "$bad" -eq 0 ] && echo "imports: $allowed"
exit "$bad"
