# shellcheck shell=bash
# Sourced by the scripts that need a bare Debian: a folder in which debootstrap installs as little as possible. Needs
# root (debootstrap, chroot). The bare system reaches Debian's packages as this one does: it is given this machine's own
# apt sources, with the suite replaced, and apt's Acquire settings (a proxy, for example).

need_root() {
  if [ "$(id -u)" = 0 ]; then return; fi
  echo "$(basename "$0"): this needs root: debootstrap and chroot do" >&2
  exit 1
}

# list_sources SUITE: prints "URI SUITE" for each of Debian's sources on this machine: the release itself, its updates and
# its security.
list_sources() {
  local own
  own=$(. /etc/os-release && echo "$VERSION_CODENAME")
  apt-get indextargets --format '$(REPO_URI) $(RELEASE)' 'Created-By: Packages' |
    grep -E " $own(-updates|-security)?$" | sed "s/ $own/ $1/" | sort -u
}

# in_bare FOLDER COMMAND...: runs a command as root in the bare system. Its mounts and processes end with it.
in_bare() {
  unshare --mount --pid --fork --kill-child bash -euc '
    mount -t proc proc "$1/proc"
    mount --rbind /sys "$1/sys"
    mount --rbind /dev "$1/dev"
    exec chroot "$1" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 "${@:2}"
  ' - "$@"
}

# make_bare FOLDER SUITE ARCHITECTURE PACKAGE...: makes a bare system with these packages and an ordinary user named
# stranger. If a program fails, shows what all of them wrote.
make_bare() {
  local log
  log=$(mktemp)
  fill_bare "$@" >"$log" 2>&1 || { tail -n 20 "$log"; rm "$log"; return 1; } >&2
  rm "$log"
}

fill_bare() {
  local bare=$1 suite=$2 architecture=$3 main
  main=$(list_sources "$suite" | awk -v suite="$suite" '$2 == suite { print $1; exit }')
  tools/install-packages debootstrap || return
  [ -n "$main" ] || { echo "this machine's apt has no source of its own Debian release"; return 1; }
  debootstrap --variant=minbase --arch="$architecture" "$suite" "$bare" "$main" || return
  list_sources "$suite" | sed 's/^/deb /; s/$/ main/' >"$bare/etc/apt/sources.list"
  apt-config dump Acquire >"$bare/etc/apt/apt.conf.d/99acquire"
  if [ -e /etc/resolv.conf ]; then cp -L /etc/resolv.conf "$bare/etc/resolv.conf"; fi
  echo "127.0.1.1 $(hostname)" >>"$bare/etc/hosts"  # sudo wants to know it
  in_bare "$bare" bash -euc '
    useradd --create-home stranger
    apt-get update || true  # a list of i386 that is out of step does no harm
    DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@"
  ' - "${@:4}"
}
