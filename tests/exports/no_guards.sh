#!/bin/sh
# Fails when a library guards the making of a function's static object by a lock of the compiler's
# own. A child of fork waits for ever on one that another thread held.
#   no_guards.sh READELF LIBRARY...
set -eu

readelf=$1
shift
symbols=$(mktemp)
trap 'rm -f "$symbols"' EXIT
for library; do
  "$readelf" --symbols --wide "$library" >"$symbols"
  grep -q ' FUNC  *LOCAL ' "$symbols" || { echo "$library: its symbols are stripped" && exit 1; }
  # Type TLS are those of a thread's own objects, which need no lock.
  if grep ' OBJECT .* _ZGV' "$symbols"; then
    echo "$library: make each of these without a lock"
    exit 1
  fi
  echo "$library: $(wc -l <"$symbols") symbols, no guard"
done
