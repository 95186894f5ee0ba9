#!/bin/sh
# Fails if a library has a function-local static that the compiler guards with a lock. If another
# thread holds such a lock at a fork, the child waits without end.
#   no_guards.sh READELF LIBRARY...
set -eu

readelf=$1
shift
symbols=$(mktemp)
trap 'rm -f "$symbols"' EXIT
for library; do
  "$readelf" --symbols --wide "$library" >"$symbols"
  grep -q ' FUNC  *LOCAL ' "$symbols" || { echo "$library: its symbols are stripped" && exit 1; }
  # Symbols of type TLS belong to thread-local objects, which need no lock.
  if grep ' OBJECT .* _ZGV' "$symbols"; then
    echo "$library: each of these statics needs a guard; see host/process/lasting.h"
    exit 1
  fi
  echo "$library: $(wc -l <"$symbols") symbols, no guard"
done
