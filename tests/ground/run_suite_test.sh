#!/bin/bash
# run_suite_test.sh RUN_SUITE FOLDER CASE : the command that runs the suite, over a made-up suite of shell lines.
set -uo pipefail
run_suite=$1 folder=$2 case=$3
unset WINE_SESSION  # the suite around this one goes on with its own
rm -rf "$folder"; mkdir -p "$folder"
trap 'rm -rf "$folder"' EXIT
fail() { echo "FAILED: $*"; echo "exit code $rc, output:"; echo "$output"; exit 1; }
suite() { rc=0; output=$("$run_suite" "$folder" "$@" 2>&1) || rc=$?; }
said() { grep -qF -- "$1" <<<"$output" || fail "not said: $1"; }
unsaid() { ! grep -qF -- "$1" <<<"$output" || fail "said: $1"; }
last() { [ "$(tail -n 1 <<<"$output")" = "$1" ] || fail "the last line is not: $1"; }
test_of() { printf 'add_test("%s" sh -c [==[%s]==])\n' "$1" "$2" >>"$folder/CTestTestfile.cmake"; }
count_runs="echo run >>'$folder/runs'"
runs() { [ "$(wc -l <"$folder/runs")" = "$1" ] || fail "run $(wc -l <"$folder/runs") times, not $1"; }

test_of good true
test_of Group/unsteady.1 "$count_runs; [ -e '$folder/once' ] || { touch '$folder/once'; echo what went wrong; exit 3; }"
case $case in
passes)
    suite -R good
    [ $rc = 0 ] || fail "it must pass"
    said "100% tests passed, 0 tests failed out of 1"; unsaid flaky ;;
flaky)
    suite --output-junit "$folder/result.xml"
    [ $rc = 0 ] || fail "one stumble must not fail the run"
    said "flaky: Group/unsteady.1"; said "    what went wrong"; unsaid "failed twice:"
    grep -q "what went wrong" "$folder/flaky/Group_unsteady.1.log" || fail "the output is not kept"
    grep -q 'tests="2"' "$folder/result.xml" || fail "the second run took the place of the first one's results"
    runs 2; last "100% tests passed, 0 tests failed out of 2" ;;
failed)
    test_of bad "echo always; exit 1"
    suite
    [ $rc != 0 ] || fail "a test that fails twice must fail the run"
    said "failed twice: bad"; said "flaky: Group/unsteady.1"; unsaid "flaky: bad"; runs 2
    last "66% tests passed, 1 tests failed out of 3" ;;
many)
    for i in {1..20}; do test_of "bad.$i" "$count_runs; exit 1"; done
    suite
    [ $rc != 0 ] || fail "it must fail"
    said "21 tests failed, more than 20: none is run again"; runs 21 ;;
repeat)
    suite -R unsteady --repeat until-fail:3
    [ $rc != 0 ] || fail "the caller asked for three passes"
    runs 1; unsaid flaky ;;
selection)
    test_of bad "exit 1"
    suite -R unsteady
    [ $rc = 0 ] || fail "only the chosen test counts"
    runs 2; last "100% tests passed, 0 tests failed out of 1" ;;
none)
    suite -R nothing_of_this_name
    [ $rc != 0 ] || fail "a run without a test must fail" ;;
*) rc=; output=; fail "no such case: $case" ;;
esac
echo "as it should be ($case)"
