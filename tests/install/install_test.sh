#!/bin/sh
# install_test.sh NAME: one test of the installed tree. From the environment: TREE, the directory for
# the tree; BUILD, the build directory; WORK, a directory of the test's own; CXX and FLAGS, the
# compiler and its options; LIBDIR, the tree's library directory; VERSION, the expected version.
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
    # A user of the exported targets needs no other package.
    packages=$TREE/$LIBDIR/cmake/sitehlp
    if grep -nE 'find_dependency|(pugixml|EXPAT|OpenSSL|Boost|spdlog|tomlplusplus|utf8cpp|Threads)::' \
      "$packages"/*.cmake; then
      fail "the package depends on third-party libraries"
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
    [ "$(pkg-config --modversion sitehlp)" = "$VERSION" ] || fail "pkg-config reports another version"
    # shellcheck disable=SC2046,SC2086 # several options each
    "$CXX" -std=c++17 $FLAGS "$source/consumer/main.cpp" $(pkg-config --cflags --libs sitehlp) \
      -Wl,-rpath,"$TREE/$LIBDIR" -o consumer
    ./consumer "$WORK"
    ;;
  package_versions)
    # Before 1.0.0 a version replaces older ones of the same minor version. From 1.0.0 on it replaces
    # older ones of the same major version.
    major=${VERSION%%.*}
    minor=${VERSION#*.}
    minor=${minor%%.*}
    accepts() {
      cat >ask.cmake <<END
set(PACKAGE_FIND_VERSION $1)
string(REPLACE "." ";" parts $1)
list(LENGTH parts PACKAGE_FIND_VERSION_COUNT)
list(APPEND parts 0 0)
list(GET parts 0 PACKAGE_FIND_VERSION_MAJOR)
list(GET parts 1 PACKAGE_FIND_VERSION_MINOR)
list(GET parts 2 PACKAGE_FIND_VERSION_PATCH)
set(CMAKE_SIZEOF_VOID_P 8)
include($TREE/$LIBDIR/cmake/sitehlp/sitehlpConfigVersion.cmake)
if(NOT PACKAGE_VERSION_COMPATIBLE)
  message(FATAL_ERROR "refused")
endif()
END
      cmake -P ask.cmake >/dev/null 2>&1
    }
    for version in "$VERSION" "$major.$minor" "$major.$minor.0"; do
      accepts "$version" || fail "$VERSION is refused for $version"
    done
    for version in "$major.$minor.999" "$major.$((minor + 1))" "$((major + 1)).0"; do
      ! accepts "$version" || fail "$VERSION is accepted for $version"
    done
    if [ "$minor" -gt 0 ]; then
      older=refused
      ! accepts "$major.$((minor - 1))" || older=accepted
      wanted=accepted
      [ "$major" -gt 0 ] || wanted=refused
      [ $older = $wanted ] || fail "$VERSION: an older minor version is $older"
    fi
    ;;
  subproject)
    # Compiles each library as one unit and without optimisation. This takes a quarter of the time
    # and tests the unity build.
    cmake -G Ninja -S "$source/subproject" -B build -DSITEHLP_SOURCE_DIR="$(cd "$source/../.." && pwd)" \
      -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O0" \
      -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 -DCMAKE_INSTALL_LIBDIR="$LIBDIR" \
      >configure.log
    cmake --build build --target consumer
    ./build/consumer "$WORK"
    installed() { (cd "$1" && find . ! -type d ! -path "./share/doc/*/reference/*" | LC_ALL=C sort); }
    cmake --install build --prefix "$WORK/program" >install.log
    [ "$(installed program)" = ./bin/consumer ] || fail "the subproject installs itself: $(installed program)"
    # With SITEHLP_INSTALL, a subproject installs the same files as the project itself.
    cmake -DSITEHLP_INSTALL=ON build >configure.log
    cmake --build build --target consumer
    cmake --install build --prefix "$WORK/both" >install.log
    rm both/bin/consumer
    for component in runtime host development documentation; do
      cmake --install "$BUILD" --prefix "$WORK/alone" --component $component >>install.log
    done
    installed alone >alone.list
    installed both | diff alone.list - || fail "a subproject installs other files"
    cmp "alone/$LIBDIR/pkgconfig/sitehlp.pc" "both/$LIBDIR/pkgconfig/sitehlp.pc" ||
      fail "the pkg-config file of a subproject differs"
    ;;
  guide)
    # Builds the program and project of the first guide unchanged, and runs the program on the
    # example list.
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
    # The example program must also refuse a list without a management server for a managed agent.
    mkdir managed
    echo 'managed = true' >managed/agent.toml
    ! ./build/first_import "$WORK/managed" "$examples/broken/no-server.xml" 2>said ||
      fail "the settings of the agent are ignored"
    grep -F 'no management server' said || fail "the message gives no reason: $(cat said)"
    [ ! -e managed/etc/SiteList.xml ] || fail "the list was installed"
    echo 'managed = maybe' >managed/agent.toml
    ! ./build/first_import "$WORK/managed" "$examples/incoming/SiteList.xml" 2>said ||
      fail "invalid settings are ignored"
    grep -F agent.toml said || fail "the message gives no reason: $(cat said)"
    ;;
  tool)
    "$TREE/bin/sitelist" --version | grep -F "$VERSION"
    for file in man/man1/sitelist.1 man/man5/sitelist.json.5 man/man5/agent.toml.5 \
      bash-completion/completions/sitelist zsh/site-functions/_sitelist \
      fish/vendor_completions.d/sitelist.fish; do
      grep -q sitelist "$TREE/share/$file" || fail "share/$file is not installed"
    done
    # Loading libcurl would double the start of every command, so only the program for probe has it.
    ! objdump -p "$TREE/bin/sitelist" | grep libcurl || fail "sitelist loads libcurl"
    "$TREE/bin/sitelist" probe --file "$source/../../examples/incoming/SiteList.xml" Disk >said || true
    grep -F Disk said || fail "sitelist does not find the program for probe"
    ;;
  *)
    fail "no test $name"
    ;;
esac
