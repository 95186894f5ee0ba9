#!/bin/sh
# Compares the exported names of a shared library with a list. The list is sorted and has one
# demangled name on each line.
#   compare_exports.sh LIBRARY LIST            fails when they differ
#   compare_exports.sh --update LIBRARY LIST   writes the list
set -eu

exported() {
  case $(uname) in
    Darwin) nm -gU --demangle "$1" ;;
    *) nm -D --defined-only --demangle "$1" ;;
  esac | sed 's/^[0-9a-f]* [A-Za-z] //' | LC_ALL=C sort -u
}

if [ "$1" = --update ]; then
  exported "$2" >"$3"
  exit
fi

names=$(mktemp)
trap 'rm -f "$names"' EXIT
exported "$1" >"$names"
if ! diff -u "$2" "$names"; then
  echo "- is missing from the library, + is exported but not in the list"
  exit 1
fi
echo "$(wc -l <"$names") exported names"
