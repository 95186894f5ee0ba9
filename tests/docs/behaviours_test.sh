#!/bin/sh
# The check of the tested behaviours passes a clean tree and finds every kind of violation planted
# in it.
#   behaviours_test.sh CHECK
set -eu
check=$1
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failed=0

clean() {
  rm -rf "${tree:?}"/*
  mkdir -p "$tree/docs" "$tree/sitehlp" "$tree/tests/docs" "$tree/tests/one" "$tree/bin"
  cat >"$tree/docs/site-list-format.md" <<'END'
# Format

## Text

| topic | reading |
|---|---|
| encoding | <a id="encoding"></a>any |

- <a id="first"></a>Only the first
  is read.
- <a id="second"></a>The second is
  not.

```
| no row | of a table |
```

## Limits

Prose. <a id="limit"></a>There is a limit.
END
  cat >"$tree/sitehlp/result_codes.h" <<'END'
constexpr int c_success = 0;
constexpr int c_errorGeneral = -1;
END
  cat >"$tree/sitehlp/sites_helper.h" <<'END'
class CSitesHelper {
  // Reads. Returns 0, or -1 on failure.
  int Read(int path);
  // Returns how many there are.
  static int Count();
};
END
  printf '%s\n' '# a comment' 'Read 0 -1' 'Count' >"$tree/tests/docs/result_codes.txt"
  cat >"$tree/tests/one/reader_test.cpp" <<'END'
// Shows: encoding, first,
// Shows: second, Read=0
TEST_F(Reader, Reads) {
}
// Shows: limit, Read=-1
TEST_P(Reader, Fails) {
}
TEST(Reader, ShowsNothing) {}
END
  cat >"$tree/bin/test_one" <<'END'
#!/bin/sh
printf '%s\n' 'Cases/Reader.  # x' '  Fails/a  # y' 'Reader.' '  Reads'
END
  chmod +x "$tree/bin/test_one"
  "$check" "$tree" "$tree/bin" --update
}

# change FILE SCRIPT: edits a file with sed
change() {
  sed "$2" "$tree/$1" >"$tree/changed"
  if cmp -s "$tree/changed" "$tree/$1"; then
    echo "FAILED: $2 changes nothing in $1"
    failed=1
  fi
  cat "$tree/changed" >"$tree/$1"
}

# refused TEXT: the check must fail with this text
refused() {
  if "$check" "$tree" "$tree/bin" >"$tree/said" 2>&1; then
    echo "FAILED: not noticed: $1"
    failed=1
  elif ! grep -qF -- "$1" "$tree/said"; then
    echo "FAILED: not said: $1"
    cat "$tree/said"
    failed=1
  fi
  clean
}

clean
"$check" "$tree" "$tree/bin"
for shown in '[first](site-list-format.md#first): Only the first is read.' 'encoding: any' \
  '`test_one/Reader.Fails`' '| `Read` | -1 |'; do
  grep -qF -- "$shown" "$tree/docs/tested-behaviours.md" || {
    echo "FAILED: the page does not have: $shown"
    failed=1
  }
done

tests=tests/one/reader_test.cpp
format=docs/site-list-format.md
# Statements and results without a test.
change $tests 's/, first,/,/'
refused 'no test shows first'
change $tests 's/, Read=-1//'
refused 'no test shows Read=-1'
change $format 's/There is/<a id="new"><\/a>There is/'
refused 'no test shows new'
change tests/docs/result_codes.txt 's/^Count/Count 0/'
refused 'no test shows Count=0'
# Marks with an unknown name, and marks of missing tests.
change $tests 's/limit, /limits, /'
refused 'Reader.Fails shows limits, which does not exist'
change $tests 's/Read=0/Read=-1, Read=-2/'
refused 'Reader.Reads shows Read=-2, which does not exist'
change $tests 's/Reader, Fails/Reader, Falls/'
refused 'test_one has no test Reader.Falls'
change bin/test_one 's/  Reads/  Writes/'
refused 'test_one has no test Reader.Reads'
change $tests 's/^TEST_P/void TEST_P/'
refused "$tests:6: a mark without a test after it"
change $tests '$s/.*/\/\/ Shows: first/'
refused "$tests: a mark after the last test"
rm "$tree/bin/test_one"
refused 'bin/test_one does not exist'
# Statements without an anchor, or with the anchor of another one.
change $format 's/<a id="encoding"><\/a>//'
refused "$format: no anchor in: | encoding | any |"
change $format 's/<a id="first"><\/a>//'
refused "$format: no anchor in: - Only the first is read."
change $format 's/"second"/"first"/'
refused "$format: the anchor first occurs twice"
# Operations and result codes that only the header or only the table has.
change tests/docs/result_codes.txt '/^Count/d'
refused 'no line for Count'
change tests/docs/result_codes.txt 's/^Count/Size/'
refused 'does not declare Size'
change tests/docs/result_codes.txt 's/ -1//'
refused 'Read has no -1'
change tests/docs/result_codes.txt 's/ -1/ -1 -7/'
refused 'Read has -7'
change sitehlp/result_codes.h '/c_errorGeneral/{p;s/c_errorGeneral = -1/c_new = -7/;}'
refused 'no operation returns c_new (-7)'
# An outdated page.
change docs/tested-behaviours.md 's/Reads/Wrote/'
refused 'docs/tested-behaviours.md is out of date'
exit "$failed"
