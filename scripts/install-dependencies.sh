#!/usr/bin/env bash
# Installs the Debian packages that are named as arguments and missing; as root, or with sudo.
set -euo pipefail

missing=()
for package in "$@"; do
    if [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)" != installed ]; then
        missing+=("$package")
    fi
done
if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "These packages are missing: ${missing[*]}" >&2
        echo "Install them as root, or install sudo." >&2
        exit 1
    fi
    as_root=(sudo)
fi
echo "== Installing ${missing[*]}"
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
