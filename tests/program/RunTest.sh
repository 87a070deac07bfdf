#!/usr/bin/env bash
# Tests ./loam with scripts in place of the package manager, of cmake, and of the program that it builds, which prints how it was
# called. The argument is the source directory.
set -euo pipefail
source=$1
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
unset LOAM_STATE
fail() { echo "$*" >&2 && exit 1; }

mkdir -p "$root/tree/build/release/bin" "$root/tree/samples" "$root/caller" "$root/tools"
cp "$source/loam" "$root/tree"
ln -s "$source/fuzz" "$root/tree"
ln -s ../tree/loam "$root/caller/link"
tool() { printf '#!/bin/sh\n%s\n' "$2" >"$root/tools/$1" && chmod +x "$root/tools/$1"; }
tool cmake 'echo cmake; cat'
tool dpkg-query 'echo install ok installed'
printf '#!/bin/sh\necho "$PWD $LOAM_STATE $*, $(cat)"\n' >"$root/tree/build/release/bin/loamshow"
chmod +x "$root/tree/build/release/bin/loamshow"
PATH=$root/tools:$PATH
cd "$root/caller"

# Expects that a call from the caller's directory runs the program there, with that LOAM_STATE, these arguments and all of the
# input. Nothing but MESSAGES may be printed in addition, on standard error.
messages=
expect() {
  local state=$1 called
  shift
  called=$(echo input | "$loam" run "$@" 2>"$root/messages") || fail "$(cat "$root/messages")"
  [ "$called" = "$root/caller $state $*, input" ] || fail "$loam run $* becomes: $called"
  [ "$(cat "$root/messages")" = "$messages" ] || fail "messages: $(cat "$root/messages")"
}
sample=$root/tree/samples/sample-switch.json
for loam in ../tree/loam "$root/tree/loam" ./link; do
  expect "$sample" queues -s other.json
  LOAM_STATE='' expect "$sample" registry
  LOAM_STATE=mine.json expect mine.json help
done

# Installing and building are announced. A busy package manager is waited for, and its output is shown only if it fails.
tool sudo 'exec "$@"'
tool sleep "touch '$root/free'"
tool dpkg-query '[ "$3" != cmake ]; echo install ok $([ "$3" != cmake ] && echo installed)'
tool apt-get "echo apt; [ -e '$root/free' ] || { echo 'E: Could not get lock /some/lock.' >&2; exit 100; }"
tool cmake 'case "$*" in *-n) echo "[1/98] first" ;; *) echo cmake ;; esac'
messages='loam: installing packages: cmake
loam: waiting for another package manager ...
loam: building loamshow (preset release, 98 steps, a minute or more) ...'
expect "$sample" queues
tool apt-get 'echo E: no such package; exit 100'
! called=$("$loam" run 2>&1) || fail "ran without a package"
[[ $called == *'E: no such package' ]] || fail "$called"

# A wrong argument is refused before anything is built or installed.
touch file
refused() {
  local status=0
  "$loam" "$@" >/dev/null 2>"$root/messages" || status=$?
  [ "$status $(grep -c '^loam: ' "$root/messages")" = '2 1' ] || fail "loam $*: $status $(cat "$root/messages")"
}
for verb in install uninstall; do
  for prefix in '' -x --prefix=/x file file/below; do refused "$verb" "$prefix"; done
  refused "$verb" a b
done
for verb in test lint package soak fuzz; do refused "$verb" --quick; done
refused none
for verb in live soak test fuzz bench lint install uninstall package; do
  [[ $("$loam" "$verb" --help) == "usage: ./loam $verb"* ]] || fail "$verb --help: $("$loam" "$verb" --help)"
done
[ "$(ls)" = "$(printf 'file\nlink')" ] || fail "made: $(ls)"
