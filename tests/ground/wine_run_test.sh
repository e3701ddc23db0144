#!/bin/bash
# wine_run_test.sh WINE_RUN FOLDER CASE : in which session a program runs, with a made-up loader that says it.
set -uo pipefail
wine_run=$1 folder=$2 case=$3
rm -rf "$folder"
trap 'rm -rf "$folder"' EXIT
for session in one one-front; do
    at=$folder/sessions/$session
    mkdir -p "$at"; echo "WINELOADER='$at/loader'" >"$at/env"
    printf '#!/bin/sh\necho %s "$WINE_SESSION"\n' $session >"$at/loader"; chmod +x "$at/loader"
done
unset ZEMO_FRONT_SESSION
wanted=one
case $case in
front) export ZEMO_FRONT_SESSION=1; wanted=one-front ;;
none) export ZEMO_FRONT_SESSION=1; rm -r "$folder/sessions/one-front" ;;
other) ;;
*) echo "no such case: $case"; exit 1 ;;
esac
said=$(ZEMO_GROUND=$folder WINE_SESSION=one "$wine_run" program.exe 2>&1)
[ "$said" = "$wanted $wanted" ] || { echo "FAILED: not in the session $wanted but: $said"; exit 1; }
echo "as it should be ($case)"
