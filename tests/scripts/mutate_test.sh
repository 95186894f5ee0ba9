#!/bin/sh
# The script makes the intended mutations. It refuses a list of explained mutations that does not
# match the sources.
#   mutate_test.sh SCRIPTS     SCRIPTS: the folder of the script
set -eu
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree/scripts" "$tree/sitehlp" "$tree/cmake"
cp -r "$1/mutate" "$1/mutation" "$tree/scripts"
printf 'sitehlp/public.h\n' >"$tree/cmake/installed-headers.txt"
printf 'constexpr int c_public = 1;\n' >"$tree/sitehlp/public.h"
list=$tree/scripts/mutation/explained.txt
cat >"$tree/sitehlp/sample.cpp" <<'SAMPLE'
// 1 == 1
int sample(int a, int b) {
  if (!a && b < 10) return -1;
  log(L"a < b");
  a = b;
  return true;
}
SAMPLE
failed=0

# expect STATUS WHAT: the script must end with STATUS for the list of explained mutations
expect() {
  status=0
  python3 "$tree/scripts/mutate" --check >"$tree/said" 2>&1 || status=$?
  if [ "$status" -ne "$1" ]; then
    echo "FAILED: status $status, not $1: $2"
    cat "$tree/said"
    failed=1
  fi
}

cat >"$tree/wanted" <<'WANTED'
sitehlp/sample.cpp:3: comparison: '<' -> '<=' in column 14
sitehlp/sample.cpp:3: condition: '!a && b < 10' -> 'false' in column 7
sitehlp/sample.cpp:3: condition: '!a && b < 10' -> 'true' in column 7
sitehlp/sample.cpp:3: constant: '1' -> '2' in column 29
sitehlp/sample.cpp:3: constant: '10' -> '11' in column 17
sitehlp/sample.cpp:3: left out: if (!a && b < 10) return -1;
sitehlp/sample.cpp:3: logic: '&&' -> '||' in column 9
sitehlp/sample.cpp:3: negation: '!' -> '' in column 7
sitehlp/sample.cpp:3: order: if (!a && b < 10) return -1; after log(L"a < b");
sitehlp/sample.cpp:4: left out: log(L"a < b");
sitehlp/sample.cpp:4: order: log(L"a < b"); after a = b;
sitehlp/sample.cpp:4: text: '' -> '~' in column 9
sitehlp/sample.cpp:5: left out: a = b;
sitehlp/sample.cpp:6: truth: 'true' -> 'false' in column 10
WANTED
: >"$list"
python3 "$tree/scripts/mutate" --list --most 1000 | grep '^sitehlp' | LC_ALL=C sort >"$tree/found"
diff "$tree/wanted" "$tree/found" || { echo "FAILED: the script does not make the intended mutations"; failed=1; }

expect 0 "an empty list"
cat >"$list" <<'LIST'
# A comment.
sitehlp/sample.cpp
  log(L"a < b");
- a = b;
+ ;
= a is not read
= any more

LIST
expect 0 "an entry that fits"
sed 's/a = b/a = c/' "$list" >"$list.new" && mv "$list.new" "$list"
expect 1 "an entry whose line is gone"
grep -q 'can no longer be applied' "$tree/said" || { echo "FAILED: it does not say why"; failed=1; }
printf 'sitehlp/sample.cpp\n  log(L"a < b");\n- a = b;\n+ ;\n' >"$list"
expect 1 "an entry without a reason"
exit "$failed"
