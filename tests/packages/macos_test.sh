#!/bin/sh
# The examples for macOS match the sources. They cannot be run here.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
plist=$root/packaging/macos/sitelist-validate.plist
formula=$root/packaging/macos/sitehlp.rb

fail() {
  echo "FAILED: $*" >&2
  exit 1
}

for file in "$plist" "$formula"; do
  grep -q 'never tried on a Mac' "$file" || fail "$file does not say that it was never tried"
done

# The job is a dictionary of keys and values. It runs the tool on the file that it watches.
xmllint --nonet --noout "$plist" || fail "$plist is not well formed"
value() { xmllint --nonet --xpath "string(/plist/dict/key[.='$1']/following-sibling::*[1]/$2)" "$plist"; }
count() { xmllint --nonet --xpath "count(/plist/dict/$1)" "$plist"; }
[ "$(count 'key')" -eq "$(count '*[not(self::key)]')" ] || fail "a key without a value"
[ "$(count "key[following-sibling::*[1][self::key]]")" -eq 0 ] || fail "two keys in a row"
own=$(sed -n 's/.*dataDirectory = "\(.*\)";.*/\1/p' "$root/host/agent.h")/etc/SiteList.xml
[ "$(value Label .)" = example.sitehlp.validate ] || fail "the label is wrong"
case $(value ProgramArguments 'string[1]') in
  /*/bin/sitelist) ;;
  *) fail "the job does not run the tool: $(value ProgramArguments 'string[1]')" ;;
esac
[ "$(value ProgramArguments 'string[2]')" = validate ] || fail "the job does not run validate"
[ "$(value ProgramArguments 'string[3]')" = "$own" ] || fail "the job does not check $own"
[ "$(value ProgramArguments 'string[4]')" = "" ] || fail "too many arguments"
[ "$(value WatchPaths 'string[1]')" = "$own" ] || fail "the job does not watch $own"
for key in StandardOutPath StandardErrorPath; do
  case $(value $key .) in
    /*.log) ;;
    *) fail "no log file in $key" ;;
  esac
done

# The formula: it has the dependencies that scripts/install-deps installs for building. Its options
# exist, and its version is the current one.
sed -n 's/^ *depends_on "\([^"]*\)".*/\1/p' "$formula" | sort >"$1.formula"
sed -n '/^homebrew="$/,/^"$/p' "$root/scripts/install-deps" | grep -v '"' | tr -s ' ' '\n' | grep . |
  sort >"$1.install-deps"
[ "$(wc -l <"$1.install-deps")" -gt 8 ] || fail "scripts/install-deps has only $(cat "$1.install-deps")"
diff "$1.install-deps" "$1.formula" || fail "> is what the formula depends on"
options=$(grep -o 'DSITEHLP_[A-Z_]*' "$formula" | sed 's/^D//')
[ -n "$options" ] || fail "no option of the formula was found"
for option in $options; do
  grep -q "^option($option " "$root/CMakeLists.txt" || fail "there is no option $option"
done
version=$(sed -n 's/^  VERSION \(.*\)/\1/p' "$root/CMakeLists.txt")
grep -qF "sitehlp-$version.tar.gz" "$formula" || fail "the formula is not for version $version"
