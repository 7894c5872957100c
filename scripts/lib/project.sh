# Shared by the scripts and .ci/run: the packages that each of them needs, and how the
# project is built.
# shellcheck shell=bash disable=SC2034

project=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd)

build_packages=(
    cmake g++ ninja-build pkgconf
    qt6-base-dev qt6-svg-dev qt6-wayland
    libxcb1-dev libxcb-present-dev libxcb-randr0-dev libxcb-render0-dev libxcb-shape0-dev
    libxcb-composite0-dev libxcb-xfixes0-dev libxcb-xinput-dev
    libglib2.0-dev libwayland-dev libxcursor-dev libxkbcommon-dev libxkbcommon-x11-dev wayland-protocols
    libplist-dev nlohmann-json3-dev
)
# Of KDE's libraries Debian 12 has those for an older Qt only.
if ! grep -q '^VERSION_CODENAME=bookworm$' /etc/os-release; then
    build_packages+=(liblayershellqtinterface-dev)
fi
# Besides those of the build.
package_packages=(dpkg-dev file)
# Whether a display answers is asked with xdpyinfo.
display_packages=(x11-utils)
# The private desktop of the tests, the demo and the screenshots.
desktop_packages=(
    libxcb-res0-dev libxcb-xtest0-dev
    openbox picom xvfb
)
# GNOME Shell without the rest of GNOME, and what a window in it needs.
gnome_packages=(
    adwaita-icon-theme gir1.2-gtk-4.0 gjs gnome-shell libegl1 libgl1-mesa-dri xwayland
)
# What takes the pictures of a screen cast.
cast_packages=(
    gstreamer1.0-pipewire gstreamer1.0-plugins-base gstreamer1.0-tools pipewire wireplumber
)
# KWin without the rest of Plasma, and what its scripts need.
kwin_packages=(
    gir1.2-gtk-4.0 gjs kwin-wayland libegl1 libgl1-mesa-dri plasma-wayland-protocols
    qml-module-qtquick-window2 qml6-module-qtquick-window xwayland
)
test_packages=(
    "${desktop_packages[@]}" "${gnome_packages[@]}" "${kwin_packages[@]}"
    "${cast_packages[@]}"
    dbus-bin dbus-daemon dmz-cursor-theme fish fonts-dejavu-core fonts-inter fonts-noto-cjk fonts-noto-core
    grim libgmock-dev libgtest-dev locales qt6-translations-l10n sway trayer x11-xkb-utils
    x11-xserver-utils xcompmgr xserver-xorg-core xserver-xorg-video-dummy zsh
)
# What starts programs by their desktop entries, and the manual; besides those of the tests.
package_test_packages=(libglib2.0-bin man-db)
demo_packages=(
    "${desktop_packages[@]}"
    dmz-cursor-theme ffmpeg fonts-inter fonts-jetbrains-mono libxcursor1
)
# Besides those, for the sessions that the demo can be played in.
x11_session_packages=()
gnome_session_packages=("${gnome_packages[@]}" dbus-daemon)
kde_session_packages=("${kwin_packages[@]}" dbus-daemon)
sway_session_packages=(sway x11-xserver-utils xwayland)
screenshot_packages=(
    "${desktop_packages[@]}" "${gnome_packages[@]}" "${kwin_packages[@]}"
    dmz-cursor-theme fonts-inter fonts-jetbrains-mono fonts-noto-cjk libxcursor1 trayer
)
check_packages=(
    appstream ccache clang clang-format clang-tidy desktop-file-utils libbenchmark-dev
    libclang-rt-14-dev lintian mandoc python3 shellcheck
)
# What makes a Debian in a folder, and keeps what is compiled there.
debian_packages=(ccache debootstrap)

# Of Debian unstable: the compositors that tell programs where the pointer is.
unstable_packages=(grim labwc sway wlr-randr)
unstable_programs=(grim labwc sway swaymsg wlr-randr)

say() {
    printf '%s\n' "$*"
}

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# missing_packages <package>...: those that are not installed.
missing_packages() {
    local -A installed=()
    local package status
    while read -r package status; do
        [[ $status == installed ]] && installed[$package]=yes
    done < <(dpkg-query --show --showformat '${Package} ${db:Status-Status}\n' "$@" 2>/dev/null)
    for package in "$@"; do
        [[ ${installed[$package]-} ]] || say "$package"
    done
}

# as_administrator <command> <argument>...
as_administrator() {
    if ((EUID == 0)); then
        "$@"
    else
        sudo "$@"
    fi
}

# run_apt <argument>...: without questions.
run_apt() {
    as_administrator env DEBIAN_FRONTEND=noninteractive apt-get --quiet --yes "$@"
}

# ensure_packages <purpose> <package>...: installs what is missing.
ensure_packages() {
    local purpose=$1 missing
    shift
    { command -v apt-get && command -v dpkg-query; } >/dev/null ||
        fail 'this needs Debian or a relative of it (apt-get and dpkg); README.md says what to install elsewhere'
    mapfile -t missing < <(missing_packages "$@")
    ((${#missing[@]})) || return 0

    say "Installing with apt-get, to $purpose: ${missing[*]}"
    ((EUID == 0)) || command -v sudo >/dev/null ||
        fail "not root and no sudo; let an administrator run: apt-get install ${missing[*]}"
    run_apt update || say 'The package lists could not be refreshed; trying with those at hand.'
    run_apt install --no-install-recommends "${missing[@]}" ||
        fail 'apt-get could not install the packages'
}

# Tests must not depend on the language, and what they start reports its faults as they do.
export_test_environment() {
    export LC_ALL=C.UTF-8
    # Without strict_string_checks: the library that reads the keymap copies pieces of unended strings.
    export ASAN_OPTIONS=detect_stack_use_after_return=1:check_initialization_order=1
    export LSAN_OPTIONS=suppressions=$project/tests/leaks.supp:print_suppressions=0
    export UBSAN_OPTIONS=print_stacktrace=1
}

# configure <cmake argument>...: quiet unless it fails.
configure() {
    local output
    output=$(cd "$project" && cmake --log-level=WARNING "$@" 2>&1) || {
        printf '%s\n' "$output" >&2
        fail 'the build could not be configured'
    }
}

# build_release: Vantrel alone, in build/release.
build_release() {
    say 'Building Vantrel (release)'
    configure --preset release -DVANTREL_BENCHMARKS=OFF
    cmake --build "$project/build/release"
}

# build_tool <name>: the project tools/<name>, in build/<name>-tools.
build_tool() {
    say "Building tools/$1"
    configure -S "$project/tools/$1" -B "$project/build/$1-tools" -G Ninja \
        -DCMAKE_BUILD_TYPE=Release
    cmake --build "$project/build/$1-tools"
}

# run_on_private_desktop <command> <argument>...: everything that the command starts and keeps lies
# in one folder and ends with one process. Sets a trap; the last thing that a script does.
run_on_private_desktop() {
    scratch=$(mktemp --directory)
    child=
    trap 'rm -rf -- "$scratch"' EXIT
    trap '[[ -z $child ]] || kill -TERM "$child" 2>/dev/null || true' INT TERM HUP
    TMPDIR=$scratch XDG_RUNTIME_DIR=$scratch "$@" &
    child=$!
    local status=0
    wait "$child" || status=$?
    # A signal ends the wait before the command has ended.
    while kill -0 "$child" 2>/dev/null; do
        status=0
        wait "$child" || status=$?
    done
    return "$status"
}
