#!/bin/sh
# check_format.sh [--fix]: tells which sources are not in the project's format, or brings them into it.
set -eu
cd "$(dirname "$0")/.."
command -v clang-format >/dev/null 2>&1 || scripts/install_packages.sh clang-format
mode="--dry-run --Werror"
[ "${1:-}" = "--fix" ] && mode=-i
echo "Checking the format ..."
git ls-files -z '*.h' '*.cpp' | xargs -0 clang-format $mode
