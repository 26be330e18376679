# What the verbs of `run` need on this machine, and how it gets there.

# What each purpose needs.
declare -A needed=(
  [emulator]='g++ cmake ninja-build libboost1.81-dev libcli11-dev libsqlite3-dev nlohmann-json3-dev libstb-dev'
  [demo]='g++-mingw-w64-i686-posix mingw-w64-tools faketime wine wine32:i386 wine64 xvfb locales'
  [win64]='g++-mingw-w64-x86-64-posix'
  [service]='libpq-dev'
  [test]='googletest clang-format xdotool imagemagick chromium curl socat jq python3-minimal postgresql
    fp-compiler-3.2.2 fp-units-rtl-3.2.2 fp-units-base-3.2.2 fpc-source-3.2.2 mono-mcs'
  [package]='googletest dpkg-dev nsis sphinx-common python3-sphinx python3-myst-parser furo zip unzip osslsigncode openssl'
  [lint]='clang-tidy'
  [fuzz]='clang-14 libclang-rt-14-dev'
)
# Node may have come with an npm of its own, which Debian's does not bear beside it.
command -v npm >/dev/null || needed[package]+=' nodejs npm'

are_present() {
  local package
  for package; do
    [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] || return 1
  done
}

as_root() {
  if ((EUID == 0)); then "$@"; else sudo "$@"; fi
}

install_packages() {
  # One release for both architectures: Wine's 32-bit and 64-bit halves must be of the very same version.
  local release
  release=$(. /etc/os-release && echo "$VERSION_CODENAME")
  as_root dpkg --add-architecture i386 || return 1
  # An index that does not load, as the one of i386 security updates may, still leaves enough to install from.
  as_root apt-get update || true
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends --allow-downgrades \
    -o APT::Status-Fd=1 -o Dpkg::Options::=--force-unsafe-io -t "$release" "$@"
}

greek_locale_present() {
  [[ $(locale -a) == *el_GR.utf8* ]]
}

generate_greek_locale() {
  echo 'el_GR.UTF-8 UTF-8' | as_root tee -a /etc/locale.gen && as_root locale-gen
}

# setup [PURPOSE...]: installs what these need, or all.
setup() {
  local purpose packages=()
  (($#)) || set -- "${!needed[@]}"
  for purpose; do
    mapfile -t -O "${#packages[@]}" packages < <(xargs -n 1 <<<"${needed[$purpose]}")
  done
  command -v dpkg-query >/dev/null || die "setup supports only Debian; the packages needed are: ${packages[*]}"
  are_present "${packages[@]}" || step "install packages" packages install_packages "${packages[@]}"
  [[ " $* " != *" demo "* ]] || greek_locale_present ||
    step "generate the Greek locale" locale generate_greek_locale
}
