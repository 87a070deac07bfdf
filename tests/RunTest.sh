#!/usr/bin/env bash
# Tests how ./loam run calls the program that it builds, here replaced by a script that prints its environment. The
# argument is the source directory.
set -euo pipefail
source=$1
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
unset LOAM_STATE
fail() { echo "$*" >&2 && exit 1; }

mkdir -p "$root/tree/build/release/bin" "$root/tree/samples" "$root/caller" "$root/tools"
cp "$source/loam" "$root/tree"
ln -s ../tree/loam "$root/caller/link"
for tool in cmake apt-get; do printf '#!/bin/sh\n' >"$root/tools/$tool"; done
printf '#!/bin/sh\necho install ok installed\n' >"$root/tools/dpkg-query"
printf '#!/bin/sh\necho "$PWD $LOAM_STATE $*"\n' >"$root/tree/build/release/bin/loamshow"
chmod +x "$root"/tools/* "$root/tree/build/release/bin/loamshow"
PATH=$root/tools:$PATH

# Expects that a call from the caller's directory runs the program there, with that LOAM_STATE and these arguments.
expect() {
  local state=$1 called
  shift
  called=$(cd "$root/caller" && "$loam" run "$@")
  [ "$called" = "$root/caller $state $*" ] || fail "$loam run $* becomes: $called"
}
for loam in ../tree/loam "$root/tree/loam" ./link; do
  expect "$root/tree/samples/sample-switch.json" queues -s other.json
  LOAM_STATE='' expect "$root/tree/samples/sample-switch.json" registry
  LOAM_STATE=mine.json expect mine.json help
done
