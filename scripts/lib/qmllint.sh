#!/usr/bin/env bash
# Lints every QML page; a warning fails. The view models' types come from the build of the preset "ci".
set -euo pipefail
cd "$(dirname "$0")/../.."
lint=$(command -v qmllint6 || echo /usr/lib/qt6/bin/qmllint)
mapfile -t pages < <(git ls-files -- '*.qml')
[ ${#pages[@]} -gt 0 ] || exit 0
types=${TARVO_QML_TYPES:-build/ci/qml}
[ -e "$types/com/tarvonet/backend/tarvo_backend.qmltypes" ] || cmake --build build/ci --target tarvo_backend
# Any warning gives a non-zero code. Qt 6.4's own lint crashes now and then over the same pages; that says nothing of them.
for _ in 1 2 3; do
    code=0
    "$lint" -I "$types" "${pages[@]}" || code=$?
    [ "$code" -ge 128 ] || break
done
[ "$code" -eq 0 ] || exit "$code"
echo "${#pages[@]} pages"
