#!/bin/sh
# The comparison finds a change of the library and a change of the record.
#   compare_abi_test.sh COMPARE
# From the environment: CXX, the compiler; LIBRARY and BASELINE, a library and its record.
set -eu
compare=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

# library FILE EXPRESSION: builds a small library from a source that the sed expression edits
library() {
  sed "$2" >"$work/source.cpp" <<'END'
struct Record {
  int first;
  short second;
  wchar_t text[16];
  Record* next;
  union {
    int number;
    char letters[4];
  };
};
enum Kind { KIND_A = 0, KIND_B = 1 };
class Base {
 public:
  virtual ~Base();
  virtual int one();
  virtual int two();
  long name;
};
Base::~Base() {}
int Base::one() { return 1; }
int Base::two() { return 2; }
int read(Record* record, Kind kind) { return record->first + kind; }
long text(const Base& base) { return base.name; }
extern const wchar_t* const NAME;
const wchar_t* const NAME = L"name";
END
  "$CXX" -std=c++17 -g -O1 -fPIC -shared -Wl,--version-script="$work/exports" -o "$1" "$work/source.cpp"
}

# noticed EXPRESSION NAME: the comparison must fail for the edited library and must show NAME
noticed() {
  library "$work/other.so" "$1"
  if "$compare" "$work/other.so" "$work/record" >"$work/said"; then
    echo "FAILED: not noticed: $1"
    failed=1
  elif ! grep -q "$2" "$work/said"; then
    echo "FAILED: $2 not named for $1:"
    cat "$work/said"
    failed=1
  fi
}

cat >"$work/exports" <<'END'
{ global: _Z4read*; _Z4text*; _Z5added*; _ZN4Base*; _ZTV4Base; _ZTI4Base; NAME; RENAMED; local: *; };
END
library "$work/one.so" ""
"$compare" --update "$work/one.so" "$work/record"
if ! "$compare" "$work/one.so" "$work/record" >"$work/said"; then
  echo "FAILED: a library differs from itself:"
  cat "$work/said"
  failed=1
fi
noticed 's/  short second;/  int second;/' second
noticed 's/  short second;/  short renamed;/' renamed
noticed 's/  int first;/  int first, added;/' added
noticed 's/text\[16\]/text[17]/' text
noticed 's/letters\[4\]/letters[8]/' letters
noticed 's/KIND_B = 1/KIND_B = 2/' KIND_B
noticed '/virtual int one/{h;d};/virtual int two/G' 'one()'
noticed 's/long name/unsigned long name/' name
noticed 's/^long text/int text/' text
noticed 's/int read(Record\* record, Kind/int read(const Record* record, Kind/' read
noticed '/^int read/d' read
noticed '$aint added() { return 0; }' added
noticed 's/NAME/RENAMED/' RENAMED

strip -g -o "$work/bare.so" "$work/one.so"
if "$compare" "$work/bare.so" "$work/record" >"$work/said" || ! grep -q 'with -g' "$work/said"; then
  echo "FAILED: a library without types is accepted"
  failed=1
fi

# The recorded interface of the real library has its types and functions.
altered() {
  sed "$1" "$BASELINE" >"$work/record"
  if cmp -s "$BASELINE" "$work/record"; then
    echo "FAILED: $1 changes nothing in the record"
    failed=1
  elif "$compare" "$LIBRARY" "$work/record" >"$work/said"; then
    echo "FAILED: not noticed in the record: $1"
    failed=1
  fi
}
altered "s/name='uSecurePort'/name='uOtherPort'/"
altered "s/name='m_strLocalVersion'/name='m_strOther'/"
altered "/<elf-symbol name='_ZN7sitehlp12decrypt_data/d"

exit "$failed"
