# Sourced by ./run and ./test: installs what a build needs on Debian 12 and 13, as root or as a user with sudo.

build_packages=(
    g++ cmake ninja-build
    qtbase5-dev qtmultimedia5-dev libqt5multimedia5-plugins libqt5charts5-dev libqt5serialport5-dev libqt5svg5-dev
    qttools5-dev qttools5-dev-tools libqm-dsp-dev
    gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-plugins-ugly gstreamer1.0-libav
    fonts-noto-cjk libgl1-mesa-dri qttranslations5-l10n
)

say() { printf '%s\n' "== $*" >&2; }

installed() { dpkg-query -W -f '${db:Status-Abbrev}' "$1" 2>/dev/null | grep -q '^ii'; }

# install_missing PACKAGE...: installs those that are not there; does nothing where all are, also without the rights to.
install_missing() {
    local missing=() package
    for package in "$@"; do
        installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    if ! command -v apt-get >/dev/null; then
        say "These packages are needed and there is no apt-get to install them: ${missing[*]}"
        return 1
    fi
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            say "Please install these packages first (neither root nor sudo here): ${missing[*]}"
            return 1
        fi
        as_root=(sudo)
    fi
    say "Installing: ${missing[*]}"
    # The list of packages can be old or absent, so a failure renews it once.
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >/dev/null 2>&1 && return 0
    "${as_root[@]}" apt-get update -qq &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" >/dev/null
}

# build PRESET: configures where needed and builds.
build() {
    cmake --preset "$1" >/dev/null && cmake --build --preset "$1"
}
