# Shared by run and test; sourced, not run. Expects the working directory to be the project's root.
# shellcheck shell=bash

say() { printf '%s\n' "== $*"; }

fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

is_macos() { [ "$(uname -s)" = Darwin ]; }

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

# three_times COMMAND...: for downloads; tried again where it fails, after 5 and after 15 seconds.
three_times() {
    "$@" || { sleep 5 && "$@"; } || { sleep 15 && "$@"; }
}

is_installed_debian() {
    dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null | grep -qx installed
}

# update_debian: fetches apt's lists, once. One that cannot be fetched, which apt by itself takes for
# no error, may be of a source that nothing here needs.
updated=false has_all_lists=true
update_debian() {
    ! $updated || return 0
    as_root apt-get update --quiet=2 -o APT::Update::Error-Mode=any || has_all_lists=false
    updated=true
}

# debian_offers PACKAGE...: each is installed or can be, by lists that are fetched before. Fails where
# a package might be in a list that could not be fetched.
debian_offers() {
    local package policy
    for package in "$@"; do
        ! is_installed_debian "$package" || continue
        update_debian
        policy=$(LC_ALL=C apt-cache policy "$package") || fail "apt does not tell of $package"
        ! grep -q '^ *Candidate: [^(]' <<<"$policy" || continue
        $has_all_lists || fail "apt could not fetch all lists of packages, and does not know $package"
        return 1
    done
}

# install_debian PACKAGE...: installs the packages that are missing.
install_debian() {
    local package missing=()
    for package in "$@"; do
        is_installed_debian "$package" || missing+=("$package")
    done
    [ "${#missing[@]}" -gt 0 ] || return 0
    say "Installing ${missing[*]}"
    update_debian
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install --quiet=2 --yes --no-install-recommends "${missing[@]}" >/dev/null
}

# homebrew_offers FORMULA: it is installed or can be.
homebrew_offers() {
    local said
    ! brew list --versions "$1" >/dev/null || return 0
    if said=$(brew info --json=v2 --formula "$1" 2>&1); then
        ! grep -Eq '"disabled": *true' <<<"$said"
    else
        grep -q 'No available formula' <<<"$said" || fail "$said"
        return 1
    fi
}

# install_homebrew FORMULA...: the same on macOS.
install_homebrew() {
    local formula
    command -v brew >/dev/null || fail "Homebrew is needed to install $*: see https://brew.sh"
    for formula in "$@"; do
        brew list --versions "$formula" >/dev/null || {
            say "Installing $formula"
            brew install --quiet "$formula"
        }
    done
}

# The presets of the release and of the tests, for run and test. These names stand for Qt 6 as well
# where the system gives no other.
# shellcheck disable=SC2034
qt=5 release=release development=dev
# shellcheck disable=SC2034
take_qt6() { qt=6 release=release-qt6 development=qt6; }

# install_homebrew_qt: sets `formula` to that of the Qt which is then installed.
install_homebrew_qt() {
    formula=qt
    if [ "$qt" = 5 ]; then
        if homebrew_offers qt@5; then formula=qt@5; else
            say "Homebrew does not give qt@5: taking Qt 6"
        fi
    fi
    install_homebrew "$formula"
}

# install_debian_qt: the same on Debian.
install_debian_qt() {
    local qt5=(qtbase5-dev libqt5sql5-sqlite qttools5-dev qttools5-dev-tools qttranslations5-l10n)
    if [ "$qt" = 5 ]; then
        if debian_offers "${qt5[@]}"; then
            install_debian "${qt5[@]}"
            return
        fi
        say "apt does not give Qt 5: taking Qt 6"
    fi
    install_debian qt6-base-dev libqt6sql6-sqlite qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools \
        qt6-translations-l10n
}

install_build_needs() {
    local formula
    if is_macos; then
        install_homebrew cmake ninja nlohmann-json cli11 libcsv
        install_homebrew_qt
        CMAKE_PREFIX_PATH="$(brew --prefix "$formula")${CMAKE_PREFIX_PATH:+:$CMAKE_PREFIX_PATH}"
        export CMAKE_PREFIX_PATH
    elif command -v apt-get >/dev/null; then
        install_debian build-essential cmake ninja-build nlohmann-json3-dev libcli11-dev libcsv-dev
        install_debian_qt
    else
        say "Neither Debian, Ubuntu nor macOS: taking what is installed"
    fi
}

# xrdb and xrandr, which tell the launcher the desktop's scale.
install_scale_needs() {
    is_macos || ! command -v apt-get >/dev/null || install_debian x11-xserver-utils
}

# What a virtual X server, mouse, keyboard and terminal need, and the fonts of both languages.
install_virtual_needs() {
    install_debian xvfb openbox xdotool wmctrl imagemagick jq xterm fonts-dejavu-core fonts-noto-cjk
}

# build PRESET [OPTION...]: configures and builds into build/PRESET; the options go to the build.
build() {
    local preset=$1
    shift
    say "Building ($preset)"
    mkdir -p build
    cmake --preset "$preset" >"build/configure-$preset.log" 2>&1 || {
        cat "build/configure-$preset.log" >&2
        fail "The build could not be configured"
    }
    cmake --build --preset "$preset" --parallel "$@"
}
