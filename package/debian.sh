#!/bin/bash
# Makes mirvane-service_VERSION_ARCHITECTURE.deb for the Debian that this is. The same commit gives the same bytes.
#
#   package/debian.sh FOLDER VERSION
set -euo pipefail
repo=$(cd "$(dirname "$0")/.." && pwd)
cd "$repo"
umask 022
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
architecture=$(dpkg --print-architecture)
# Where its tools look for it.
content=$root/debian/mirvane-service
doc=usr/share/doc/mirvane-service

# put FILE... FOLDER: with the permissions in `mode`.
put() {
  install -D -m "${mode:-644}" -t "$content/${*: -1}" "${@:1:$#-1}"
}

# The program finds its texts beside itself.
mode=755 put build/native/mirvane-service usr/lib/mirvane-service
strip "$content/usr/lib/mirvane-service/mirvane-service"
put build/native/Lang.dat usr/lib/mirvane-service
mkdir "$content/usr/bin"
ln -s ../lib/mirvane-service/mirvane-service "$content/usr/bin/mirvane-service"
put package/debian/mirvane-service@.service lib/systemd/system
install -d -m 700 "$content/etc/mirvane-service"

# Laid out so that the guides' links lead to what is here.
put docs/service*.md docs/after-a-failure.md docs/reliability.md "$doc/docs"
put service/page/openapi.json "$doc/service/page"
put examples/service/* "$doc/examples/service"
cat licence.md package/notices.txt >"$content/$doc/copyright"
gzip -9n <CHANGELOG.md >"$content/$doc/changelog.gz"

# What it is linked to, by the packages that have it here.
mkdir "$content/DEBIAN" && touch "$root/debian/control"
needs=$(cd "$root" && dpkg-shlibdeps -O "$content/usr/lib/mirvane-service/mirvane-service" | sed -n 's/^shlibs:Depends=//p')
mapfile -t owner <package/owner.txt
cat >"$content/DEBIAN/control" <<END
Package: mirvane-service
Version: $2
Architecture: $architecture
Maintainer: ${owner[0]:-MirvaneEFT} <${owner[1]:-unknown@localhost}>
Depends: adduser, $needs
Installed-Size: $(du -sk --apparent-size "$content" | cut -f 1)
Section: net
Priority: optional
Description: receipts over HTTP, each exactly once, at a fiscal cash register
 Any program that speaks HTTP sells at a Greek fiscal cash register, over a
 serial line or the network. Each register has a service of its own:
 systemctl enable --now mirvane-service@NAME
END
mode=755 put package/debian/{postinst,prerm,postrm} DEBIAN
(cd "$content" && find . -type f -not -path './DEBIAN/*' -printf '%P\0' | sort -z | xargs -0 md5sum >DEBIAN/md5sums)
find "$content" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
dpkg-deb --root-owner-group --threads-max=1 -Zxz --build "$content" "$1/mirvane-service_$2_$architecture.deb" >/dev/null
