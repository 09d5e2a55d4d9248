# Sourced by the scripts: moves to the project's root, and makes sure of the packages.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

step() { printf '\n== %s\n' "$*"; }
fail() { printf 'error: %s\n' "$*" >&2; exit 1; }

required_packages() { sed -e 's/#.*//' -e '/^[[:space:]]*$/d' scripts/lib/packages.txt; }

missing_packages() {
    local package
    for package in $(required_packages); do
        dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q 'ok installed' || echo "$package"
    done
}

# Installs what is missing on Debian 12; elsewhere says what is needed and stops.
ensure_packages() {
    if ! grep -qs '^ID=debian' /etc/os-release || ! grep -qs '^VERSION_ID="12"' /etc/os-release; then
        [ -n "${TARVO_SKIP_PACKAGES:-}" ] && return
        echo "This script installs packages on Debian 12 only. Install what corresponds to these, then run it again"
        echo "with TARVO_SKIP_PACKAGES=1:"
        required_packages | sed 's/^/  /'
        exit 1
    fi
    local missing sudo=
    missing=$(missing_packages)
    [ -z "$missing" ] && return
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "these packages are missing, and there is no sudo to install them:" $missing
        sudo=sudo
    fi
    step "Installing" $missing
    $sudo apt-get update -qq
    $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null
}

# configure_and_build PRESET [TARGET...]
# Two clean builds give the same bytes: qmlcachegen declares variables in the order of hashes, which the preset sets, and of
# addresses. Some containers don't let these stay.
configure_and_build() {
    local preset=$1 same_addresses=; shift
    setarch -R true 2>/dev/null && same_addresses='setarch -R'
    step "Building: $preset"
    mkdir -p "build/$preset"
    cmake --preset "$preset" >"build/$preset/configure.log" 2>&1 || { cat "build/$preset/configure.log"; exit 1; }
    $same_addresses cmake --build --preset "$preset" ${@:+--target "$@"}
}
