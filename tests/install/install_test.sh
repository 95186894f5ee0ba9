#!/bin/sh
# install_test.sh NAME: one test of the installed tree. From the environment: TREE, where the tree is
# to be; BUILD, the build directory; WORK, a directory of the test's own; CXX and FLAGS, how to
# compile; LIBDIR, the tree's library directory; VERSION, the version it should have.
set -eu
source=$(cd "$(dirname "$0")" && pwd)
name=$1

fail() {
  echo "FAILED: $*"
  exit 1
}

rm -rf "$WORK"
mkdir -p "$WORK"
cd "$WORK"

case $name in
  tree)
    rm -rf "$TREE"
    cmake --install "$BUILD" --prefix "$WORK/first" >install.log
    mv "$WORK/first" "$TREE"
    # The exported targets ask a user for nothing but themselves.
    packages=$TREE/$LIBDIR/cmake/sitehlp
    if grep -nE 'find_dependency|(pugixml|EXPAT|OpenSSL|Boost|spdlog|tomlplusplus|utf8cpp|Threads)::' \
      "$packages"/*.cmake; then
      fail "the package drags third-party libraries in"
    fi
    if grep -rnF -e "$BUILD" -e "$(cd "$source/../.." && pwd)" "$TREE/$LIBDIR/cmake" \
      "$TREE/$LIBDIR/pkgconfig" "$TREE/include"; then
      fail "the installed tree names the build or the source tree"
    fi
    ;;
  headers)
    # Each header can be included alone, and with strict warnings.
    cd "$TREE/include"
    count=0
    for header in $(find . -name '*.h' | sed 's|^\./||'); do
      printf '#include "%s"\n#include "%s"\n' "$header" "$header" >"$WORK/one.cpp"
      "$CXX" -std=c++17 -fsyntax-only -Wall -Wextra -Wpedantic -Werror -I. "$WORK/one.cpp" ||
        fail "$header cannot be included alone"
      count=$((count + 1))
    done
    [ "$count" -gt 20 ] || fail "only $count headers"
    ;;
  cmake_package)
    cmake -S "$source/consumer" -B build -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$FLAGS" \
      -DCMAKE_PREFIX_PATH="$TREE" -DWANTED_VERSION="$VERSION" >configure.log
    cmake --build build
    ./build/consumer "$WORK"
    ;;
  pkg_config)
    PKG_CONFIG_PATH=$TREE/$LIBDIR/pkgconfig
    export PKG_CONFIG_PATH
    [ "$(pkg-config --modversion sitehlp)" = "$VERSION" ] || fail "another version"
    # shellcheck disable=SC2046,SC2086 # several options each
    "$CXX" -std=c++17 $FLAGS "$source/consumer/main.cpp" $(pkg-config --cflags --libs sitehlp) \
      -Wl,-rpath,"$TREE/$LIBDIR" -o consumer
    ./consumer "$WORK"
    ;;
  guide)
    # The first guide's program and project, as they stand there, on the example list.
    guide=$source/../../docs/guide-first-import.md
    examples=$source/../../examples
    mkdir program agent
    block() { awk -v opening="\`\`\`$1" '$0 == "```" { inside = 0 } inside; $0 == opening { inside = 1 }' "$guide"; }
    block cpp >program/first_import.cpp
    block cmake >program/CMakeLists.txt
    cmp program/first_import.cpp "$examples/first-import/first_import.cpp" ||
      fail "the program in the guide is not the one in the examples"
    cmake -S program -B build -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$FLAGS" \
      -DCMAKE_PREFIX_PATH="$TREE" >configure.log
    cmake --build build
    ./build/first_import "$WORK/agent" "$examples/incoming/SiteList.xml" >sites
    cat sites
    [ -s agent/etc/SiteList.xml ] || fail "no list was installed"
    [ "$(wc -l <sites)" -gt 1 ] || fail "no sites were printed"
    ;;
  tool)
    "$TREE/bin/sitelist" --version | grep -F "$VERSION"
    ;;
  *)
    fail "no test $name"
    ;;
esac
