#!/bin/sh
# reference_test.sh NAME: one test of the reference. From the environment: DOXYGEN, the program;
# DOXYFILE, its settings as configured; WORK, a directory of the test's own.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)

fail() {
  echo "FAILED: $*" >&2
  exit 1
}

rm -rf "$WORK"
mkdir -p "$WORK"
cd "$WORK"

# make_reference [SETTING...]: makes the reference. These settings replace the configured ones.
make_reference() {
  rm -rf html
  { cat "$DOXYFILE" && printf '%s\n' "OUTPUT_DIRECTORY = $WORK" "$@"; } | "$DOXYGEN" - >said 2>&1
}

# shows PAGE TEXT: the page has this text
shows() {
  sed 's/<[^>]*>//g' "html/$1" | tr '\n' ' ' | grep -qF "$2" || fail "$1 does not say: $2"
}

# Doxygen does not report an enumerator without a comment. Prints such enumerators.
bare_enumerators() {
  make_reference "GENERATE_XML = YES" "GENERATE_HTML = NO" "$@" || fail "$(cat said)"
  awk '/<enumvalue / { inside = 1; said = 0 }
       inside && /<name>/ { name = $0; gsub(/ *<[^>]*>/, "", name) }
       inside && /<para>/ { said = 1 }
       /<\/enumvalue>/ { if (!said) print name; inside = 0 }' xml/*.xml
}

# refused TEXT...: Doxygen must report a header with this text, at the line with "wrong"
refused() {
  printf '%s\n' '#ifndef H' '#define H' '' '// Of the file.' '' "$@" '' '#endif' >planted.h
  line=$(grep -n wrong planted.h | cut -d: -f1)
  ! make_reference "INPUT = $WORK/planted.h" || fail "no error for: $*"
  grep -q "planted.h:$line: .*wrong" said || fail "not named in line $line of $*: $(cat said)"
}

case $1 in
  reference)
    make_reference || fail "$(cat said)"
    [ ! -s said ] || fail "$(cat said)"
    shows index.html "the inputs, outputs, ownership and failures of each call"
    shows classsitehlp_1_1CSitesHelper.html 'when the last site element is of unknown kind'
    shows classsitehlp_1_1CSitesHelper.html 'the first "&lt;CaBundle&gt;" tag'
    shows classsitehlp_1_1CSitesHelper.html 'Their log lines have the component "StSHlp"'
    shows structsitehlp_1_1tag__Site.html 'position in the search order; 65535'
    shows classAString.html 'bytes that are not valid UTF-8 become U+FFFD'
    shows afile_8h.html 'Files by name.'
    shows vendor__hosts_8h.html 'Host of the default vendor HTTP repository'
    # Every public header has its page, and no page points to one that is not there.
    for header in $(cat "$root/cmake/installed-headers.txt") $(cd "$root" && find platform -name '*.h'); do
      # The title has the whole path. Two headers may have the same base name.
      grep -qF "<title>sitehlp: $header File Reference</title>" html/*_8h.html || fail "no page for $header"
    done
    cd html
    for page in $(grep -oh 'href="[^"#:]*["#]' -- *.html | sed 's/^href="//; s/["#]$//' | sort -u); do
      [ -f "$page" ] || fail "a link points to $page, which does not exist"
    done
    cd ..
    bare=$(bare_enumerators)
    [ -z "$bare" ] || fail "no comment on $bare"
    ;;
  undocumented_is_an_error)
    make_reference "INPUT = $root/sitehlp/site.h" || fail "$(cat said)"
    refused 'void wrong(int value);'
    refused '// Of a class.' 'class One {' ' public:' '  void wrong(int value);' '};'
    refused '// Of a class.' 'class One {' ' public:' '  int right = 0;  // a number' '  int wrong = 0;' '};'
    refused '// Of a class.' 'class One {' ' protected:' '  static bool wrong();' '};'
    refused 'class wrong {' ' public:' '  // Said.' '  int a();' '};'
    refused '// Of a class.' 'class One {' '  // --- Group ---' '' ' public:' '  // Said.' '  int a();' '' '  int wrong();' '};'
    refused 'namespace one {' '' 'constexpr int wrong = 1;' '' '}'
    refused 'enum wrong { A };'
    printf '%s\n' '// Of the file.' '' '// Said.' 'enum A { RIGHT,  // said' '  WRONG };' >planted.h
    [ "$(bare_enumerators "INPUT = $WORK/planted.h")" = WRONG ] || fail "a bare enumerator is not noticed"
    refused '// Says what it does.' 'int right(int value);' 'int right(long value);' 'int wrong(long value);'
    refused '// Refers to #wrong, which is not there.' 'int right(int value);'
    ;;
  names)
    # The comment on each name of the vocabulary gives the text that the name stands for.
    awk '/^\/\/ [A-Z][a-z]* ".*"\.$/ { split($0, parts, "\""); text = parts[2] }
         /^extern / { sub(/;/, ""); print $NF, text; text = "" }' "$root/sitehlp/xmlschema/sitelist.h" >said
    awk '/^const wchar_t/ { split($0, parts, "\""); print $4, parts[2] }' \
      "$root/sitehlp/xmlschema/sitelist.cpp" >meant
    [ "$(wc -l <meant)" -gt 80 ] || fail "only $(wc -l <meant) names"
    diff meant said || fail "> is what the header says"
    ;;
  *)
    fail "no test $1"
    ;;
esac
