#!/bin/sh
# SPDX-License-Identifier: BSL-1.0
# wine-run.sh [PROGRAM.exe [ARGUMENT ...]]: runs a Windows program under Wine and hands back its exit code. Without a
# program it only makes the prefix.
#
# The Wine prefix (about 700 MB, made on first use) is $WINEPREFIX, or kesta-wine in the user's cache folder.

wine=$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)
: "${WINEPREFIX:=${XDG_CACHE_HOME:-${HOME:-/tmp}/.cache}/kesta-wine}"
: "${WINEDEBUG:=-all}"
# winedbg off: with Wine's crash debugger a few of each hundred crashed programs end with exit code 0. The
# others only slow down the start.
: "${WINEDLLOVERRIDES:=winedbg.exe=d;winemenubuilder.exe=d;mscoree=d;mshtml=d}"
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES
# File names and arguments beyond ASCII need a UTF-8 locale.
case ${LC_ALL:-${LC_CTYPE:-${LANG:-C}}} in
  C | POSIX) export LC_ALL=C.UTF-8 ;;
esac

if [ ! -f "$WINEPREFIX/system.reg" ]; then
  mkdir -p "$(dirname "$WINEPREFIX")"
  (
    flock 9
    [ -f "$WINEPREFIX/system.reg" ] || "$wine" wineboot -i </dev/null >/dev/null 2>&1 9>&-
  ) 9>"$WINEPREFIX.lock"
fi

if [ $# -eq 0 ]; then exit 0; fi

# The session's daemons inherit standard error of the program that happens to start them, and who reads it
# through a pipe, as ctest does, would wait for them. So it goes through a file, removed at once.
errors=$(mktemp) || exit 99
exec 8>"$errors"
exec 9<"$errors"
rm -f "$errors"
"$wine" "$@" </dev/null 2>&8 8>&- 9<&-
code=$?
cat <&9 >&2
exit "$code"
