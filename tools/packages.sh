# shellcheck shell=bash
# Installs the Debian packages that the project builds and runs with, as far as they are missing.
# Sourced behind tools/wine.sh.

needed_packages="clang-19 lld-19 llvm-19 clang-format-19 clang-tidy-19 libclang-rt-19-dev libc++-19-dev g++ g++-mingw-w64-x86-64 cmake ninja-build git
  googletest wine wine64 fonts-wine xvfb xdotool imagemagick"

install_packages() {
    local missing="" package
    for package in $needed_packages; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
    done
    [ -z "$missing" ] && return 0
    echo "Installing:$missing" >&2
    # The setting goes behind sudo, which hands on nothing of what stands before it.
    local as_root=(env DEBIAN_FRONTEND=noninteractive)
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null || die "Packages are missing and there is no sudo. As root: apt-get install$missing"
        as_root=(sudo "${as_root[@]}")
    fi
    # One source out of reach is no reason to stop: what counts is whether the packages come.
    "${as_root[@]}" apt-get update -qq || echo "Not every package list could be refreshed." >&2
    # Another installation on this machine is waited for.
    # shellcheck disable=SC2086 # one word per package
    "${as_root[@]}" apt-get -o DPkg::Lock::Timeout=600 install -y -qq --no-install-recommends $missing >/dev/null ||
        die "These packages could not be installed:$missing"
}
