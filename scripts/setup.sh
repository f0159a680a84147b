#!/bin/sh
# Installs what the lists of packages name and the machine lacks (Debian or Ubuntu, as root or with sudo). Says plainly
# what is missing where it cannot install.
# Use: scripts/setup.sh LIST...
set -eu

missing=""
for package in $(cat "$@"); do
    status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

echo "setup: missing packages:$missing"
if ! command -v apt-get >/dev/null 2>&1; then
    echo "setup: no apt-get here; please install these packages, or what they are called on this system." >&2
    exit 1
fi
if [ "$(id -u)" -eq 0 ]; then
    as_root=""
elif command -v sudo >/dev/null 2>&1; then
    as_root="sudo"
else
    echo "setup: neither root nor sudo; please have an administrator run: apt-get install$missing" >&2
    exit 1
fi
export DEBIAN_FRONTEND=noninteractive
# shellcheck disable=SC2086  # both are lists of words
{
    $as_root apt-get update -q || echo "setup: package lists could not be renewed, the old ones are used." >&2
    if ! $as_root apt-get install -y -q --no-install-recommends $missing; then
        echo "setup: these packages could not be installed:$missing" >&2
        exit 1
    fi
}
