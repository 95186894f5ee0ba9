#!/bin/sh
# Checks that no two headers of the tool, or of the host library, define a type with the same name.
# A program with both would use one of the two definitions for both, and no compiler reports it.
#   type_names_test.sh ROOT
set -eu
root=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# names FOLDER: each name that is defined twice at the start of a line
names() {
  find "$1" -name '*.h' -exec grep -hE '^(struct|class|enum class) .*\{' {} + |
    sed -E 's/^(struct|class|enum class) ([A-Z_]+ )?([A-Za-z0-9_]+).*/\3/' | sort | uniq -d
}

for folder in tools host; do
  twice=$(names "$root/$folder")
  if [ -n "$twice" ]; then
    echo "$folder/: two headers define $twice" >&2
    exit 1
  fi
done

# The check must find a planted name.
mkdir "$work/one" "$work/two"
echo 'struct Outcome {' >"$work/one/a.h"
echo 'class PLATFORM_API Outcome final : public Base {' >"$work/two/b.h"
[ "$(names "$work")" = Outcome ] || {
  echo "a name that two headers define is not found" >&2
  exit 1
}
