#!/usr/bin/env bash
# Installs the missing distribution packages. Debian 12 or a current Ubuntu.
#   run    for the built player and the sample music
#   build  also for compiling
#   window for building the player and its window
#   test   also for the tests and the lint (the default)
#   package  for building the packages and looking at them
#   windows  for building the component for Windows and testing it here
set -euo pipefail

# One word per need, with alternatives between bars, preferred one first, where distributions differ.
run_packages=(ffmpeg)
build_packages=(g++ cmake ninja-build pkg-config ccache nlohmann-json3-dev libcli11-dev libsqlite3-dev libssl-dev
    "libtag1-dev|libtag-dev" libmpv-dev libutf8proc-dev
    libsystemd-dev libmpdclient-dev)
window_packages=(qt6-base-dev fonts-dejavu-core)
test_packages=(git libgtest-dev libgmock-dev libbenchmark-dev libpugixml-dev libexpat1-dev libavformat-dev clang libclang-rt-dev clang-format
    clang-tidy shellcheck tzdata sox libsox-fmt-all flac vorbis-tools opus-tools wavpack python3 python3-mutagen attr strace
    dbus python3-dbus-next playerctl mpd mpv mpv-mpris vlc-bin vlc-plugin-base xvfb xauth zsh fish groff)
windows_packages=(g++-mingw-w64-x86-64-posix wine wine64 xvfb xauth googletest python3 imagemagick)
package_packages=(git dpkg-dev debhelper fakeroot lowdown lintian zip)

needs=("${run_packages[@]}")
case "${1:-test}" in
    run) ;;
    build) needs+=("${build_packages[@]}") ;;
    window) needs+=("${build_packages[@]}" "${window_packages[@]}") ;;
    test) needs+=("${build_packages[@]}" "${window_packages[@]}" "${test_packages[@]}") ;;
    package) needs+=("${build_packages[@]}" "${window_packages[@]}" "${package_packages[@]}") ;;
    windows) needs=("${build_packages[@]}" "${windows_packages[@]}") ;;
    -h | --help)
        sed -n '2,8s/^# \{0,1\}//p' "$0"
        exit 0
        ;;
    *)
        echo "install-packages: unknown set '$1'; use run, build, window, test, package or windows" >&2
        exit 2
        ;;
esac

if ! command -v dpkg-query >/dev/null; then
    echo "install-packages: this system has no dpkg. Please install the counterparts of these packages yourself:" >&2
    printf '  %s\n' "${needs[@]}" >&2
    exit 1
fi

mapfile -t names < <(printf '%s\n' "${needs[@]}" | tr '|' '\n')
# Fails when any name is unknown, but still prints the others.
installed=$(dpkg-query -W -f ' ${Package}:${db:Status-Status} ' "${names[@]}" 2>/dev/null || true)

missing=()
for need in "${needs[@]}"; do
    found=no
    for name in ${need//|/ }; do
        if [[ $installed == *" $name:installed "* ]]; then found=yes; fi
    done
    if [[ $found == no ]]; then missing+=("$need"); fi
done
if ((${#missing[@]} == 0)); then exit 0; fi

as_root=()
if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
        echo "install-packages: these packages are missing, and only root can install them: ${missing[*]}" >&2
        echo "Run as root:  apt-get install ${missing[*]%%|*}" >&2
        exit 1
    fi
    as_root=(sudo)
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
apt() {
    if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y "$@" >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        echo "install-packages: 'apt-get $1' failed; the reason stands above. Is the network up, and are the package sources right?" >&2
        exit 1
    fi
}

echo "Installing ${#missing[@]} missing packages: ${missing[*]%%|*}"
apt update
names=()
for need in "${missing[@]}"; do
    chosen=${need%%|*}
    for name in ${need//|/ }; do
        if apt-cache show "$name" >/dev/null 2>&1; then
            chosen=$name
            break
        fi
    done
    names+=("$chosen")
done
apt install --no-install-recommends "${names[@]}"
