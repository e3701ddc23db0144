#!/bin/bash
# stage_run_test.sh STAGE_RUN PROGRAM FOLDER ended|left
set -uo pipefail
stage_run=$1 program=$2 folder=$3 what=$4
rm -rf "$folder"; mkdir -p "$folder/bin/cefsubprocess"
trap 'rm -rf "$folder"' EXIT
cp "$program" "$folder/bin/program.exe"; cp "$program" "$folder/bin/cefsubprocess/cef.subprocess.exe"
mkdir "$folder/bin/webcache"; echo x >"$folder/bin/webcache/lock"  # another run's leavings must not come along
head -c 300000 /dev/zero >"$folder/bin/big.pak"; echo x >"$folder/bin/small.json"
rc=0; output=$("$stage_run" "$folder/bin/program.exe" "$what" 2>&1) || rc=$?
fail() { echo "FAILED: $*"; echo "exit code $rc, output:"; echo "$output"; exit 1; }

grep -q 'folder Z:.*\\stage\\program-' <<<"$output" || fail "the program did not run in a folder of its own"
grep -q 'temporary Z:.*\\stage\\program-.*\\tmp' <<<"$output" || fail "its temporary folder lies elsewhere"
[ "$(ls -A "$folder/stage")" = "" ] || fail "the copy is still there: $(ls "$folder/stage")"
case $what in
ended)
    [ $rc = 40 ] || fail "the program's exit code did not come through"
    # The same call at another scale runs at the same time: in one folder each would end the other.
    rc=0; output=$(ZEMO_SESSION_DPI=96 "$stage_run" "$folder/bin/program.exe" "$what" 2>&1) || rc=$?
    grep -q 'folder Z:.*\\stage\\program-[0-9]*-dpi96' <<<"$output" || fail "the scale is no part of the folder's name" ;;
left)
    [ $rc = 95 ] || fail "a child that outlives its program must fail the run"
    grep -q 'still ran' <<<"$output" || fail "the reason is missing" ;;
esac
for file in /proc/[0-9]*/cmdline; do
    line=$(tr '\0' ' ' 2>/dev/null <"$file") || continue
    case $line in *cef.subprocess.exe*sleep*"${folder##*/}"* | *"${folder//\//\\}"*cef.subprocess*) fail "the child still runs: $line" ;; esac
done
echo "as it should be ($what)"
