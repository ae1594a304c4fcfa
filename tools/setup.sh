# shellcheck shell=bash
# Sourced by the scripts that install or build, before anything else: it remembers how they were called.

called=("$(realpath "$0")" "$@")
top=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")

# Goes on as the owner of the checkout, from the script's beginning, when sudo made it root: what it builds belongs to
# the owner. Root without sudo, in a container for example, stays root.
leave_root() {
  local owner
  if [ "$(id -u)" != 0 ] || [ "${SUDO_UID:-0}" = 0 ]; then return; fi
  owner=$(stat -c %U "$top")
  if [ "$owner" = root ] || [ "$owner" = UNKNOWN ]; then return; fi
  exec setpriv --reuid "$owner" --regid "$(id -g "$owner")" --init-groups \
    env HOME="$(getent passwd "$owner" | cut -d: -f6)" USER="$owner" LOGNAME="$owner" "${called[@]}"
}

# need_packages [PACKAGE...]: installs what building and testing need, and these packages. Root is not needed
# afterwards.
need_packages() {
  "$top/tools/install-packages" --tests "$@"
  leave_root
}

# as_root COMMAND...: asks for no password, since install-packages does so once, where a person sees why.
as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo -n "$@"; fi
}

# run_apt ARGUMENT...: runs apt-get, which asks nothing and writes its progress, for with_progress.
run_apt() {
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o APT::Status-Fd=1 "$@" </dev/null
}

# update_indices [LOG]: brings the package lists up to date, those of i386 among them, and keeps what apt says in the
# file LOG. A list that is out of step makes this fail although the packages can be installed, so only the installation
# itself decides.
update_indices() {
  as_root dpkg --add-architecture i386
  with_progress "Updating the package lists" "${1:-/dev/null}" run_apt update || true
}
