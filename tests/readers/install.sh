#!/bin/sh
# Installs the readers of package.json into a folder: install.sh FOLDER
#
# Once: a folder that holds what package-lock.json names is left alone. Where that cannot be done
# it says so and ends with 77, by which ctest knows a test that did not run.
set -u
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$1" && cd "$1" || exit 1
if cmp -s "$here/package-lock.json" package-lock.json && [ -f node_modules/mdb-reader/package.json ]; then
    exit 0
fi
cp "$here/package.json" "$here/package-lock.json" . || exit 1
if ! npm ci --ignore-scripts --no-audit --no-fund >npm.log 2>&1; then
    cat npm.log
    rm -rf node_modules package-lock.json
    echo "mdb-reader could not be installed: what it should read of our files was NOT compared"
    exit 77
fi
