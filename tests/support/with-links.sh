#!/bin/sh
# SPDX-License-Identifier: BSL-1.0
# with-links.sh PROGRAM [ARGUMENT ...]: runs a test program, and does beside it what a program under Wine cannot
# do: it makes links. The program asks by a file "enlaces.pide" with one line, which goes away when that is done
# (tests/support/links.hpp):
#   link TARGET NAME    makes a link, or fails if the name is taken
#   swap TARGET NAME    moves NAME to NAME.movida and puts a link in its place
#   drop NAME           removes a link; brings what was moved away back
#   mode MODE NAME      sets the rights of a file
#   private NAME        fails if others have rights to a file
#   disk NAME           puts a small disk of its own in the place of an empty folder
#   eject NAME          takes it away again
# What fails leaves a file "enlaces.no".

back() {
  [ -L "$1" ] && rm "$1"
  [ -e "$1.movida" ] && [ ! -e "$1" ] && mv "$1.movida" "$1"
  return 0
}

serve() {
  while sleep 0.01; do
    [ -e enlaces.pide ] || continue
    read -r what first second <enlaces.pide
    case $what in
      link) ln -s "$first" "$second" ;;
      swap) mv "$second" "$second.movida" && ln -s "$first" "$second" ;;
      drop) back "$first" ;;
      mode) chmod "$first" "$second" ;;
      private) [ -z "$(find "$first" -perm /007)" ] ;;
      disk) mount -t tmpfs -o size=64k none "$first" && echo "$first" >enlaces.disco ;;
      eject) umount "$first" && rm enlaces.disco ;;
      *) false ;;
    esac 2>/dev/null || : >enlaces.no
    rm enlaces.pide
  done
}

rm -f enlaces.*
serve </dev/null >/dev/null 2>&1 &
server=$!
KESTA_LINKS=1 "$@"
code=$?
kill "$server" 2>/dev/null
[ ! -e enlaces.disco ] || umount -l "$(cat enlaces.disco)"
exit "$code"
