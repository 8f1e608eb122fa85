# Sourced by the commands in this directory.

repository=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '%s\n' "$*"; }

fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# The names in scripts/packages/LIST.txt for each LIST.
listed_packages() {
    local list
    for list in "$@"; do
        sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$repository/scripts/packages/$list.txt"
    done | sort -u
}

# The given packages that are not installed.
missing_packages() {
    local installed
    installed=$(dpkg-query --show --showformat '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null \
        | sed -n 's/^installed //p' | sort -u) || true
    comm -23 <(printf '%s\n' "$@" | sort -u) <(printf '%s\n' "$installed")
}

# ensure_packages LIST... installs what is named in the lists and not there yet.
ensure_packages() {
    local wanted missing administrator=()
    mapfile -t wanted < <(listed_packages "$@")
    if ! command -v dpkg-query >/dev/null; then
        say "This is no Debian system; what is needed here is called there: ${wanted[*]}"
        return
    fi
    mapfile -t missing < <(missing_packages "${wanted[@]}")
    [[ ${#missing[@]} -eq 0 ]] && return
    say "Installing ${missing[*]}"
    if [[ $EUID -ne 0 ]]; then
        command -v sudo >/dev/null || fail "run this as root, or install by hand: ${missing[*]}"
        administrator=(sudo)
    fi
    "${administrator[@]}" apt-get update --quiet=2
    "${administrator[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install --quiet=2 --yes --no-install-recommends "${missing[@]}"
}

# build_preset PRESET [TARGET...] configures a preset if that has not been done, and builds all of it or the targets.
# Ninja configures again by itself when a CMake file has changed.
build_preset() {
    local preset=$1
    shift
    local log="$repository/build/$preset-configure.log"
    mkdir -p "$repository/build"
    if [[ ! -f $repository/build/$preset/build.ninja ]]; then
        say "Configuring $preset"
        (cd "$repository" && cmake --preset "$preset" >"$log" 2>&1) || { cat "$log" >&2; return 1; }
    fi
    say "Building $preset"
    (cd "$repository" && cmake --build --preset "$preset" ${1:+--target "$@"})
}

# The sources of this project that are in the given form, new ones included.
source_files() {
    (cd "$repository" && git ls-files --cached --others --exclude-standard -- "$@" | sort -u \
        | while IFS= read -r file; do [[ ! -f $file ]] || printf '%s\n' "$file"; done)
}
