#!/usr/bin/env bash
# Compiles the installer for Windows over a small staged folder. Where there is Wine it also installs, updates and
# uninstalls: the data of the pilot stay unless he wants them gone.
#   installer.sh SOURCE FOLDER     FOLDER is emptied
set -euo pipefail
source=$1
rm -rf "$2"
mkdir -p "$2"
folder=$(cd "$2" && pwd)
fail() { echo "$*"; exit 1; }

make_setup() { # VERSION
    "$source/packaging/windows/file_list.py" "$folder/stage" >"$folder/list.nsh"
    makensis -V2 -INPUTCHARSET UTF8 "-DVERSION=$1" "-DSTAGE=$folder/stage" "-DFILES=$folder/list.nsh" \
        "-DOUTPUT=$folder/setup-$1.exe" "$source/packaging/windows/TarvoClient.nsi"
}
mkdir -p "$folder/stage/plugins/platforms"
echo old >"$folder/stage/TarvoClient.exe"
echo old >"$folder/stage/plugins/platforms/qwindows.dll"
make_setup 3.0.0
echo new >"$folder/stage/TarvoClient.exe"
make_setup 3.1.0
"$source/tests/packaging/headers.py" "$folder/setup-3.0.0.exe" || true # says which protection makensis gives

if ! command -v wine >/dev/null; then
    echo "not run: there is no Wine here"
    exit 0
fi
export WINEPREFIX=$folder/wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree=;mshtml=;winemenubuilder.exe=d'
run() { env -u DISPLAY timeout 120 wine "$@"; }
trap 'wineserver -k || true' EXIT
run "$folder/setup-3.0.0.exe" /S
at=$(find "$folder/wine" -path '*/Programs/TarvoClient' -type d)
[ "$(cat "$at/TarvoClient.exe")" = old ] || fail "nothing was installed"
run reg query 'HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\TarvoClient' /v DisplayVersion | grep -q 3.0.0
echo mine >"$at/config.ini"
mkdir "$at/logs"
echo mine >"$at/logs/a.log"
run "$folder/setup-3.1.0.exe" /S
[ "$(cat "$at/TarvoClient.exe") $(cat "$at/config.ini")" = 'new mine' ] || fail "the update took the data or brought nothing"
# "_?=" keeps the uninstaller from going on in a copy of itself, which nobody could wait for.
run "$at/uninstall.exe" /S "_?=$(run winepath -w "$at" | tr -d '\r')"
[ ! -e "$at/TarvoClient.exe" ] && [ ! -e "$at/plugins" ] || fail "the program is still there"
[ "$(cat "$at/config.ini" "$at/logs/a.log")" = $'mine\nmine' ] || fail "the data went with the program"
run "$folder/setup-3.1.0.exe" /S
run "$at/uninstall.exe" /S /DELETEDATA "_?=$(run winepath -w "$at" | tr -d '\r')"
[ ! -e "$at/config.ini" ] && [ ! -e "$at/logs" ] || fail "the data are still there"
echo "installed, updated, uninstalled"
