#!/usr/bin/env bash
# Installs the Debian packages that kelCore is built and run with. Installs nothing that is there already, so
# running it again costs next to nothing.
#
# usage: scripts/setup.sh [--ci]
#   --ci   also what continuous integration needs: the formatter and Qt 6
set -euo pipefail

build_packages=(g++ cmake ninja-build ccache pkg-config
                qtbase5-dev libopencv-dev libzstd-dev libgtest-dev libgmock-dev libbenchmark-dev)
# Qt's window-system plug-ins and OpenCV's video decoders come with the packages above.
run_packages=(fonts-dejavu-core)
ci_packages=(git clang-format qt6-base-dev libgl-dev)

say() { printf 'setup: %s\n' "$*"; }
fail() { say "$*" >&2; exit 1; }

wanted=("${build_packages[@]}" "${run_packages[@]}")
case "${1:-}" in
    '') ;;
    --ci) wanted+=("${ci_packages[@]}") ;;
    -h | --help) sed -n '/^# usage/,/^[^#]/s/^# //p' "$0"; exit 0 ;;
    *) printf 'setup: unknown option %s (usage: scripts/setup.sh [--ci])\n' "$1" >&2; exit 2 ;;
esac

command -v apt-get >/dev/null || fail "no Debian system: install by hand what these packages hold: ${wanted[*]}"

missing=()
for package in "${wanted[@]}"; do
    status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) || status=
    [[ $status == installed ]] || missing+=("$package")
done
if ((${#missing[@]} == 0)); then
    say "all ${#wanted[@]} packages are installed"
    exit 0
fi

if ((EUID == 0)); then
    as_root=(env)
elif command -v sudo >/dev/null && { [[ -t 0 ]] || sudo -n true 2>/dev/null; }; then
    as_root=(sudo env)
else
    fail "missing packages need root: apt-get install --no-install-recommends ${missing[*]}"
fi
apt_get=("${as_root[@]}" DEBIAN_FRONTEND=noninteractive
         apt-get -y -q -o Acquire::Retries=3 -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0)

say "installing ${#missing[@]} of ${#wanted[@]} packages: ${missing[*]}"
"${apt_get[@]}" update </dev/null || say "the package lists could not all be updated; going on with those at hand"
"${apt_get[@]}" install --no-install-recommends "${missing[@]}" </dev/null \
    || fail "not everything could be installed: see the lines above"
say "installed ${#missing[@]} packages"
