# Shared parts of ./run, ./test and tools/packages: packages, configuration and build. To be sourced; leaves the shell in the tree's
# root with errors fatal. Nothing here is done a second time: what is installed and built is found so at once.
set -euo pipefail
script=$(readlink -f "$0")
root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$root"

Say() { printf '== %s\n' "$*"; }

Fail() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

# MissingPackages LIST...: the names in the lists that are not installed, one per line.
MissingPackages() {
  local names
  mapfile -t names < <(grep -ohE '^[a-z0-9][a-z0-9.+-]*' "$@")
  comm -23 <(printf '%s\n' "${names[@]}" | sort -u) \
    <(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${names[@]}" 2>/dev/null | sed -n 's/^installed //p' | sort -u)
}

# InstallPackages [LIST...]: those of packages.txt, if no list is named.
InstallPackages() {
  [[ $# -gt 0 ]] || set -- packages.txt
  if ! command -v dpkg-query >/dev/null; then
    Say "no dpkg on this system: taking the packages named in $* for installed"
    return
  fi
  local missing asRoot=()
  mapfile -t missing < <(MissingPackages "$@")
  [[ ${#missing[@]} -gt 0 ]] || return 0
  if [[ $(id -u) -ne 0 ]]; then
    command -v sudo >/dev/null ||
      Fail "these packages are missing, and installing them needs root or sudo: ${missing[*]}"
    asRoot=(sudo)
  fi
  Say "installing ${missing[*]}"
  local apt=("${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0)
  "${apt[@]}" update || Fail "the package lists could not be fetched"
  "${apt[@]}" install -y --no-install-recommends "${missing[@]}" </dev/null >/dev/null ||
    Fail "these packages could not be installed: ${missing[*]}"
}

# ContinueAsOwner ARG...: a script started through sudo by the tree's owner goes on as that user once the packages
# are there, so that what it builds belongs to them. What root built earlier is handed over.
ContinueAsOwner() {
  [[ $(id -u) -eq 0 && ${SUDO_USER:-root} != root && $(stat -c %U .) == "$SUDO_USER" ]] || return 0
  if [[ -d build ]]; then
    find build ! -user "$SUDO_USER" -exec chown -h "$SUDO_USER:" {} +
  fi
  exec sudo -H -u "$SUDO_USER" -- "$script" "$@"
}

# Build TARGET...: brings the targets (everything, if none is named) up to date in build/.
Build() {
  if [[ -e build && ! -w build ]]; then
    Fail "build/ belongs to $(stat -c %U build): remove it, or start through sudo"
  fi
  local home
  home=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' build/CMakeCache.txt 2>/dev/null || true)
  if [[ ! -f build/build.ninja || $home != "$root" ]]; then
    Say "configuring build/"
    local options=(--fresh)
    if command -v ccache >/dev/null; then
      options+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    cmake --preset release --log-level=WARNING "${options[@]}"
  fi
  Say "building ${*:-everything}"
  ninja -C build "$@"
}
