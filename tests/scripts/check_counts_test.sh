#!/bin/sh
# The check accepts counts within a tenth of the record and reports all others.
#   check_counts_test.sh CHECK
set -eu
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree/scripts" "$tree/tests/performance" "$tree/bin"
cp "$1" "$(dirname "$1")/count-instructions" "$tree/scripts"
record=$tree/tests/performance/counts.txt
failed=0

# A program with two operations, and a counter that returns the values that the test sets.
printf '#!/bin/sh\nprintf "read\\nwrite\\n"\n' >"$tree/program"
cat >"$tree/bin/valgrind" <<'VALGRIND'
#!/bin/sh
for operation; do :; done
eval "echo \"==1== Collected : \$$operation\""
VALGRIND
chmod +x "$tree/program" "$tree/bin/valgrind"
PATH=$tree/bin:$PATH
export PATH

# expect STATUS READ WRITE: the check must end with STATUS for these counts
expect() {
  wanted=$1
  read=$2 write=$3
  export read write
  status=0
  "$tree/scripts/check-counts" "$tree/program" >"$tree/said" 2>&1 || status=$?
  if [ "$status" -ne "$wanted" ]; then
    echo "FAILED: status $status, not $wanted, for $read and $write:"
    cat "$tree/said"
    failed=1
  fi
}

printf '# reason\nread 1000\nwrite 2000\n' >"$record"
expect 0 1000 2000
expect 0 1100 1800
expect 1 1101 2000
expect 1 1000 1799
printf 'read 1000\n' >"$record"
expect 1 1000 2000
printf 'read 1000\nwrite 2000\nmerge 3\n' >"$record"
expect 1 1000 2000

read=500 write=600
export read write
"$tree/scripts/check-counts" "$tree/program" --renew "it got faster" >/dev/null
grep -q 'it got faster' "$record" || { echo "FAILED: the reason is not on record"; failed=1; }
expect 0 500 600
exit "$failed"
