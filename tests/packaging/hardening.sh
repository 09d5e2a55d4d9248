#!/usr/bin/env bash
# Compiles the small program in hardened/ for Linux and for Windows, and looks whether it is protected. It has to notice a
# program without protection, too.
#   hardening.sh FOLDER     FOLDER is for what it builds
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build() { # NAME OPTION...
    local name=$1
    shift
    cmake -S "$here/hardened" -B "$folder/$name" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >"$folder/$name.log"
    cmake --build "$folder/$name" >>"$folder/$name.log" || { cat "$folder/$name.log"; exit 1; }
}
mkdir -p "$1"
folder=$(cd "$1" && pwd)
build linux
build windows -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_CXX_COMPILER=x86_64-w64-mingw32-g++-posix
python3 "$here/headers.py" "$folder/linux/hardened" "$folder/windows/hardened.exe"
# More than fits: stopped before it does harm.
if "$folder/linux/hardened" 64 2>"$folder/said"; then echo "an overflow went unnoticed"; exit 1; fi
grep -q 'buffer overflow detected' "$folder/said"
g++ -O2 -no-pie -z norelro -z lazy -z execstack "$here/hardened/main.cpp" -o "$folder/soft"
x86_64-w64-mingw32-g++-posix -Wl,--disable-dynamicbase,--disable-nxcompat,--disable-high-entropy-va \
    "$here/hardened/main.cpp" -o "$folder/soft.exe"
faults=$(python3 "$here/headers.py" "$folder/soft" "$folder/soft.exe" || true)
for fault in 'not position-independent' 'no RELRO' 'bind all symbols' 'executable stack' 'no stack protector' \
    'no fortified' 'no control-flow' 'lacks high-entropy' 'lacks dynamic base' 'lacks no execution'; do
    grep -q "$fault" <<<"$faults" || { echo "unnoticed: $fault"; exit 1; }
done
