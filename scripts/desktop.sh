#!/bin/bash
# A small throw-away desktop for a machine without a screen: X server, window manager, tray,
# notification server, sound server with a null sink, accessibility bus.
#
#   scripts/desktop.sh [--tray trayer|xfce|none] [--logs DIR] [--limit SECONDS] [--] COMMAND [ARG...]
#
#   --tray    trayer: icons are embedded windows (XEmbed); xfce: they go over D-Bus
#             (StatusNotifierItem); none: a desktop without a tray. Default: trayer
#   --logs    keep logs and reports of failures in DIR; default: thrown away
#   --limit   end the command after that many seconds (status 124); default 300
#
# The command's exit status is the script's; 97: the desktop did not come up. Several may run at
# the same time: the display number is free, everything else is in a folder of its own.
#
# The command finds DISPLAY, DBUS_SESSION_BUS_ADDRESS, PULSE_SERVER and XDG folders of its own, so
# that no settings leak in or out, and
#   DESKTOP_TMP     scratch folder, removed at the end
#   DESKTOP_LOGS    the folder of --logs
#   DESKTOP_SCREEN  the screen's contents: an XWD file that is always current
#   DESKTOP_MONITOR the source that gives what the null sink plays
#
# All that is started here carries DESKTOP_ID in its environment. At the end exactly the processes
# with this run's DESKTOP_ID are ended, also those that the command left behind.
set -u

here=$(cd "$(dirname "$0")" && pwd)
tray=trayer logs='' limit=300
while [ $# -gt 0 ]; do
    case $1 in
        --tray) tray=$2; shift 2 ;;
        --logs) logs=$2; shift 2 ;;
        --limit) limit=$2; shift 2 ;;
        --) shift; break ;;
        -*) echo "desktop.sh: unknown option $1" >&2; exit 2 ;;
        *) break ;;
    esac
done
case $tray in trayer | xfce | none) ;; *) echo "desktop.sh: no tray named $tray" >&2; exit 2 ;; esac
[ $# -gt 0 ] || { echo "desktop.sh: no command given" >&2; exit 2; }

needed="Xvfb openbox dunst pulseaudio pactl dbus-daemon gdbus xprop xsetroot xdotool wmctrl"
[ "$tray" = xfce ] && needed="$needed xfce4-panel" || needed="$needed trayer"
for program in $needed; do
    command -v "$program" >/dev/null && continue
    echo "desktop.sh: $program is missing; make setup installs it" >&2
    exit 97
done

# ---- a private place --------------------------------------------------------------------------
export DESKTOP_ID DESKTOP_TMP DESKTOP_LOGS DESKTOP_SCREEN DESKTOP_MONITOR
DESKTOP_ID="desktop.$$.$(date +%s%N)"
DESKTOP_TMP=$(mktemp -d "${TMPDIR:-/tmp}/desktop.XXXXXX") || exit 97
DESKTOP_LOGS=$DESKTOP_TMP/logs
if [ -n "$logs" ]; then
    mkdir -p "$logs" || exit 97
    DESKTOP_LOGS=$(cd "$logs" && pwd)
fi
mkdir -p "$DESKTOP_TMP"/{run,config,data,cache,state,screen,services} "$DESKTOP_LOGS"
chmod 700 "$DESKTOP_TMP/run"
export XDG_RUNTIME_DIR=$DESKTOP_TMP/run
export XDG_CONFIG_HOME=$DESKTOP_TMP/config XDG_DATA_HOME=$DESKTOP_TMP/data
export XDG_CACHE_HOME=$DESKTOP_TMP/cache XDG_STATE_HOME=$DESKTOP_TMP/state
export PYTHONDONTWRITEBYTECODE=1
unset WAYLAND_DISPLAY XAUTHORITY SESSION_MANAGER DBUS_SESSION_BUS_ADDRESS AT_SPI_BUS_ADDRESS
unset PULSE_SERVER XDG_CURRENT_DESKTOP DESKTOP_SESSION QT_QPA_PLATFORM

# The processes with this run's mark, without this shell and without what looks for them.
mine() (
    mark=DESKTOP_ID=$DESKTOP_ID
    unset DESKTOP_ID
    grep -lzxF "$mark" /proc/[0-9]*/environ 2>/dev/null | tr -dc '0-9\n'
)
# Ends the X server and the bus last: what hangs on them then ends tidily.
teardown() {
    trap - EXIT
    trap '' INT TERM HUP
    local p
    for p in $(mine); do
        [ "$p" = "${xserver:-}" ] || [ "$p" = "${bus:-}" ] || kill "$p" 2>/dev/null
    done
    for _ in {1..10}; do
        mine | grep -qvx -e "${xserver:-x}" -e "${bus:-x}" || break
        sleep 0.1
    done
    kill ${bus:+"$bus"} ${xserver:+"$xserver"} 2>/dev/null
    for _ in {1..10}; do
        [ -z "$(mine)" ] && break
        sleep 0.1
    done
    for p in $(mine); do kill -KILL "$p" 2>/dev/null; done
    wait 2>/dev/null
    rm -rf "$DESKTOP_TMP"
}
trap teardown EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

fail() {
    echo "desktop.sh: $*" >&2
    for f in "$DESKTOP_LOGS"/*.log; do
        echo "--- $f" >&2
        tail -5 "$f" >&2
    done
    exit 97
}
# until_ok SECONDS WHAT COMMAND...: waits until COMMAND succeeds.
until_ok() {
    local end=$(($(date +%s%N) + $1 * 1000000000)) what=$2
    shift 2
    until "$@" >/dev/null 2>&1; do
        [ "$(date +%s%N)" -lt $end ] || fail "$what did not start"
        sleep 0.03
    done
}

# ---- X server: picks a free display number itself ---------------------------------------------
mkfifo "$DESKTOP_TMP/display" "$DESKTOP_TMP/address"
DESKTOP_SCREEN=$DESKTOP_TMP/screen/Xvfb_screen0
Xvfb -displayfd 7 -screen 0 1280x800x24 -nolisten tcp -noreset -ac -fbdir "$DESKTOP_TMP/screen" \
    7>"$DESKTOP_TMP/display" >"$DESKTOP_LOGS/xvfb.log" 2>&1 &
xserver=$!
read -r -t 30 number <"$DESKTOP_TMP/display" || fail "the X server did not start"
export DISPLAY=:$number

# ---- session bus --------------------------------------------------------------------------------
# As the system's, but nothing on it starts a notification server by itself.
for f in /usr/share/dbus-1/services/*.service; do
    grep -qx 'Name=org.freedesktop.Notifications' "$f" || ln -s "$f" "$DESKTOP_TMP/services/"
done
sed -e "s|@RUN@|$DESKTOP_TMP/run|" -e "s|@SERVICES@|$DESKTOP_TMP/services|" \
    "$here/desktop/bus.conf.in" >"$DESKTOP_TMP/bus.conf"
dbus-daemon --config-file="$DESKTOP_TMP/bus.conf" --nofork --nopidfile --print-address=8 \
    8>"$DESKTOP_TMP/address" >"$DESKTOP_LOGS/dbus.log" 2>&1 &
bus=$!
read -r -t 30 DBUS_SESSION_BUS_ADDRESS <"$DESKTOP_TMP/address" || fail "the bus did not start"
export DBUS_SESSION_BUS_ADDRESS
on_bus() {
    gdbus call --session -d org.freedesktop.DBus -o /org/freedesktop/DBus \
        -m org.freedesktop.DBus.NameHasOwner "$1" | grep -q true
}

# ---- accessibility bus --------------------------------------------------------------------------
export QT_ACCESSIBILITY=1 QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
export GTK_MODULES='' NO_AT_BRIDGE=1  # the desktop's own programs are of no interest there
/usr/libexec/at-spi-bus-launcher --launch-immediately >"$DESKTOP_LOGS/a11y.log" 2>&1 &

# ---- window manager -----------------------------------------------------------------------------
openbox --sm-disable --config-file "$here/desktop/openbox.xml" >"$DESKTOP_LOGS/openbox.log" 2>&1 &
managed() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }
until_ok 20 "the window manager" managed
xsetroot -solid '#406080'

# ---- notification server ------------------------------------------------------------------------
dunst -config "$here/desktop/dunstrc" >"$DESKTOP_LOGS/notify.log" 2>&1 &

# ---- sound: a null sink, whose monitor tells what was played --------------------------------------
DESKTOP_MONITOR=desktop.monitor
pulseaudio -n --daemonize=no --exit-idle-time=-1 --disallow-exit --use-pid-file=no \
    --log-target=stderr -L "module-native-protocol-unix auth-anonymous=1" \
    -L "module-null-sink sink_name=desktop rate=44100 channels=2" \
    -L module-always-sink >"$DESKTOP_LOGS/pulse.log" 2>&1 &
export PULSE_SERVER=unix:$XDG_RUNTIME_DIR/pulse/native

# ---- tray ---------------------------------------------------------------------------------------
if [ "$tray" = trayer ]; then
    trayer --edge bottom --align right --widthtype request --heighttype pixel --height 24 \
        --SetDockType true --SetPartialStrut true --transparent false --tint 0xd0d0d0 \
        >"$DESKTOP_LOGS/tray.log" 2>&1 &
elif [ "$tray" = xfce ]; then
    panel=$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml
    mkdir -p "$panel"
    cp "$here/desktop/xfce4-panel.xml" "$panel/"
    xfce4-panel --disable-wm-check >"$DESKTOP_LOGS/tray.log" 2>&1 &
fi

# ---- until all of it answers --------------------------------------------------------------------
if [ "$tray" = trayer ]; then
    until_ok 20 "the tray" "$here/desktop/tray-owner.py"
elif [ "$tray" = xfce ]; then
    until_ok 30 "the tray" on_bus org.kde.StatusNotifierWatcher
fi
until_ok 20 "the notification server" on_bus org.freedesktop.Notifications
until_ok 20 "the sound server" pactl info
until_ok 20 "the accessibility bus" on_bus org.a11y.Bus
gdbus call --session -d org.a11y.Bus -o /org/a11y/bus -m org.freedesktop.DBus.Properties.Set \
    org.a11y.Status IsEnabled '<true>' >/dev/null 2>&1

# ---- the command: in the background, so that a signal to this script is acted upon at once --------
timeout -k 5 "$limit" "$@" <&0 &
wait $!
status=$?
[ $status = 124 ] && echo "desktop.sh: the command was ended after $limit seconds" >&2
exit $status
