#!/bin/bash
# discover_tests_test.sh SCRIPT FOLDER CASE : which tests of a program become one test of the suite, over a made-up program.
set -uo pipefail
script=$1 folder=$2 case=$3
label=engine; [ "$case" != front ] || label=window
rm -rf "$folder"; mkdir -p "$folder"
trap 'rm -rf "$folder"' EXIT
fail() { echo "FAILED: $*"; echo "$names"; cat "$folder/asked" 2>/dev/null; exit 1; }
cat >"$folder/program" <<'PROGRAM'
#!/bin/sh
case $1 in
--gtest_list_tests)
    echo x >>"$(dirname "$0")/listed"
    printf 'Running main()\n%s.\n' Pages
    printf '  %s\n' Opens Closes Stops FileMissing OnScreen Wide_Scale150
    printf 'Each/Way.\n  Ends/left  # GetParam() = "left"\n  Ends/right  # GetParam() = "right"\nOther.\n  One\n' ;;
*) echo "$1 ${ZEMO_SESSION_DPI:-}${ZEMO_FRONT_SESSION:+front}" >>"$(dirname "$0")/asked" ;;
esac
PROGRAM
chmod +x "$folder/program"
cat >"$folder/CTestTestfile.cmake" <<LIST
set(PROGRAM "$folder/program")
set(LIST "$folder/list")
set(FOLDER "$folder")
set(EMULATOR "")
set(LABEL $label)
set(LIMITS TIMEOUT;10)
set(TOGETHER "Pages.*:Each/Way.*-Pages.Stops")
include("$script")
LIST
suite() { names=$(ctest --test-dir "$folder" "$@" 2>&1 | sed -n 's/.*\('$label'\.[^ ]*\).*/\1/p' | sort -u); }
is() { [ "$(tr '\n' ' ' <<<"$names")" = "$* " ] || fail "these are not: $*"; }
asked() { grep -qxF -- "$1" "$folder/asked" || fail "not asked for: $1"; }

case $case in
together)
    unset ZEMO_TESTS_ALONE; suite
    is engine.Each/Way engine.Other.One engine.Pages engine.Pages.FileMissing engine.Pages.OnScreen engine.Pages.Scale150 engine.Pages.Stops
    asked "--gtest_filter=Pages.Opens:Pages.Closes "; asked "--gtest_filter=Each/Way.Ends/left:Each/Way.Ends/right "
    asked "--gtest_filter=Pages.Wide_Scale150 144"; asked "--gtest_filter=Pages.Stops " ;;
alone)
    export ZEMO_TESTS_ALONE=1; suite
    is engine.Each/Way.Ends/left engine.Each/Way.Ends/right engine.Other.One engine.Pages.Closes engine.Pages.FileMissing engine.Pages.OnScreen engine.Pages.Opens engine.Pages.Stops engine.Pages.Wide_Scale150
    asked "--gtest_filter=Pages.Wide_Scale150 144" ;;
front)
    unset ZEMO_TESTS_ALONE; suite
    asked "--gtest_filter=Pages.Stops front"; asked "--gtest_filter=Other.One front" ;;
listed)
    suite -N; suite -N
    [ "$(wc -l <"$folder/listed")" = 1 ] || fail "a program that did not change is asked again"
    touch -d '+1 minute' "$folder/program"; suite -N
    [ "$(wc -l <"$folder/listed")" = 2 ] || fail "a new program is not asked" ;;
*) names=; fail "no such case: $case" ;;
esac
echo "as it should be ($case)"
