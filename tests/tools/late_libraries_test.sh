#!/usr/bin/env bash
# A command starts with the models alone: a tree without the libraries of the database, of files, of
# queries and of formats solves a model, and says which library it misses when it needs one.
#
#   late_libraries_test.sh ZTB LIBRARY_FOLDER
set -euo pipefail
ztb=$1 libraries=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
  printf 'FAILED: %s\n' "$1" >&2
  exit 1
}

mkdir "$folder/bin" "$folder/lib"
cp "$ztb" "$folder/bin/ztb"
cp "$libraries"/lib{lomudclib64,ztbclp}.so "$libraries/vltcmpNT.txt" "$folder/lib"
printf 'NAME small\nROWS\n N cost\n G least\nCOLUMNS\n x cost 2 least 1\nRHS\n RHS least 3\nENDATA\n' \
  >"$folder/small.mps"
said=$(LD_DEBUG=files "$folder/bin/ztb" solve "$folder/small.mps" 2>"$folder/files") ||
  fail "small.mps was not solved: $said"
grep -Eq '^objective +6$' <<<"$said" || fail "of small.mps it was said: $said"
! grep -Eq 'calling init: .*(ztbcc|nmtmd|rxf|zstd|sql|formats|sweep|view)' "$folder/files" || fail 'a solve opened more than it needs'

misses() {
  local library=$1
  shift
  if said=$("$folder/bin/ztb" "$@" 2>&1); then fail "ztb $* worked without $library: $said"; fi
  grep -q "^ztb: .*a library of ztb cannot be opened: $library: cannot open shared object file" \
    <<<"$said" || fail "of $library it was said: $said"
}
echo 'no file of ours' >"$folder/small.rxf"
misses libztbcclib64.so solve "$folder/small.mps" --show x
cp "$libraries"/lib{ztbcclib64,nmtmdclib64}.so "$folder/lib"
misses librxfcclib64.so info "$folder/small.rxf"
misses libztbsweep.so sweep --collect --parts "$folder" --out "$folder/out.rxf"
misses libztbview.so view "$folder/small.rxf"
misses libztbsql.so sql "$folder/small.rxf" 'select 1'

cp "$libraries/libnmtmdclib64.so" "$folder/lib/libztbsql.so"
if said=$("$folder/bin/ztb" sql "$folder/small.rxf" 'select 1' 2>&1); then
  fail "a library without functions answered: $said"
fi
grep -q 'libztbsql.so has no function ztbSqlOpen: it is of another version' <<<"$said" ||
  fail "of a library without functions it was said: $said"
