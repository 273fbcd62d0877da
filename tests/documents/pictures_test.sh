#!/usr/bin/env bash
# The pictures of the documents are those that scripts/pictures draws of what the command prints
# today: pictures_test.sh PROJECT
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$1/scripts/pictures" "$folder"
for picture in "$folder"/*.svg; do
  python3 -c 'import sys, xml.dom.minidom; xml.dom.minidom.parse(sys.argv[1])' "$picture"
  cmp "$picture" "$1/docs/pictures/$(basename "$picture")" || {
    printf 'run scripts/pictures and look at docs/pictures\n' >&2
    exit 1
  }
done
