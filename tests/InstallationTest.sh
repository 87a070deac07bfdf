#!/usr/bin/env bash
# Installs a build, whose directory is the argument, unpacks its package, and uses both as a user would.
set -euo pipefail
build=$1
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
cd "$root"
unset LOAM_STATE
fail() { echo "$*" >&2 && exit 1; }

cmake --install "$build" --prefix "$root/opt" >log
cpack --config "$build/CPackConfig.cmake" -B "$root/package" >log 2>&1 || fail "$(cat log)"
dpkg-deb -x package/*.deb deb
diff <(cd opt && find . ! -type d | sort) <(cd deb/usr && find . ! -type d | sort)
! grep -rlF "${build%/build/*}" opt deb || fail "installed files name the source or build directory"

for prefix in opt deb/usr; do
  cmp <("$prefix/bin/loamshow" queues --sample) <("$build/bin/loamshow" queues -s "$build/share/loamcounters/sample-switch.json")
done
mv opt moved
moved/bin/loamshow registry >log

for header in moved/include/loamcounters/platform/*.h; do
  g++ -std=c++20 -fsyntax-only -Wall -Wextra -Werror -Imoved/include/loamcounters -include "$header" -x c++ /dev/null
done
cmake -S moved/share/doc/loamcounters/example -B host -DCMAKE_PREFIX_PATH="$root/moved" >log
cmake --build host >log || fail "$(cat log)"
rows=$(for i in {0..7}; do
  printf '%-26s %-7s %18u %18u %18u %18u\n' Et1 "TC$i" $((100 + i)) 6400 "$i" $((64 * i))
done)
[ "$(host/loamhost | sed -n 5,12p)" = "$rows" ] || fail "the example host: $(host/loamhost)"

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
[ "$(grep -c ' 0 *0 *0 *0$' <(moved/bin/loamshow -s region drops))" -gt 0 ] || fail 'nothing dropped'

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
LOAM_STATE=$man completed 'loamshow acl ' ''
