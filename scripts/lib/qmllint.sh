#!/usr/bin/env bash
# Lints every QML page; a warning fails.
set -euo pipefail
cd "$(dirname "$0")/../.."
lint=$(command -v qmllint6 || echo /usr/lib/qt6/bin/qmllint)
mapfile -t pages < <(git ls-files -- '*.qml')
[ ${#pages[@]} -gt 0 ] || exit 0
"$lint" "${pages[@]}" # any warning gives a non-zero code
echo "${#pages[@]} pages"
