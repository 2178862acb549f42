#!/usr/bin/env bash
# Makes a bundle that can be run out of this example, which keeps everything as text: copies it, imports the events
# into log.db, makes the panel's databases (one of them zipped) out of SQL, and records the keyboard's repair.
set -euo pipefail
if [ $# -ne 2 ]; then
    echo "usage: prepare.sh ARBORIST TARGET" >&2
    exit 2
fi
arborist=$(realpath "$1")
example=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
if [ -e "$2" ] && [ ! -f "$2/bundle.json" ]; then
    echo "$2 exists and is no bundle; it is left alone" >&2
    exit 1
fi
rm -rf "$2"
mkdir -p "$2"
cp -r "$example/." "$2"
cd "$2"

log=programdata/Comms/Lumbra/workDir/0/log.db
mkdir -p "$(dirname "$log")"
"$arborist" log import events.jsonl --to "$log" --tz CET-1CEST,M3.5.0,M10.5.0/3

panel=device/data/panel
mkdir -p "$panel"
sqlite3 "$panel/panel_a.db" <panel-sql/panel_a.sql
sqlite3 panel_b.db <panel-sql/panel_b.sql
python3 -m zipfile -c "$panel/panel_b.zip" panel_b.db
rm panel_b.db

"$arborist" repair record . REPAIR_KEYBOARD --now "2024-05-03 09:00:00"
