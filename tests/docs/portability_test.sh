#!/bin/sh
# The check of the page about portability passes a clean tree and finds every kind of violation
# planted in it.
#   portability_test.sh CHECK
set -eu
check=$1
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failed=0

clean() {
  rm -rf "${tree:?}"/*
  mkdir -p "$tree/docs" "$tree/host" "$tree/sitehlp" "$tree/tools" "$tree/cmake" "$tree/tests/one"
  cat >"$tree/docs/portability.md" <<'END'
# Portability

## What differs between the systems

| thing | files | Linux | macOS | test |
|---|---|---|---|---|
| `O_PATH` | `host/link.cpp`, `host/walk.cpp` | yes | no | variant: `Links.AreRead` |
| `-option` | `cmake/Flags.cmake` | yes | `no` | `one/exports` |
| `::flock` | `host/walk.cpp` | yes | yes | none |

## More

See `Links.AreFollowed`.
END
  echo 'open(O_PATH);' >"$tree/host/link.cpp"
  printf '%s\n' 'int x = O_PATH;' '::flock(1);' >"$tree/host/walk.cpp"
  printf '%s\n' '// O_PATH, environ' 'O_PATHS; environment; my::flocks();' >"$tree/host/other.h"
  echo 'set(flags -option)' >"$tree/cmake/Flags.cmake"
  printf '%s\n' 'TEST(Links, AreRead) {}' 'TEST_F(Links, AreFollowed) {}' \
    >"$tree/tests/one/links_test.cpp"
  echo 'add_test(NAME one/exports)' >"$tree/tests/one/CMakeLists.txt"
}

# refused TEXT: the check must fail with this text
refused() {
  if "$check" "$tree" >"$tree/said" 2>&1; then
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
"$check" "$tree"

echo '// O_PATH' >"$tree/host/link.cpp"
refused 'O_PATH is not in host/link.cpp'
rm "$tree/host/walk.cpp"
refused '::flock is not in host/walk.cpp'
echo 'open(O_PATH);' >"$tree/tools/new.cpp"
refused 'tools/new.cpp: has O_PATH, but its row in docs/portability.md does not name this file'
echo 'set(more -option)' >"$tree/host/CMakeLists.txt"
refused 'host/CMakeLists.txt: has -option'
echo 'TEST(Links, AreFollowed) {}' >"$tree/tests/one/links_test.cpp"
refused 'there is no test Links.AreRead'
echo 'TEST(Links, AreRead) {}' >"$tree/tests/one/links_test.cpp"
refused 'there is no test Links.AreFollowed'
echo >"$tree/tests/one/CMakeLists.txt"
refused 'there is no test one/exports'
sed 's/| none |/| |/' "$tree/docs/portability.md" >"$tree/page" && mv "$tree/page" "$tree/docs/portability.md"
refused 'the row of ::flock names no test'
echo '# Portability' >"$tree/docs/portability.md"
refused 'no table after'
echo 'extern char** environ;' >"$tree/host/new.cpp"
refused 'host/new.cpp: environ is not there'
echo 'extern char** environ;' >"$tree/tools/new.cpp"
"$check" "$tree"
echo '::sigfillset(&all);' >"$tree/tests/one/new_test.cpp"
refused 'tests/one/new_test.cpp: ::sigfillset is a macro on macOS'
exit "$failed"
