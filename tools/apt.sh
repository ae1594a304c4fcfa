# Sourced by the scripts that need Debian packages.

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# Brings the package indices up to date, i386 among them. An index that is out of step makes this fail although the
# packages can be installed, so only the installation itself decides.
update_indices() {
  as_root dpkg --add-architecture i386
  as_root apt-get update -qq || echo "$(basename "$0"): apt-get update reported an error; going on" >&2
}
