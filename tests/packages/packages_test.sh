#!/bin/sh
# packages_test.sh NAME: one test of the Debian packages. From the environment: BUILD, the build
# directory; PACKAGES, where the packages are; WORK, a directory of the test's own; CXX, the compiler;
# LIBDIR, VERSION and ABI as configured.
set -eu
source=$(cd "$(dirname "$0")/../.." && pwd)
runtime=libsitehlp$ABI
host=libsitehlp-host$ABI
all="$runtime $host libsitehlp-dev sitelist sitehlp-doc"

fail() {
  echo "FAILED: $*" >&2
  exit 1
}

deb() { echo "$PACKAGES/${1}_${VERSION}-1_"*.deb; }
field() { dpkg-deb --field "$(deb "$1")" "$2"; }
# is PACKAGE FIELD TEXT
is() { [ "$(field "$1" "$2")" = "$3" ] || fail "$2 of $1 is \"$(field "$1" "$2")\", not \"$3\""; }
unpack() { for package in $all; do dpkg-deb --extract "$(deb "$package")" "$1"; done; }
binaries() {
  find "$1/usr/bin" "$1/usr/libexec" -type f
  find "$1/usr/$LIBDIR" -type f -name '*.so.*'
}

rm -rf "$WORK"
mkdir -p "$WORK"
cd "$WORK"

case $1 in
  build)
    triplet=$(dpkg-architecture --query DEB_HOST_MULTIARCH)
    [ "$LIBDIR" = "lib/$triplet" ] ||
      fail "libraries would go to $LIBDIR, not lib/$triplet: configure anew, with cmake --fresh"
    rm -rf "$PACKAGES"
    cpack --config "$BUILD/CPackConfig.cmake" -B "$PACKAGES" >cpack.log 2>&1 || fail "$(cat cpack.log)"
    rm -rf "$PACKAGES/_CPack_Packages"
    [ "$(find "$PACKAGES" -type f | wc -l)" -eq 5 ] || fail "not five packages: $(ls "$PACKAGES")"
    ;;
  control)
    architecture=$(dpkg --print-architecture)
    for package in $all; do
      is "$package" Package "$package"
      is "$package" Source sitehlp
      is "$package" Version "$VERSION-1"
      is "$package" Maintainer "sitehlp developers <sitehlp@example.invalid>"
      is "$package" Priority optional
      [ "$(field "$package" Installed-Size)" -gt 10 ] || fail "Installed-Size of $package"
      synopsis=$(field "$package" Description | head -n 1)
      [ "${#synopsis}" -gt 20 ] && [ "${#synopsis}" -lt 80 ] || fail "synopsis of $package: $synopsis"
      [ "$(field "$package" Description | wc -l)" -gt 2 ] || fail "no description of $package"
      echo "$synopsis" >>synopses
      # No package runs anything when it is installed; the linker's cache is renewed by a trigger.
      dpkg-deb --ctrl-tarfile "$(deb "$package")" | tar -tf - | sed 's|^\./||' | sort | tr '\n' ' ' >parts
      case $package in
        libsitehlp*"$ABI") wanted=" control md5sums shlibs triggers " ;;
        *) wanted=" control md5sums " ;;
      esac
      [ "$(cat parts)" = "$wanted" ] || fail "$package has the control files$(cat parts)"
    done
    [ "$(sort -u synopses | wc -l)" -eq 5 ] || fail "two packages have the same synopsis"
    for package in $runtime $host libsitehlp-dev sitelist; do
      is "$package" Architecture "$architecture"
    done
    is sitehlp-doc Architecture all
    for package in $runtime $host libsitehlp-dev; do is "$package" Multi-Arch same; done
    for package in sitelist sitehlp-doc; do is "$package" Multi-Arch foreign; done
    is $runtime Section libs
    is $host Section libs
    is libsitehlp-dev Section libdevel
    is sitelist Section admin
    is sitehlp-doc Section doc
    is sitehlp-doc Depends ""
    is libsitehlp-dev Depends "$host (= $VERSION-1), $runtime (= $VERSION-1)"
    dpkg-deb --info "$(deb $runtime)" shlibs | grep -qxF "libsitehlp $ABI $runtime (>= $VERSION-1)" ||
      fail "the shlibs file of $runtime is wrong"
    dpkg-deb --info "$(deb $host)" shlibs | grep -qxF "libsitehlp-host $ABI $host (>= $VERSION-1)" ||
      fail "the shlibs file of $host is wrong"
    ;;
  contents)
    # Each package has exactly its own files.
    for package in $all; do
      doc=./usr/share/doc/$package
      case $package in
        "$runtime") own="./usr/$LIBDIR/libsitehlp\.so\.[0-9.]*" ;;
        "$host") own="./usr/$LIBDIR/libsitehlp-host\.so\.[0-9.]*" ;;
        libsitehlp-dev)
          own="./usr/include/.*\.h|./usr/$LIBDIR/(libsitehlp(-host)?\.so|cmake/sitehlp/.*|pkgconfig/sitehlp\.pc)"
          ;;
        sitelist)
          own="./usr/bin/sitelist|./usr/libexec/sitelist/sitelist-probe|./usr/share/(man/man1/sitelist\.1|man/man5/(sitelist\.json|agent\.toml)\.5)\.gz"
          own="$own|./usr/share/sitehlp/sitelist\.schema\.json|./usr/share/bash-completion/completions/sitelist"
          own="$own|./usr/share/(zsh/vendor-completions/_sitelist|fish/vendor_completions\.d/sitelist\.fish)"
          ;;
        sitehlp-doc) own="./usr/share/doc/sitehlp/.*" ;;
      esac
      dpkg-deb --contents "$(deb "$package")" | tee listing |
        awk '$1 !~ /^d/ { sub(/ -> .*/, ""); print $6 }' | sort >files
      for file in copyright changelog.Debian.gz; do
        grep -qx "$doc/$file" files || fail "$package has no $file"
      done
      if grep -vxE "$own|$doc/(copyright|changelog\.Debian\.gz)" files; then
        fail "$package has files that are not its own"
      fi
      cat files >>everything
      # All files belong to root, and only root may write them. Only directories and the programs of
      # the tool are executable.
      awk '$2 != "root/root" || ($1 !~ /^l/ && $1 ~ /^.....w|^........w/) { print; bad = 1 }
           $1 ~ /^-..x/ && $6 !~ /\/(bin|libexec)\// { print; bad = 1 } END { exit bad }' listing ||
        fail "owner or mode in $package"
      dpkg-deb --extract "$(deb "$package")" root
      dpkg-deb --info "$(deb "$package")" md5sums >md5sums
      (cd root && md5sum --quiet --check ../md5sums) || fail "the checksums of $package are wrong"
    done
    [ -z "$(sort everything | uniq -d)" ] || fail "in two packages: $(sort everything | uniq -d)"

    # Every installed file is in a package.
    cmake --install "$BUILD" --prefix "$WORK/installed" >install.log
    (cd installed && find . ! -type d ! -path ./share/doc/sitehlp/LICENSE) |
      sed 's|^\.|./usr|; s|\(/man/man[15]/.*\)|\1.gz|; s|/site-functions/|/vendor-completions/|' | sort >installed.list
    grep -v -e '/copyright$' -e '/changelog.Debian.gz$' everything | sort | diff installed.list - ||
      fail "the packages do not have what is installed"

    [ "$(binaries root | wc -l)" -eq 4 ] || fail "not four binaries: $(binaries root)"
    for file in $(binaries root); do
      ! objdump -p "$file" | grep -E 'RPATH|RUNPATH' || fail "$file looks for libraries elsewhere"
      ! readelf -SW "$file" | grep -E '\.(symtab|debug_)' || fail "$file is not stripped"
    done
    if grep -rlF -e "$BUILD" -e "$source" root; then
      fail "a path of this machine is in a package"
    fi
    ;;
  dependencies)
    # Every library that a binary needs is in a package on which the package of the binary depends.
    unpack root
    for pair in "$runtime usr/$LIBDIR/libsitehlp.so.$VERSION" \
      "$host usr/$LIBDIR/libsitehlp-host.so.$VERSION" "sitelist usr/bin/sitelist" \
      "sitelist usr/libexec/sitelist/sitelist-probe"; do
      package=${pair%% *}
      field "$package" Depends | tr ',' '\n' | sed 's/^ *//' >depends
      count=0
      for library in $(objdump -p "root/${pair#* }" | awk '$1 == "NEEDED" { print $2 }'); do
        case $library in
          libsitehlp.so."$ABI") owner="$runtime (= $VERSION-1)" ;;
          libsitehlp-host.so."$ABI") owner="$host (= $VERSION-1)" ;;
          ld-linux*) owner=libc6 ;;
          *)
            owner=$(dpkg-query --search "*/${LIBDIR#lib/}/$library" | sed -n '1s/:.*//p')
            [ -n "$owner" ] || fail "no package has $library"
            ;;
        esac
        grep -q "^$owner\( (.*)\)\{0,1\}$" depends || grep -qxF "$owner" depends ||
          fail "$package asks for $library and does not depend on $owner: $(cat depends)"
        count=$((count + 1))
      done
      [ "$count" -ge 3 ] || fail "$package needs only $count libraries"
    done
    for package in sitelist libsitehlp-dev; do
      for ours in $runtime $host; do
        field "$package" Depends | grep -qF "$ours (= $VERSION-1)" || fail "$package does not depend on $ours"
      done
    done
    ;;
  use)
    # The tool runs from its package and imports an example of the documentation package. The
    # development package is enough to build a program.
    unpack root
    LD_LIBRARY_PATH=$WORK/root/usr/$LIBDIR
    PKG_CONFIG_PATH=$WORK/root/usr/$LIBDIR/pkgconfig
    export LD_LIBRARY_PATH PKG_CONFIG_PATH
    sitelist() { "$WORK/root/usr/bin/sitelist" --agent-dir "$WORK/agent" "$@"; }
    examples=root/usr/share/doc/sitehlp/examples
    sitelist --version | grep -F "$VERSION"
    sitelist init --managed
    sitelist import --allow-lost-passwords $examples/incoming/SiteList.xml
    sitelist show | grep -F "pyx.example:80"
    status=0
    sitelist validate $examples/broken/no-server.xml || status=$?
    [ "$status" -eq 1 ] || fail "a broken list: exit status $status"
    # shellcheck disable=SC2046 # several options
    "$CXX" -std=c++17 "$source/tests/install/consumer/main.cpp" $(pkg-config --cflags --libs sitehlp) \
      -o consumer
    mkdir consumer.data
    ./consumer "$WORK/consumer.data"
    ;;
  *)
    fail "no test $1"
    ;;
esac
