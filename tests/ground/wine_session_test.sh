#!/bin/bash
# wine_session_test.sh TOOLS CASE : what becomes of a session's window manager, in a session of the test's own.
set -uo pipefail
tools=$1 case=$2 name=${WINE_SESSION:-default}-manager-$2
. "$tools/common.sh"
folder=$ZEMO_GROUND/sessions/$name
trap '"$tools/wine-session" stop "$name"' EXIT
fail() { echo "FAILED: $1"; exit 1; }
"$tools/wine-session" start "$name" || fail "the session did not start"
first=$(cat "$folder/wm.pid")
case $case in
still)
    kill -STOP "$first"
    said=$("$tools/wine-session" manager "$name" 2>&1) || fail "no other one: $said"
    grep -q "window manager of $name does not answer" <<<"$said" || fail "nothing is said: $said"
    grep -q '^State:.*stopped' <<<"$said" || fail "not said what it was doing: $said"
    [ "$(cat "$folder/wm.pid")" != "$first" ] || fail "the same one is named"
    ! kill -0 "$first" 2>/dev/null || fail "the first one is still there"
    said=$("$tools/wine-session" manager "$name" 2>&1) && [ -z "$said" ] || fail "the other one does not answer: $said" ;;
answers)
    said=$("$tools/wine-session" manager "$name" 2>&1) && [ -z "$said" ] || fail "said of one that answers: $said"
    [ "$(cat "$folder/wm.pid")" = "$first" ] && kill -0 "$first" || fail "it was replaced" ;;
*) fail "no such case: $case" ;;
esac
echo "as it should be ($case)"
