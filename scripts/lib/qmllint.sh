#!/usr/bin/env bash
# Lints every QML page; a warning fails. The view models' types come from the build of the preset "ci".
set -euo pipefail
cd "$(dirname "$0")/../.."
lint=$(command -v qmllint6 || echo /usr/lib/qt6/bin/qmllint)
mapfile -t pages < <(git ls-files -- '*.qml')
[ ${#pages[@]} -gt 0 ] || exit 0
types=${TARVO_QML_TYPES:-build/ci/qml}
[ -e "$types/com/tarvonet/backend/tarvo_backend.qmltypes" ] || cmake --build build/ci --target tarvo_backend
"$lint" -I "$types" "${pages[@]}" # any warning gives a non-zero code
echo "${#pages[@]} pages"
