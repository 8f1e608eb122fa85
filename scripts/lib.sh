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

# Of the given packages that are not installed, those that this system has.
offered_packages() {
    local package
    for package in $(missing_packages "$@"); do
        apt-cache show --no-all-versions "$package" >/dev/null 2>&1 && printf '%s\n' "$package"
    done
    return 0
}

# ensure_packages LIST... installs what is named in the lists and not there yet. What has a "?" behind its name is left out
# on a system that has no such package.
ensure_packages() {
    local names wanted optional missing administrator=()
    mapfile -t names < <(listed_packages "$@")
    mapfile -t wanted < <(printf '%s\n' "${names[@]}" | grep --invert-match '?$')
    mapfile -t optional < <(printf '%s\n' "${names[@]}" | sed -n 's/?$//p')
    if ! command -v dpkg-query >/dev/null; then
        say "This is no Debian system; what is needed here is called there: ${wanted[*]} ${optional[*]}"
        return
    fi
    mapfile -t missing < <(missing_packages "${wanted[@]}" && offered_packages "${optional[@]}")
    [[ ${#missing[@]} -eq 0 ]] && return
    say "Installing ${missing[*]}"
    if [[ $EUID -ne 0 ]]; then
        command -v sudo >/dev/null || fail "run this as root, or install by hand: ${missing[*]}"
        administrator=(sudo)
    fi
    "${administrator[@]}" apt-get update --quiet=2
    mapfile -t missing < <(missing_packages "${wanted[@]}" && offered_packages "${optional[@]}")
    "${administrator[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install --quiet=2 --yes --no-install-recommends "${missing[@]}"
}

# build_preset PRESET [TARGET...] configures a preset if that has not been done with the presets as they are, and builds all
# of it or the targets. Ninja configures again by itself when a CMake file has changed.
build_preset() {
    local preset=$1
    shift
    local folder=$repository/build/$preset log=$repository/build/$preset-configure.log
    local presets=$repository/CMakePresets.json
    mkdir -p "$repository/build"
    if [[ ! -f $folder/build.ninja ]] || ! cmp --silent "$presets" "$folder/configured-with.json"; then
        say "Configuring $preset"
        (cd "$repository" && cmake --preset "$preset" >"$log" 2>&1) || { cat "$log" >&2; return 1; }
        cp "$presets" "$folder/configured-with.json"
    fi
    say "Building $preset"
    (cd "$repository" && cmake --build --preset "$preset" ${1:+--target "$@"})
}

# The sources of this project that are in the given form, new ones included.
source_files() {
    (cd "$repository" && git ls-files --cached --others --exclude-standard -- "$@" | sort -u \
        | while IFS= read -r file; do [[ ! -f $file ]] || printf '%s\n' "$file"; done)
}
