#!/usr/bin/env bash
# Where GLPK cannot be opened, the command and the other solvers work, and what needs GLPK is refused
# with the name of its package. In the place of GLPK stands a file that is no library.
#
#   without_glpk_test.sh ZTB SOURCE_FOLDER
set -euo pipefail
ztb=$1 source=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
  printf 'FAILED: %s\n' "$1" >&2
  exit 1
}

mkdir "$folder/none"
echo 'no library' >"$folder/none/libglpk.so.40"
printf 'var x >= 1;\nminimize cost: 2 * x;\nend;\n' >"$folder/small.mod"
printf 'NAME small\nROWS\n N cost\n G least\nCOLUMNS\n x cost 2 least 1\nRHS\n RHS least 1\nENDATA\n' \
  >"$folder/small.mps"

"$ztb" solve "$folder/small.mod" | grep -Eq '^objective +2$' || fail 'small.mod is not solved with GLPK'
if said=$(LD_LIBRARY_PATH=$folder/none "$ztb" solve "$folder/small.mod" 2>&1); then
  fail "small.mod was read without GLPK: $said"
fi
grep -q 'small.mod: MathProg files are read by GLPK (package libglpk40), which cannot be opened: ' \
  <<<"$said" || fail "of small.mod it was said: $said"
LD_LIBRARY_PATH=$folder/none "$ztb" solve "$folder/small.mps" --solver clp |
  grep -Eq '^objective +2$' || fail 'small.mps is not solved without GLPK'
for solver in clp cbc; do
  LD_LIBRARY_PATH=$folder/none "$ztb" solve "$source/examples/diet/diet.lp" --solver $solver |
    grep -Eq '^objective +39\.66' || fail "$solver does not work without GLPK"
done
if LD_LIBRARY_PATH=$folder/none "$ztb" solve "$source/examples/diet/diet.lp" --solver glpk >/dev/null 2>&1; then
  fail 'the solver glpk worked without GLPK'
fi
