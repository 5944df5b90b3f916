#!/usr/bin/env bash
# Fetches files that other people wrote, out of Debian's packages, through apt: fetch_samples.sh FOLDER
# A package that cannot be had is left out and said so; the tests that need it are skipped. Nothing is installed.
set -u
export LC_ALL=C
mkdir -p "$1/.apt/lists/partial" "$1/.apt/cache/archives/partial"
cd "$1" || exit 1

binaries=(evolution-data-server-tests golang-github-arran4-golang-ical-dev librdf-vcard-perl php-horde-icalendar
    python3-icalendar rolo shaarli)
sources=(libical3 php-netscape-bookmark-parser php-sabre-vobject totem-pl-parser)

missing() { echo "not to be had here: $1"; }

for package in "${binaries[@]}"; do
    [ -d "$package" ] && continue
    rm -f -- "$package"_*.deb
    if timeout 120 apt-get download -qq "$package" >/dev/null 2>&1 && dpkg-deb -x "$package"_*.deb "$package.new"; then
        mv "$package.new" "$package"
    else
        missing "$package"
    fi
done

# Source packages need an index of their own, which the machine may not have: it is kept here. It comes from where the
# machine's own packages come from.
apt-get indextargets --format 'deb-src $(REPO_URI) $(CODENAME) $(COMPONENT)' \
    'Created-By: Packages' 'Origin: Debian' 'Component: main' | sort -u >.apt/sources.list
apt_source() {
    timeout 180 apt-get -qq -o Dir::Etc::SourceList="$PWD/.apt/sources.list" -o Dir::Etc::SourceParts=/dev/null \
        -o Dir::State::Lists="$PWD/.apt/lists" -o Dir::Cache="$PWD/.apt/cache" -o APT::Sandbox::User= "$@" >/dev/null 2>&1
}
updated=
for package in "${sources[@]}"; do
    [ -d "$package" ] && continue
    [ -n "$updated" ] || apt_source update
    updated=yes
    # The patches that Debian adds may be missing where the original is there.
    apt_source source --download-only "$package"
    archive=$(ls -- "$package"_*.orig.tar.* 2>/dev/null | grep -v '\.asc$' | head -n 1)
    mkdir -p "$package.new"
    if [ -n "$archive" ] && tar -xf "$archive" -C "$package.new"; then
        mv "$package.new" "$package"
    else
        rm -rf -- "$package.new"
        missing "$package"
    fi
done
exit 0
