#!/bin/bash
# Shows the program on the sample database: scripts/run.sh BUILD-FOLDER
#
# With a display the program is simply started and stays until it is ended. Without one a virtual
# desktop is started for it, and the run ends when the reminder of a minute later was notified.
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
bin=$(cd "$1" && pwd)

if [ -z "${DISPLAY-}${WAYLAND_DISPLAY-}" ]; then
    exec "$root/scripts/desktop.sh" --logs "$root/run/logs" -- \
        /usr/bin/python3 "$root/scripts/show_run.py" "$root/run" "$bin"
fi

/usr/bin/python3 "$root/scripts/make_profile.py" "$root/run" "$bin/tools/remindb"
export XDG_DATA_HOME=$root/run/data XDG_CONFIG_HOME=$root/run/config
export XDG_CACHE_HOME=$root/run/cache XDG_STATE_HOME=$root/run/state
exec "$bin/app/vlreminders" --db-folder "$root/run/db"
