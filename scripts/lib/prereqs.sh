# Shared by the scripts in this folder: installs Debian packages that are
# missing, once per script run. Sourced, not run.

# missing_packages PKG...: prints, one per line, every PKG that dpkg does not
# report as installed.
missing_packages() {
  local pkg
  for pkg in "$@"; do
    if [ "$(dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null || true)" != "install ok installed" ]; then
      echo "$pkg"
    fi
  done
}

# ensure_packages PKG...: installs with apt-get every PKG that dpkg does not
# report as installed. Runs `apt-get update` first, as a fresh machine needs.
ensure_packages() {
  local missing=()
  mapfile -t missing < <(missing_packages "$@")
  if [ "${#missing[@]}" -eq 0 ]; then
    return 0
  fi
  echo "== Installing missing packages: ${missing[*]}"
  local sudo=""
  if [ "$(id -u)" -ne 0 ]; then
    sudo="sudo"
  fi
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq
  $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# The packages every C++ build of the project needs.
WEVLIN_BUILD_PACKAGES=(cmake ninja-build g++ make libgtest-dev libgmock-dev pkg-config)
