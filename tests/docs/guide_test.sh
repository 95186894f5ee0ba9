#!/bin/sh
# Tests that guide.py finds a wrong output, a missing one and a command that is not run.
#   guide_test.sh PYTHON GUIDE.PY SITELIST SOURCE
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

expect() { # STATUS WHAT, with the guide on standard input
  cat >"$work/guide.md"
  status=0
  "$python" -B "$script" "$work/guide.md" --tool "$tool" --source "$source" >"$work/out" 2>&1 || status=$?
  [ "$status" -eq "$1" ] && return
  echo "guide_test: $2: status $status instead of $1" >&2
  cat "$work/out" >&2
  exit 1
}

python=$1 script=$2 tool=$3 source=$4
block() { printf '\n## Chapter\n\n```sh\necho one\n```\n%s' "$1"; }

block '
```text
one
```
' | expect 0 "a correct guide"
block '
```text
two
```
' | expect 1 "a wrong output"
block '' | expect 1 "a command without output"
echo "no commands" | expect 1 "a guide without commands"
