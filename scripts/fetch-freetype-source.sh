#!/usr/bin/env bash
# Unpacks Debian's FreeType source package, with Debian's patches applied,
# into DEST, for the builds that have no system FreeType (MinGW, Emscripten).
# The deb-src entry goes to apt on the command line; the system's lists stay
# as they are. Does nothing when DEST is already there.
#   bash scripts/fetch-freetype-source.sh DEST
set -euo pipefail
dest="$(realpath -m "$1")"
[[ -f "$dest/CMakeLists.txt" ]] && exit 0

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/parts" "$work/lists/partial" "$work/cache/archives/partial" "$work/download"
cat > "$work/parts/debian-src.sources" <<'SOURCES'
Types: deb-src
URIs: http://deb.debian.org/debian
Suites: bookworm bookworm-updates
Components: main
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg

Types: deb-src
URIs: http://deb.debian.org/debian-security
Suites: bookworm-security
Components: main
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg
SOURCES
apt_options=(-o Dir::Etc::SourceList=/dev/null -o "Dir::Etc::SourceParts=$work/parts"
             -o "Dir::State::Lists=$work/lists" -o "Dir::Cache=$work/cache" -o APT::Sandbox::User=root)
apt-get "${apt_options[@]}" update -qq
# The version the system's own libfreetype6 has, so that every host hints alike.
version="$(dpkg-query -W -f='${Version}' libfreetype6 2>/dev/null || true)"
cd "$work/download"
apt-get "${apt_options[@]}" source -qq --download-only "freetype${version:+=$version}"
dpkg-source --no-check -x ./*.dsc "$work/unpacked" >/dev/null
mkdir -p "$(dirname "$dest")"
rm -rf "$dest"
mv "$work/unpacked" "$dest"
