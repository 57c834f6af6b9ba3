#!/bin/sh
# install_packages.sh PACKAGE...: installs the Debian packages that are missing, by name. Quiet when none is.
set -eu
missing=""
for package in "$@"; do
    status=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=""
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null 2>&1; then
        echo "These packages are missing, and installing them needs root:$missing" >&2
        exit 1
    fi
    as_root=sudo
fi
echo "Installing:$missing"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { $as_root apt-get update -qq && DEBIAN_FRONTEND=noninteractive \
       $as_root apt-get install -y -qq --no-install-recommends $missing; } >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
