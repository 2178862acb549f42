#!/usr/bin/env bash
# Makes docs/report.png: the report on the recorded laptop, as headless Chromium shows it. Say where the command is;
# without a word the demo's is taken (scripts/demo.sh builds it).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
arborist=$(realpath "${1:-build/demo/release/tools/arborist/arborist}")

scripts/install-dependencies.sh chromium python3 sqlite3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
examples/laptop/prepare.sh "$arborist" "$work/laptop" >/dev/null
runner=$(realpath examples/laptop/code-runner.sh)
(cd "$work" && "$arborist" report laptop --code-runner "$runner" --log-level none -o report.html)
mkdir "$work/profile"
chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking \
    --disable-component-update --disable-sync --hide-scrollbars --user-data-dir="$work/profile" \
    --window-size=1180,1500 --screenshot="$work/report.png" "file://$work/report.html" 2>"$work/chromium.log" ||
    { cat "$work/chromium.log" >&2; exit 1; }
cp "$work/report.png" docs/report.png
ls -l docs/report.png
