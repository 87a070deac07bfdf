#!/usr/bin/env bash
# Installs a build, or removes what was installed:
#   installation.sh install PREFIX BUILD
#   installation.sh uninstall PREFIX
# PREFIX is absolute. The manifest, a part of the installation, lists its files and, with a trailing slash, the directories that it
# created, parents first, relative to PREFIX. Lines of dots (./, ../, ../../) are PREFIX and the directories above it.
set -euo pipefail
action=$1
prefix=$2
manifest=share/loamcounters/manifest

# Removes what the manifest lists. Directories are removed in reverse order, if they are empty.
uninstall() {
  local path above=$prefix
  local dots='^(\./|(\.\./)+)$'
  mapfile -t files < <(grep -v '/$' "$prefix/$manifest")
  mapfile -t directories < <(grep '/$' "$prefix/$manifest" | grep -Ev "$dots" | tac)
  mapfile -t outer < <(grep -E "$dots" "$prefix/$manifest")
  for path in "${files[@]}" "${directories[@]}"; do
    if [[ /$path/ == */../* || $path == /* ]]; then
      echo "$prefix/$manifest lists a path that is not below $prefix: $path" >&2
      exit 1
    fi
  done
  for path in "${files[@]}"; do rm -f -- "$prefix/$path"; done
  rm -f -- "$prefix/$manifest"
  for path in "${directories[@]}"; do
    [ ! -d "$prefix/$path" ] || rmdir --ignore-fail-on-non-empty -- "$prefix/$path"
  done
  for path in "${outer[@]}"; do
    [ ! -d "$above" ] || rmdir --ignore-fail-on-non-empty -- "$above"
    above=$(dirname "$above")
  done
}

# Prints the manifest of an installation, given a copy of it in another directory.
printManifest() {
  local copy=$1 path line=./
  path=$prefix
  until [ -e "$path" ]; do
    echo "$line"
    line=../${line#./}
    path=$(dirname "$path")
  done
  (cd "$copy" && find . -mindepth 1 \( -type d -printf '%P/\n' \) -o -printf '%P\n') | LC_ALL=C sort |
    while read -r path; do
      [[ $path == */ && -d $prefix/$path ]] || echo "$path"
    done
}

case $action in
  install)
    build=$(realpath "$3")
    copy=$(mktemp -d)
    trap 'rm -rf "$copy"' EXIT
    cmake --install "$build" --prefix "$copy/tree" >/dev/null
    # An earlier installation may have files that this one does not replace.
    [ ! -e "$prefix/$manifest" ] || uninstall
    printManifest "$copy/tree" >"$copy/manifest"
    # The manifest comes first, so that an incomplete installation can be removed.
    mkdir -p "$prefix/${manifest%/*}"
    cp "$copy/manifest" "$prefix/$manifest"
    cmake --install "$build" --prefix "$prefix" >/dev/null
    echo "installed below $prefix:"
    grep -v '/$' "$copy/manifest" | awk -F/ '
      {
        name = $NF
        directory = substr($0, 1, length($0) - length(name))
        if (!count[directory]++) order[++directories] = directory
        names[directory] = names[directory] " " name
      }
      END {
        for (i = 1; i <= directories; i++) {
          many = count[order[i]] > 4
          printf "  %-43s%s\n", order[i], (many ? " " count[order[i]] " files" : names[order[i]])
        }
      }'
    echo "to remove it: ./loam uninstall $prefix"
    ;;
  uninstall)
    if [ ! -e "$prefix/$manifest" ]; then
      echo "nothing to remove: there is no $prefix/$manifest" >&2
      exit 1
    fi
    uninstall
    echo "removed from $prefix: ${#files[@]} files"
    ;;
esac
