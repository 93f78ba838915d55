# Sourced by ./demo, ./test and .ci/run: installs the packages that are missing (Debian 12, Ubuntu 24.04), also those
# that VELAN_PACKAGES names, and configures build/test.

packages=(g++ cmake ninja-build ccache pkg-config python3 zlib1g-dev libicu-dev libssl-dev libhunspell-dev libcld2-dev
  libisal-dev libdeflate-dev   libcli11-dev libfmt-dev libgtest-dev libgmock-dev meson ${VELAN_PACKAGES:-})

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done

if ((${#missing[@]})); then
  as_root=()
  if ((EUID != 0)); then
    command -v sudo >/dev/null || { echo "Please install as root: ${missing[*]}" >&2; exit 2; }
    as_root=(sudo)
  fi
  echo "Installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  "${as_root[@]}" apt-get -qq update
  "${as_root[@]}" apt-get -qq install -y --no-install-recommends "${missing[@]}" >/dev/null
fi

[ -f build/test/build.ninja ] || cmake --preset test --log-level=WARNING
