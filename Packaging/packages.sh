# shellcheck shell=bash
# Reads packages.txt and installs what is missing of it. Sourced by run, test and bench.

packages_file="$(dirname "${BASH_SOURCE[0]}")/packages.txt"

say() { printf '\n==> %s\n' "$*"; }

# packages_of SECTION...: the packages of these sections, one a line.
packages_of()
{
    local section
    for section in "$@"; do
        grep -qxF "[$section]" "$packages_file" || { echo "packages.txt has no section [$section]" >&2; return 1; }
        awk -v wanted="[$section]" '
            /^\[/ { inside = ($1 == wanted); next }
            inside && NF && $1 !~ /^#/ { print $1 }' "$packages_file"
    done | awk '!seen[$0]++'
}

# missing_packages SECTION...: those of them that are not installed.
missing_packages()
{
    local package
    packages_of "$@" | while read -r package; do
        dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q 'ok installed$' || echo "$package"
    done
}

# as_root COMMAND...: through sudo only where this is an ordinary user.
as_root()
{
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "Installing packages needs root, and there is no sudo here. As root run:" >&2
        echo "    $*" >&2
        return 1
    fi
}

# install_packages SECTION...: says what it installs, and installs nothing that is there already.
install_packages()
{
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        say "This is not a Debian system: install the counterparts of these yourself."
        packages_of "$@" | sed 's/^/    /'
        return 0
    fi
    packages_of "$@" >/dev/null || return 1
    local missing
    mapfile -t missing < <(missing_packages "$@")
    if [ "${#missing[@]}" -eq 0 ]; then
        say "All packages of the sections '$*' are installed."
        return 0
    fi
    say "Installing ${#missing[@]} packages: ${missing[*]}"
    # A list that can't be refreshed may still be good enough; the installation itself decides.
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -q update \
        || echo "The package lists could not be refreshed; going on with those at hand." >&2
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y \
        -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3 \
        install --no-install-recommends "${missing[@]}"
}

cores() { nproc; }

# build PRESET [TARGET...]: configures and builds with all cores; the compiler cache only where there is one.
build()
{
    local preset=$1
    shift
    if [ -z "${CMAKE_CXX_COMPILER_LAUNCHER:-}" ] && command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_BASEDIR="$PWD"
        # Else it keeps nothing that reads headers compiled beforehand.
        export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
    fi
    say "Building ($preset)"
    cmake --preset "$preset" -Wno-dev --log-level=WARNING \
        && cmake --build --preset "$preset" --parallel "$(cores)" ${1:+--target "$@"}
}
