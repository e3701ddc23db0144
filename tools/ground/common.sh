# Sourced by the other scripts of this folder: where the ground lies, and which Wine it has.
ZEMO_GROUND=${ZEMO_GROUND:-${XDG_CACHE_HOME:-$HOME/.cache}/zemo-ground}
export ZEMO_GROUND
ZEMO_MARK=/etc/zemo-ground  # this file exists inside the root folder only

# "root": everything runs in the root folder.  "host": the machine's own Wine and tools are new enough.
zemo_mode() {
    if [ -e "$ZEMO_MARK" ] || ! [ -s "$ZEMO_GROUND/mode" ]; then echo root; else cat "$ZEMO_GROUND/mode"; fi
}

# Sets WINELOADER and WINESERVER. Debian's `wine` is a script that guesses; the programs behind it are meant here.
zemo_find_wine() {
    if [ "$(zemo_mode)" = root ] || [ -x /usr/lib/wine/wine64 ]; then
        WINELOADER=/usr/lib/wine/wine64 WINESERVER=/usr/lib/wine/wineserver64
    else
        WINELOADER=$(command -v wine64 || command -v wine) WINESERVER=$(command -v wineserver64 || command -v wineserver)
    fi
    export WINELOADER WINESERVER
}

# Removes what a killed session leaves: its folder, its display's socket and lock, its Wine server's socket folder.
zemo_forget_session() {
    local session=$ZEMO_GROUND/sessions/$1 number folder try
    [ -d "$session" ] || return 0
    if [ -s "$session/xvfb" ]; then
        number=$(cat "$session/xvfb")
        for try in {1..20}; do  # a killed display takes a moment to go
            grep -qs "@/tmp/.X11-unix/X$number\$" /proc/net/unix || break
            sleep 0.05
        done
        if ! grep -qs "@/tmp/.X11-unix/X$number\$" /proc/net/unix; then  # nobody listens: ours is gone
            rm -f "/tmp/.X11-unix/X$number" "/tmp/.X$number-lock"
        fi
    fi
    if [ -s "$session/prefix/wineserver" ]; then  # the name that Wine's server chose for its folder
        folder=$(tr -d '\0' <"$session/prefix/wineserver")
        case $folder in wine-[A-Za-z0-9]*) rm -rf "/tmp/${folder%%/*}" ;; esac
    fi
    for try in 1 2 3 4 5; do rm -rf "$session" 2>/dev/null && return 0; sleep 0.2; done
    return 0
}
