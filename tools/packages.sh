# Installs the Debian packages that the project builds and runs with, as far as they are missing.
# Sourced by ./run and ./test.

needed_packages="clang-19 lld-19 llvm-19 clang-format-19 clang-tidy-19 libclang-rt-19-dev g++ g++-mingw-w64-x86-64 cmake ninja-build
  googletest wine wine64 fonts-wine xvfb xauth xdotool imagemagick"

install_packages() {
    local missing="" package
    for package in $needed_packages; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
    done
    [ -z "$missing" ] && return 0
    echo "Installing:$missing"
    local as_root=""
    [ "$(id -u)" = 0 ] || as_root=sudo
    # One source out of reach is no reason to stop: what counts is whether the packages come.
    $as_root apt-get update -qq || echo "Not every package list could be refreshed."
    # shellcheck disable=SC2086 # one word per package
    DEBIAN_FRONTEND=noninteractive $as_root apt-get install -y -qq --no-install-recommends $missing >/dev/null
}
