#!/bin/sh
# Compares the binary interface of a shared library with a record: names, signatures, and the types
# that they use. The library must have debug information.
#   compare_abi.sh LIBRARY RECORD            fails when they differ
#   compare_abi.sh --update LIBRARY RECORD   writes the record
set -eu

if [ "$1" = --update ]; then
  abidw --exported-interfaces-only --drop-undefined-syms --type-id-style hash --no-show-locs \
    --no-corpus-path --no-comp-dir-path --no-elf-needed --no-parameter-names --out-file "$3" "$2"
  exit
fi

# Without debug information there are no types, and the comparison would find no difference.
if ! readelf -S "$1" | grep -q '\.debug_info'; then
  echo "$1 has no debug information: compile it with -g"
  exit 1
fi
# A change that abidiff reports as harmless, for example of a union member, can break an already
# compiled program.
status=0
abidiff --no-show-locs --harmless "$2" "$1" || status=$?
[ "$status" -eq 0 ] || cat <<END
The binary interface differs from the record (status $status of abidiff). If the change is intended and
only adds something, record it:
  tests/abi/compare_abi.sh --update $1 tests/abi/libsitehlp.abi
If the change breaks programs that are already linked, also raise SITEHLP_ABI. See docs/versioning.md.
END
exit "$status"
