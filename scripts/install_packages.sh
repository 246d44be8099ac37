#!/usr/bin/env bash
# Installs the named Debian packages that are not installed yet. Does nothing, and needs no rights,
# when all of them are.
set -euo pipefail

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    echo "install_packages: no Debian system; this build needs: $*" >&2
    exit 0
fi

missing=()
for package in "$@"; do
    # A package that was removed is known too, with another status.
    status=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
    [[ $status == "install ok installed" || $status == "hold ok installed" ]] ||
        missing+=("$package")
done
if ((${#missing[@]} == 0)); then
    echo "install_packages: all there: $*"
    exit 0
fi

as_root=()
if (($(id -u) != 0)); then
    if ! command -v sudo >/dev/null; then
        echo "install_packages: run as root, or install sudo, to install: ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi
echo "install_packages: installing ${missing[*]}"
"${as_root[@]}" apt-get update -qq </dev/null
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null
