#!/bin/sh
# The include check passes a clean tree and finds every kind of violation planted in it.
#   check_includes_test.sh CHECK
set -eu
check=$1
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failed=0

# put FILE LINE: a file of that one line
put() {
  mkdir -p "$(dirname "$tree/$1")"
  printf '%s\n' "$2" >"$tree/$1"
}

clean() {
  rm -rf "${tree:?}"/*
  mkdir -p "$tree/cmake"
  printf '%s\n' sitehlp/helper.h sitehlp/xmlschema/names.h host/agent.h host/fs/files.h \
    >"$tree/cmake/installed-headers.txt"
  put platform/common/text.h '#include <string>'
  put sitehlp/helper.h '#include "platform/common/text.h"'
  put sitehlp/xmlschema/names.h '#include "sitehlp/helper.h"'
  put sitehlp/reader.h '#include "sitehlp/xmlschema/names.h"'
  put sitehlp/reader.cpp '#include "sitehlp/read/reader.h"'
  put sitehlp/common/pointer.h '#include <boost/scoped_ptr.hpp>'
  put sitehlp/read/reader.cpp '#include <unistd.h>'
  put host/agent.h '#include "platform/common/text.h"  // not pugi::xml_node'
  put host/fs/files.h '#include "host/agent.h"'
  put host/xml/tree.h '#include <pugixml.hpp>'
  put tools/sitelist/main.cpp '#include <CLI/CLI.hpp>'
  put tools/sitelist/model/place.cpp '#include <expat.h>'
  put tools/sitelist/commands/show.cpp '#include "tools/sitelist/cli/text.h"'
  put sitehlp/install/import.cpp '#include "sitehlp/read/reader.h"'
  put tools/sitelist/read.cpp '#include "sitehlp/helper.h"'
  put tests/one_test.cpp '#include "host/xml/tree.h"'
}

passes() {
  if ! "$check" "$tree" >"$tree/said"; then
    echo "FAILED: a clean tree is refused:"
    cat "$tree/said"
    failed=1
  fi
}

# refuses FILE LINE: with this file the check fails and names the place
refuses() {
  clean
  put "$1" "$2"
  if "$check" "$tree" >"$tree/said"; then
    echo "FAILED: not noticed in $1: $2"
    failed=1
  elif [ "$(grep -c "^$1:[01]: " "$tree/said")" -ne 1 ]; then
    echo "FAILED: place not named for $1: $2"
    cat "$tree/said"
    failed=1
  fi
}

clean
passes
put sitehlp/read/reader.cpp '/* #include "host/agent.h" */'
passes

refuses platform/a.h '#include "host/agent.h"'
refuses platform/a.h '#include "sitehlp/helper.h"'
refuses platform/a.h '#include <unistd.h>'
refuses platform/a.h '#include <pugixml.hpp>'
refuses platform/a.h 'pugi::xml_node node;'
refuses platform/common/text.cpp '#include <string>'
refuses sitehlp/a.cpp '#include "host/agent.h"'
refuses sitehlp/a.cpp '#include <host/agent.h>'
refuses sitehlp/a.cpp '#include "tests/support/main.h"'
refuses sitehlp/a.cpp '#include "helper.h"'
refuses sitehlp/a.cpp '#include "../host/agent.h"'
refuses sitehlp/a.cpp '  #  include <expat.h>'
refuses sitehlp/a.cpp '#include <boost/shared_ptr.hpp>'
refuses sitehlp/a.cpp '#include HEADER'
refuses sitehlp/helper.h '#include <boost/scoped_ptr.hpp>'
refuses sitehlp/helper.h 'boost::scoped_ptr<int> p;'
refuses sitehlp/helper.h '#include "sitehlp/reader.h"'
refuses sitehlp/xmlschema/names.h '#include <openssl/evp.h>'
refuses sitehlp/xmlschema/names.h 'class A : public nlohmann::json {};'
refuses sitehlp/read/reader.cpp '#include "sitehlp/write/writer.h"'
refuses sitehlp/reader.h '#include "sitehlp/read/reader.h"'
refuses sitehlp/new/a.cpp '#include <unistd.h>'
refuses sitehlp/new/a.cpp '#include "sitehlp/install/import.h"'
refuses tools/sitelist/new/a.h '#include <unistd.h>'
refuses tools/other/new/a.cpp '#include "sitehlp/helper.h"'
refuses tools/sitelist/text.h '#include "tools/sitelist/model/place.h"'
refuses tools/sitelist/cli/text.cpp '#include "tools/sitelist/model/place.h"'
refuses tools/sitelist/edit/move.cpp '#include "tools/sitelist/commands/command.h"'
refuses host/agent.h '#include <spdlog/spdlog.h>'
refuses host/agent.h '#include "host/xml/tree.h"'
refuses host/process/fork.cpp '#include "host/lock/pool.h"'
refuses host/agent.h '#include "host/fs/files.h"'
refuses host/new/a.cpp '#include <unistd.h>'
refuses host/fs/files.h '#include <expat.h>'
refuses host/fs/files.h 'void parse(XML_Parser parser);'
refuses host/xml/a.cpp '#include "sitehlp/helper.h"'
refuses host/xml/a.cpp '#include "tools/sitelist/read.h"'
refuses host/xml/a.cpp '#include "tree.h"'
refuses tools/a.cpp '#include <pugixml.hpp>'
refuses tools/a.cpp '#include <curl/curl.h>'
refuses tools/sitelist/commands/probe.cpp '#include <curl/curl.h>'
refuses tools/a.cpp '#include "tests/support/main.h"'
refuses tests/a_test.cpp '#include "tools/sitelist/read.h"'
refuses fuzz/a.cpp '#include <tools/sitelist/read.h>'
refuses fuzz/a.cpp '#include "../tools/sitelist/read.h"'
refuses tests/cli/a_test.cpp '#include "../../tools/sitelist/read.h"'
refuses bench/a.cpp '#include <../tools/sitelist/read.h>'
refuses examples/a.c '#include "examples/../tools/sitelist/read.h"'
refuses tests/a_test.cpp '#include "./one_test.h"'

clean
rm "$tree/host/agent.h"
if "$check" "$tree" >"$tree/said" || ! grep -q 'installed-headers.txt:3: .*host/agent.h' "$tree/said"; then
  echo "FAILED: not noticed that an installed header is missing"
  failed=1
fi

rm -rf "${tree:?}"/*
mkdir "$tree/platform"
if "$check" "$tree" >/dev/null; then
  echo "FAILED: a tree without sources passes"
  failed=1
fi

exit $failed
