#!/usr/bin/env bash
# An installed tree works wherever it is moved to, with no setting: the command, a program that finds
# it by its CMake package, and one that finds it by pkg-config.
#
#   installed_tree_test.sh BUILD_FOLDER SOURCE_FOLDER C_COMPILER CXX_COMPILER
set -euo pipefail
build=$1 source=$2 c_compiler=$3 cxx_compiler=$4
unset LD_LIBRARY_PATH

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
  printf 'FAILED: %s\n' "$1" >&2
  exit 1
}

cmake --install "$build" --prefix "$folder/installed" >/dev/null
mv "$folder/installed" "$folder/moved"
tree=$folder/moved
cd "$folder"

cp "$source"/examples/diet/*.csv .
printed=$("$tree/bin/ztb" import diet.rxf --from foods.csv --set food --parameter 'price(food) = price_cents_1939' \
  --from requirements.csv --set nutrient \
  --from nutrition.csv --parameter 'nutrition(food, nutrient) = per_dollar')
[ "$printed" = 'diet.rxf: 4 symbols, 86 labels, 733 records' ] || fail "ztb printed: $printed"

cmake -S "$source/examples/diet" -B by-package -DCMAKE_PREFIX_PATH="$tree" \
  -DCMAKE_CXX_COMPILER="$cxx_compiler" >configure.log || fail "$(cat configure.log)"
grep -q "^ztb_DIR:PATH=$tree/lib/cmake/ztb\$" by-package/CMakeCache.txt ||
  fail 'the package was found elsewhere'
cmake --build by-package >build.log || fail "$(cat build.log)"
by-package/diet diet.rxf | grep -q 'Spinach  *918.4' || fail 'the example found no spinach'
"$tree/bin/ztb" show diet.rxf price --slice milk --csv | grep -qx 'Milk,12.5' ||
  fail 'the example changed no price'

cat >client.c <<'END'
#include <stdio.h>
#include <ztb/ztb.h>
int main(void) {
  ztbRec* ztb = NULL;
  char text[ZTB_TEXT_BUFFER_SIZE];
  int labels = 0;
  if (!ztbcreate(&ztb, text, sizeof text) || !c__ztbinitfromrxf(ztb, "diet.rxf") ||
      !c__ztbinfo(ztb, ZTB_INFO_UEL_COUNT, &labels, NULL, NULL)) {
    return 1;
  }
  printf("%d labels\n", labels);
  return !ztbfree(&ztb);
}
END
# The flags are words to be split.
flags=$(PKG_CONFIG_PATH=$tree/lib/pkgconfig pkg-config --cflags --libs ztb)
# shellcheck disable=SC2086
"$c_compiler" -std=c99 -Wall -Wextra -Werror client.c $flags -Wl,-rpath,"$tree/lib" -o client
[ "$(./client)" = '86 labels' ] || fail 'the C program read something else'

# Headers stand alone.
for header in "$tree"/include/ztb/*.hpp; do
  printf '#include <ztb/%s>\n' "$(basename "$header")" >alone.cpp
  "$cxx_compiler" -std=c++20 -Wall -Wextra -Wpedantic -Wshadow -Werror -fsyntax-only \
    -I"$tree/include" alone.cpp
done
