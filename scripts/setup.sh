#!/usr/bin/env bash
# Installs the Debian packages that kelCore is built and run with. Installs nothing that is there already, so
# running it again costs next to nothing.
#
# usage: scripts/setup.sh [--qt6 | --ci]
#   --qt6   also what a build with Qt 6 needs
#   --ci    also what continuous integration needs: Qt 6, the formatter, the checkers and the page generator
#
# Installs as root or through sudo, which asks for a password at a terminal, and never where CI is set.
source "$(dirname "$(realpath "${BASH_SOURCE[0]}")")/common.sh"

build_packages=(g++ cmake ninja-build ccache pkg-config
                qtbase5-dev libopencv-dev libzstd-dev libgtest-dev libgmock-dev libbenchmark-dev)
# Qt's window-system plug-ins and OpenCV's video decoders come with the packages above.
run_packages=(fonts-dejavu-core)
qt6_packages=(qt6-base-dev libgl-dev)
ci_packages=(git clang-format clang-tidy doxygen shellcheck)

wanted=("${build_packages[@]}" "${run_packages[@]}")
(($# < 2)) || misused "more than one option"
case ${1:-} in
    '') ;;
    --qt6) wanted+=("${qt6_packages[@]}") ;;
    --ci) wanted+=("${qt6_packages[@]}" "${ci_packages[@]}") ;;
    -h | --help) usage; exit 0 ;;
    *) misused "unknown option $1" ;;
esac

command -v apt-get dpkg-query >/dev/null \
    || fail "no Debian system: install by hand what these packages hold: ${wanted[*]}"

missing=()
for package in "${wanted[@]}"; do
    status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) || status=
    [[ $status == installed ]] || missing+=("$package")
done
if ((${#missing[@]} == 0)); then
    say "all ${#wanted[@]} packages are installed"
    exit 0
fi

at_terminal() { [[ -z ${CI:-} ]] && { : </dev/tty; } 2>/dev/null; }

if ((EUID == 0)); then
    as_root=(env)
elif command -v sudo >/dev/null && { at_terminal || sudo -n true 2>/dev/null; }; then
    as_root=(sudo env)
else
    fail "missing packages need root: apt-get install --no-install-recommends ${missing[*]}"
fi
apt_get=("${as_root[@]}" DEBIAN_FRONTEND=noninteractive
         apt-get -y -q -o Acquire::Retries=3 -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0)

say "installing ${#missing[@]} of ${#wanted[@]} packages: ${missing[*]}"
"${apt_get[@]}" update || say "the package lists could not all be updated; going on with those at hand"
"${apt_get[@]}" install --no-install-recommends "${missing[@]}" \
    || fail "not everything could be installed: see the lines above"
say "installed ${#missing[@]} packages"
