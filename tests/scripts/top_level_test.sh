#!/bin/sh
# The top of the tree has the folders of the table in docs/architecture.md, and the files named here.
#   top_level_test.sh ROOT
set -eu
root=$1
files='.clang-format .clang-tidy .editorconfig .gitignore CHANGELOG.md CMakeLists.txt CMakePresets.json
  CONTRIBUTING.md LICENSE README.md SECURITY.md'
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0

# expected TREE: the table's folders and the files
expected() {
  # shellcheck disable=SC2016 # the backquotes are those of the table
  sed -n '/^## Source layout/,/^## /s/^| \(`[^|]*`\) |.*/\1/p' "$1/docs/architecture.md" |
    grep -o '[^`, ]*/' | sed 's|/$||'
  # shellcheck disable=SC2086 # one word per file
  printf '%s\n' $files
}

# present TREE: what is there, without what git ignores
present() {
  if [ -e "$1/.git" ] && git -C "$1" ls-files >/dev/null 2>&1; then
    {
      git -C "$1" ls-files
      git -C "$1" ls-files --others --exclude-standard --directory
    } | sed 's|/.*||'
  else
    echo "top_level_test: $1 is not a git checkout; its directory is listed instead" >&2
    sed -n 's|^/\(.*\)/$|\1|p' "$1/.gitignore" >"$scratch/ignored"
    (cd "$1" && find . ! -name . -prune | sed 's|^\./||') | grep -vxF -e .git -f "$scratch/ignored"
  fi
}

# check TREE: prints what differs, and fails if anything does
check() {
  expected "$1" | LC_ALL=C sort -u >"$scratch/expected"
  present "$1" | LC_ALL=C sort -u >"$scratch/present"
  LC_ALL=C comm -13 "$scratch/expected" "$scratch/present" |
    sed 's/$/: not in the table of docs\/architecture.md, nor among the files/' >"$scratch/differences"
  LC_ALL=C comm -23 "$scratch/expected" "$scratch/present" | sed 's/$/: missing/' >>"$scratch/differences"
  cat "$scratch/differences"
  [ ! -s "$scratch/differences" ]
}

# refuses TREE NAME: the check must fail and name only NAME
refuses() {
  if check "$1" >"$scratch/said" || [ "$(wc -l <"$scratch/said")" -ne 1 ] ||
    ! grep -q "^$2: " "$scratch/said"; then
    echo "FAILED: the check of $1 does not report exactly $2:"
    cat "$scratch/said"
    failed=1
  fi
}

# noticesChanges TREE: the check must accept the tree and refuse each change of it
noticesChanges() {
  check "$1" || failed=1
  mkdir "$1/planted" "$1/build"
  refuses "$1" planted
  rmdir "$1/planted"
  echo text >"$1/planted.txt"
  refuses "$1" planted.txt
  rm "$1/planted.txt"
  awk '{ print } /^\|---/ { print "| `absent/` | nothing |" }' "$root/docs/architecture.md" \
    >"$1/docs/architecture.md"
  refuses "$1" absent
  cp "$root/docs/architecture.md" "$1/docs"
}

check "$root" || failed=1

# The check itself, on a copy without contents: first as a plain directory, then as a checkout.
copy=$scratch/copy
expected "$root" >"$scratch/names"
mkdir "$copy"
while read -r name; do
  if [ -d "$root/$name" ]; then
    mkdir "$copy/$name"
    echo text >"$copy/$name/file"
  else
    echo text >"$copy/$name"
  fi
done <"$scratch/names"
cp "$root/.gitignore" "$copy"
cp "$root/docs/architecture.md" "$copy/docs"
noticesChanges "$copy"
rmdir "$copy/build"
git -C "$copy" init -q
git -C "$copy" add -A
noticesChanges "$copy"

exit $failed
