#!/usr/bin/env bash
# Each C++ header tells a compiler for an older C++ what it needs.
#
#   older_language_test.sh INCLUDE_FOLDER CXX_COMPILER
set -euo pipefail
include=$1 compiler=$2

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
seen=0
for header in "$include"/ztb/*.hpp; do
  name=ztb/$(basename "$header")
  printf '#include <%s>\n' "$name" >"$folder/old.cpp"
  if "$compiler" -std=c++17 -fsyntax-only -I"$include" "$folder/old.cpp" 2>"$folder/log"; then
    printf 'FAILED: %s compiles as C++17\n' "$name" >&2
    exit 1
  fi
  # It is all that the compiler says.
  said=$(grep -c 'error: ' "$folder/log")
  [ "$said" -eq 1 ] || {
    printf 'FAILED: %s gives %s errors\n' "$name" "$said" >&2
    exit 1
  }
  first=$(grep 'error: ' "$folder/log")
  case $first in
  *'The C++ headers of ztb need C++20: compile with -std=c++20, or set cxx_std_20 in CMake.'*) ;;
  *)
    printf 'FAILED: of %s the error is: %s\n' "$name" "$first" >&2
    exit 1
    ;;
  esac
  seen=$((seen + 1))
done
[ "$seen" -gt 10 ] || {
  printf 'FAILED: only %s headers were tried\n' "$seen" >&2
  exit 1
}
