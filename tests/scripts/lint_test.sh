#!/bin/sh
# The lint script accepts clean sources. It reports faults in the requested sources: changed ones,
# new ones, those that include a changed header, or all.
#   lint_test.sh LINT CHECKS     CHECKS: the file with the checks of the tree
set -eu
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree/scripts" "$tree/sitehlp" "$tree/host"
cp "$1" "$tree/scripts/lint"
cp "$2" "$tree/.clang-tidy"
cd "$tree"
failed=0

echo 'build/' >.gitignore
cat >CMakePresets.json <<'PRESETS'
{
  "version": 6,
  "configurePresets": [
    {
      "name": "debug",
      "generator": "Ninja",
      "cacheVariables": { "CMAKE_EXPORT_COMPILE_COMMANDS": "ON" }
    }
  ]
}
PRESETS
cat >CMakeLists.txt <<'LISTS'
cmake_minimum_required(VERSION 3.25)
project(sample LANGUAGES CXX)
file(GLOB sources CONFIGURE_DEPENDS host/*.cpp sitehlp/*.cpp)
add_library(sample STATIC ${sources})
target_include_directories(sample PRIVATE ${PROJECT_SOURCE_DIR})
LISTS
git init -q .
# commit: everything as it is now
commit() {
  git add -A
  git -c user.name=test -c user.email=test@localhost commit -q -m sample
}

good='inline int* none() { return nullptr; }'
bad='inline int* none() { return 0; }'
echo "$good" >sitehlp/none.h
echo '#include "sitehlp/none.h"' >sitehlp/user.cpp
echo 'int* other() { return nullptr; }' >host/other.cpp
commit

# expect STATUS WHAT ARGUMENT...: the script must end with STATUS. If it finds a fault, it must name
# the check.
expect() {
  status=0
  wanted=$1
  what=$2
  shift 2
  scripts/lint "$@" >said 2>&1 || status=$?
  case $wanted:$status in
    clean:0) ;;
    found:0) report "nothing was found" ;;
    found:*) grep -q modernize-use-nullptr said || report "the check is not named" ;;
    usage:2) ;;
    *) report "status $status" ;;
  esac
  rm said
}
report() {
  echo "FAILED: $what: $1"
  cat said
  failed=1
}

expect clean "a clean tree without changes"
expect clean "all of a clean tree" --all
echo "$bad" >sitehlp/none.h
expect found "a changed header"
commit
expect clean "a fault that was there before"
expect found "a fault since an older commit" HEAD~1
expect found "a fault anywhere" --all
echo "$good" >sitehlp/none.h
expect clean "a fault that was mended"
commit
echo 'int* other() { return 0; }' >host/other.cpp
expect found "a changed source"
git checkout -q host/other.cpp
echo 'int* more() { return 0; }' >host/more.cpp
expect found "a new source"
rm host/more.cpp
git rm -q host/other.cpp
expect clean "a source that was removed"
expect usage "an unknown option" --some
expect usage "too many arguments" HEAD HEAD
exit "$failed"
