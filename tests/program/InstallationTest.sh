#!/usr/bin/env bash
# Installs a build, makes and unpacks its packages, uses both as a user would, and uninstalls. Arguments: the build directory
# and the source directory.
set -euo pipefail
build=$1
source=$2
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
cd "$root"
unset LOAM_STATE
fail() { echo "$*" >&2 && exit 1; }
installation=$source/packaging/installation.sh

# An installation replaces an earlier one, here with a file that is no longer installed, and leaves other files alone.
mkdir -p opt/bin opt/include
touch opt/bin/other
others=$(cd opt && find . | sort)
"$installation" install "$root/opt" "$build" >log
touch opt/share/doc/loamcounters/old.md
echo share/doc/loamcounters/old.md >>opt/share/loamcounters/manifest
"$installation" install "$root/opt" "$build" >log

# The packages hold the same files, apart from Debian's own requirements.
"$source/packaging/package.sh" "$build" package >log 2>&1 || fail "$(cat log)"
for package in package/*.deb; do dpkg-deb -x "$package" deb; done
diff <(cd opt && find . ! -type d ! -name manifest ! -name other | sed 's|/site-functions/|/vendor-completions/|; s|/man1/.*|&.gz|' | sort) \
  <(cd deb/usr && find . ! -type d | grep -Ev '/(copyright|changelog.gz|loamcounters-dev|lintian/.*)$' | sort)
! grep -rlF "${build%/build/*}" opt deb || fail "installed files name the source or build directory"

sample() { "$1/bin/loamshow" queues --sample; }
"$build/bin/loamshow" queues -s "$build/share/loamcounters/sample-switch.json" >log
cmp <(sample opt) log
cmp <(LD_LIBRARY_PATH=$(dirname deb/usr/lib/*/libloamplatform.so.1) sample deb/usr) log
mv opt moved
moved/bin/loamshow registry >log

for header in moved/include/loamcounters/platform/*.h; do
  g++ -std=c++20 -fsyntax-only -Wall -Wextra -Werror -Imoved/include/loamcounters -include "$header" -x c++ /dev/null
done
cmake -S moved/share/doc/loamcounters/examples -B host -DCMAKE_PREFIX_PATH="$root/moved" >log
cmake --build host >log || fail "$(cat log)"
rows=$(for i in {0..7}; do
  printf '%-26s %-7s %18u %18u %18u %18u\n' Et1 "TC$i" $((100 + i)) 6400 "$i" $((64 * i))
done)
[ "$(host/loamhost | sed -n 5,12p)" = "$rows" ] || fail "the example host: $(host/loamhost)"

[ "$(wc -l <moved/share/doc/loamcounters/examples/feeder.cpp)" -lt 60 ] || fail 'the feeder is no longer short'
# The feeder's counts agree in every command: octets are 64 times packets, and totals are sums of queues.
host/loamfeeder "$root/region" &
feeder=$!
trap 'kill "$feeder"; rm -rf "$root"' EXIT
until moved/bin/loamshow -s region acl >log 2>&1; do sleep 0.1; done
sleep 0.5
moved/bin/loamshow -s region check || fail "findings in the feeder's region"
for command in queues ingress cpu drops mtu capture; do
  moved/bin/loamshow -s region "$command" >log 2>errors || fail "$(cat errors)"
  ! grep -q '"total"' log || fail "the feeder's totals: $(cat log)"
  awk -v want="$command" '
    $NF ~ /^[0-9]+$/ && NF >= 5 { rows++; if ($(NF-2) != 64 * $(NF-3) || $NF != 64 * $(NF-1)) exit 1 }
    END { if (want ~ /queues|ingress|drops/ && !rows) exit 1 }' log || fail "the feeder, $command: $(cat log)"
done

man=moved/share/man/man1/loamshow.1
for command in $(moved/bin/loamshow complete '' | cut -f1); do
  grep -q "It Cm $command" $man || fail "no $command in $man"
  for option in $(moved/bin/loamshow complete "$command" -- | cut -f1); do
    grep -q " ${option#-}\b" $man || fail "no $option in $man"
  done
done

. moved/share/bash-completion/completions/loamshow
PATH=$root/moved/bin:$PATH
completed() {
  COMP_LINE=$1 COMP_POINT=${#1}
  _loamshow loamshow || true
  [ "${COMPREPLY[*]}" = "$2" ] || fail "$1 becomes ${COMPREPLY[*]}"
}
completed 'loamshow --sample acl po' 'Port-Channel1 Port-Channel2'
completed 'loamshow --format=j' json
. moved/share/bash-completion/completions/loamsim
_loamsim loamsim --s loamsim
[ "${COMPREPLY[*]}" = '--speed --seed' ] || fail "loamsim --s becomes ${COMPREPLY[*]}"

# Files that were added since are kept.
touch moved/share/loamcounters/other
"$installation" uninstall "$root/moved" >log
! "$installation" uninstall "$root/moved" 2>log || fail 'removed twice'
rm -r moved/share
[ "$(cd moved && find . | sort)" = "$others" ] || fail "left by the removal: $(find moved)"
