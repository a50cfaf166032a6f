#!/bin/sh
# run_vbscript.sh CHECKS CASE: runs a script case with the shared checks
# put in front. Wine's script host exits with 0 after a run-time error, so a case
# passes only when it also reached its last line and said so.
set -eu
checks="$1"
case_file="$2"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cat "$checks" "$case_file" > "$work/case.vbs"
status=0
timeout 120 wine cscript //nologo "$(winepath -w "$work/case.vbs")" > "$work/out.txt" 2>&1 || status=$?
cat "$work/out.txt"
if [ "$status" -ne 0 ]; then
  echo "run_vbscript: $(basename "$case_file") exited with $status" >&2
  exit 1
fi
if ! tail -n 1 "$work/out.txt" | tr -d '\r' | grep -q '^all [0-9]* checks passed$'; then
  echo "run_vbscript: $(basename "$case_file") stopped before its end (a script error?)" >&2
  exit 1
fi
