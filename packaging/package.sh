#!/usr/bin/env bash
# Makes the Debian packages of a build, and fails when lintian finds anything: package.sh BUILD DIRECTORY. Recreates DIRECTORY.
set -euo pipefail
debian=$(realpath "$(dirname "$0")/debian")
build=$(realpath "$1")
rm -rf "$2"
mkdir -p "$2"
cd "$2"
umask 022
cp -R "$debian" .  # the tools of dpkg-dev look for ./debian

version=$(dpkg-parsechangelog -S Version)
grep -qx "CMAKE_PROJECT_VERSION:STATIC=$version" "$build/CMakeCache.txt" || {
  echo "$debian/changelog: version $version differs from that of the build" >&2
  exit 1
}
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -S Timestamp)  # the date of all files, for reproducible packages
export SOURCE_DATE_EPOCH

runtime=debian/loamcounters
development=debian/loamcounters-dev
cmake --install "$build" --prefix "$PWD/$runtime/usr" --component runtime
cmake --install "$build" --prefix "$PWD/$development/usr" --component development

# Debian's zsh searches this directory below /usr, the other one below /usr/local.
mv "$runtime"/usr/share/zsh/{site-functions,vendor-completions}
doc=$runtime/usr/share/doc/loamcounters
cp debian/copyright debian/changelog "$doc"
gzip -9n "$doc/changelog" "$runtime"/usr/share/man/man1/*
mkdir -p "$runtime/usr/share/lintian/overrides"
cp debian/loamcounters.lintian-overrides "$runtime/usr/share/lintian/overrides/loamcounters"
ln -s loamcounters "$development/usr/share/doc/loamcounters-dev"

# Run paths are for other prefixes. The loader searches this directory by itself.
mapfile -t binaries < <(find "$runtime/usr/bin" "$runtime/usr/lib" -type f)
printf 'file(RPATH_REMOVE FILE "%s")\n' "${binaries[@]/#/$PWD/}" >debian/runpaths.cmake
cmake -P debian/runpaths.cmake
strip --strip-unneeded --remove-section=.comment --remove-section=.note "${binaries[@]}"

mkdir "$runtime/DEBIAN" "$development/DEBIAN"
soname=$(basename "$runtime"/usr/lib/*/libloamplatform.so.?)
echo "${soname/.so./ } loamcounters (>= $version)" >"$runtime/DEBIAN/shlibs"
echo activate-noawait ldconfig >"$runtime/DEBIAN/triggers"
dpkg-shlibdeps -Tdebian/loamcounters.substvars "${binaries[@]}"
makePackages() {
  local package
  for package in loamcounters loamcounters-dev; do
    (cd "debian/$package" && find usr -type f | LC_ALL=C sort | xargs md5sum >DEBIAN/md5sums)
    dpkg-gencontrol -p"$package" -P"debian/$package" -T"debian/$package.substvars"
    dpkg-deb --root-owner-group --build "debian/$package" .
  done
}
makePackages

# Whether machine code contains a misspelt word depends on the build, and lintian reports an override that is not needed.
if [ "$(lintian --allow-root --no-override --tags spelling-error-in-binary ./*.deb)" ]; then
  cat debian/machine-code.lintian-overrides >>"$runtime/usr/share/lintian/overrides/loamcounters"
  makePackages
fi
lintian --allow-root -EIL +pedantic --fail-on error,warning,info,pedantic,experimental ./*.deb
