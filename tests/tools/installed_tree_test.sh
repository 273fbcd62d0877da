#!/usr/bin/env bash
# An installed tree works wherever it is moved to, with no setting: the command, and programs in C and
# C++ for each of its libraries that find it by its CMake package and by pkg-config.
#
#   installed_tree_test.sh BUILD_FOLDER SOURCE_FOLDER C_COMPILER CXX_COMPILER CHECKING_COMPILER
set -euo pipefail
build=$1 source=$2 c_compiler=$3 cxx_compiler=$4 checking_compiler=$5
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

# A program in C and one in C++ for each of its libraries, by the CMake package and by
# pkg-config. Each prints what the programs of its library have to print.
cat >ztb.c <<'END'
#include <stdio.h>
#include <ztb/ztb.h>
int main(void) {
  ztbRec* ztb = NULL;
  void* symbol = NULL;
  char text[ZTB_TEXT_BUFFER_SIZE];
  int labels = 0;
  if (!ztbcreate(&ztb, text, sizeof text) || !c__ztbinitfromrxf(ztb, "diet.rxf") ||
      !c__ztbinfo(ztb, ZTB_INFO_UEL_COUNT, &labels, NULL, NULL)) {
    return 1;
  }
  if (c__ztbfindsymbol(ztb, "none", &symbol) || ztbErrorKind(ztb) != ZTB_ERROR_NOT_FOUND) return 2;
  printf("%d labels\n", labels);
  return !ztbfree(&ztb);
}
END
cat >ztb.cpp <<'END'
#include <iostream>
#include <ztb/ztb.hpp>
int main() {
  const ztb::Database diet = ztb::Database::open("diet.rxf");
  if (diet["price"].recordCount() == 0 || diet.findSymbol("none")) return 1;
  std::cout << diet.labelCount() << " labels\n";
}
END
cat >model.c <<'END'
#include <stdio.h>
#include <ztb/model.h>
#include <ztb/ztb.h>
int main(void) {
  char text[512];
  ztbModel* model = NULL;
  ztbRec* ztb = NULL;
  double seconds = 0;
  if (ztbModelOpen(&model, "none.lp", NULL, text, sizeof text) ||
      ztbModelErrorKind() != ZTB_ERROR_NO_FILE) {
    return 1;
  }
  if (!ztbModelOpen(&model, "diet.lp", NULL, text, sizeof text) ||
      !ztbcreate(&ztb, text, sizeof text) || !c__ztbinitfromdict(ztb, ztbModelPbi(model)) ||
      !c__ztbinitupdate(ztb, ztbModelPbi(model)) ||
      !c__ztbcallsolvertimed(ztb, "clp", &seconds)) {
    return 2;
  }
  printf("%.2f dollars\n", ztbModelObjective(model));
  ztbfree(&ztb);
  ztbModelFree(&model);
  return 0;
}
END
cat >model.cpp <<'END'
#include <cstdio>
#include <ztb/model.hpp>
int main() {
  ztb::Model model = ztb::Model::open("diet.lp");
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  tie.solve("clp");
  std::printf("%.2f dollars\n", model.objective());
}
END
cat >rxf.c <<'END'
#include <stdio.h>
#include <ztb/rxf.h>
int main(void) {
  char text[512];
  ztbRxfFile* file = NULL;
  if (ztbRxfOpen(&file, "none.rxf", text, sizeof text) || ztbRxfErrorKind() != ZTB_ERROR_NO_FILE) {
    return 1;
  }
  if (!ztbRxfOpen(&file, "diet.rxf", text, sizeof text)) return 2;
  printf("%d symbols\n", ztbRxfSymbolCount(file));
  ztbRxfClose(&file);
  return 0;
}
END
cat >rxf.cpp <<'END'
#include <iostream>
#include <ztb/rxf.hpp>
int main() {
  const ztb::RxfFile file("diet.rxf");
  std::cout << file.symbols().size() << " symbols\n";
}
END
# A limit on memory takes two of them.
cat >limit.cpp <<'END'
#include <iostream>
#include <ztb/ztb.hpp>
int main() {
  const ztb::Database diet = ztb::Database::open("diet.rxf", {.maxMemory = 6000});
  std::cout << diet["price"].recordCount() << " prices\n";
  try {
    return diet["nutrition"].recordCount();
  } catch (const ztb::Error& error) {
    if (error.kind() != ztb::ErrorKind::limit) throw;
  }
}
END
cat >sweep.c <<'END'
#include <stdio.h>
#include <ztb/sweep.h>
int main(void) {
  ztbSweep* sweep = NULL;
  if (!ztbSweepCreate(&sweep)) return 1;
  if (ztbSweepOption(sweep, "colour", "red")) return 2;
  puts(ztbSweepMessage(sweep));
  ztbSweepFree(&sweep);
  return 0;
}
END
cat >sweep.cpp <<'END'
#include <iostream>
#include <ztb/sweep.hpp>
int main() {
  ztb::Sweep sweep;
  try {
    sweep.option("colour", "red");
  } catch (const ztb::Error& error) {
    std::cout << error.what() << '\n';
  }
}
END
cat >formats.c <<'END'
#include <stdio.h>
#include <ztb/formats.h>
int main(void) {
  ztbFormatsJob* job = NULL;
  if (!ztbFormatsCreate(&job)) return 1;
  if (ztbFormatsOption(job, "from", "none.db") && ztbFormatsImport(job, "none.rxf")) return 2;
  puts(ztbFormatsMessage(job));
  if (ztbFormatsErrorKind(job) != ZTB_ERROR_NO_FILE) return 3;
  ztbFormatsFree(&job);
  return 0;
}
END
cat >formats.cpp <<'END'
#include <iostream>
#include <ztb/formats.hpp>
int main() {
  try {
    ztb::Formats({{"from", "none.db"}}).importTo("none.rxf");
  } catch (const ztb::Error& error) {
    std::cout << error.what() << '\n';
    return error.kind() == ztb::ErrorKind::noFile ? 0 : 1;
  }
}
END
cat >sql.c <<'END'
#include <stdio.h>
#include <ztb/sql.h>
int main(void) {
  char text[512];
  ztbSql* sql = NULL;
  ztbSqlRows* rows = NULL;
  if (!ztbSqlOpen(&sql, text, sizeof text) ||
      !ztbSqlAttachFile(sql, "diet", "diet.rxf", text, sizeof text) ||
      !ztbSqlQuery(&rows, sql, "select count(*) from \"*\"", text, sizeof text)) {
    return 1;
  }
  while (ztbSqlNext(rows) == 1) printf("%s labels\n", ztbSqlText(rows, 0));
  ztbSqlRowsClose(&rows);
  ztbSqlClose(&sql);
  return 0;
}
END
cat >view.c <<'END'
#include <stdio.h>
#include <ztb/view.h>
int main(void) {
  ztbView* view = NULL;
  if (!ztbViewCreate(&view)) return 1;
  if (ztbViewOption(view, "colour", "red") || !ztbViewIsUsage(view)) return 2;
  puts(ztbViewMessage(view));
  ztbViewFree(&view);
  return 0;
}
END
cp "$source/examples/diet/diet.lp" .
expect_printed() {
  printed=$("$1") || fail "$1 ends with an error"
  case $(basename "$1") in
  ztb*) [ "$printed" = '86 labels' ] ;;
  model*) [ "$printed" = '39.66 dollars' ] ;;
  # Those of the import, and the one that the example added.
  rxf*) [ "$printed" = '5 symbols' ] ;;
  limit*) [ "$printed" = '77 prices' ] ;;
  sweep*) [[ $printed = *'a sweep has no option colour' ]] ;;
  formats*) [ "$printed" = 'none.db: cannot be read: No such file or directory' ] ;;
  sql*) [ "$printed" = '86 labels' ] ;;
  view*) [[ $printed = *colour* ]] ;;
  esac || fail "$1 prints: $printed"
}
tried=0
for language in C CXX; do
  mkdir "$language"
  if [ $language = C ]; then ending=c names='ztb model rxf sweep formats sql view'; else ending=cpp names='ztb model rxf sweep formats limit'; fi
  {
    printf 'cmake_minimum_required(VERSION 3.16)\nproject(programs %s)\nfind_package(ztb REQUIRED)\n' \
      $language
    for name in $names; do
      printf 'add_executable(%s_program ../%s.%s)\n' "$name" "$name" $ending
      libraries=ztb::$name
      [ "$name" != limit ] || libraries='ztb::ztb ztb::rxf'
      printf 'target_link_libraries(%s_program %s)\n' "$name" "$libraries"
    done
  } >$language/CMakeLists.txt
  cmake -S $language -B $language/build -DCMAKE_PREFIX_PATH="$tree" -DCMAKE_C_COMPILER="$c_compiler" \
    -DCMAKE_CXX_COMPILER="$cxx_compiler" >configure.log 2>&1 || fail "$(cat configure.log)"
  cmake --build $language/build >build.log 2>&1 || fail "$(cat build.log)"
  for name in $names; do
    expect_printed "./$language/build/${name}_program"
    package=ztb-$name compile=("$c_compiler" -std=c99)
    [ "$name" != ztb ] || package=ztb
    [ "$name" != limit ] || package='ztb ztb-rxf'
    [ $language = C ] || compile=("$cxx_compiler" -std=c++20)
    # The packages and flags are words to be split.
    # shellcheck disable=SC2086
    flags=$(PKG_CONFIG_PATH=$tree/lib/pkgconfig pkg-config --cflags --libs $package)
    # shellcheck disable=SC2086
    "${compile[@]}" -Wall -Wextra -Werror "$name.$ending" $flags -Wl,-rpath,"$tree/lib" \
      -o "${name}_$ending"
    expect_printed "./${name}_$ending"
    tried=$((tried + 1))
  done
done
[ $tried -eq 13 ] || fail "$tried programs were tried"

# Headers stand alone.
for header in "$tree"/include/ztb/*.hpp; do
  printf '#include <ztb/%s>\n' "$(basename "$header")" >alone.cpp
  "$checking_compiler" -std=c++20 -Wall -Wextra -Wpedantic -Wshadow -Werror -fsyntax-only \
    -I"$tree/include" alone.cpp
done

# The manual page and what completes the command line, as this very program tells them.
for text in 'manual:man/man1/ztb.1' 'completion bash:bash-completion/completions/ztb' \
  'completion zsh:zsh/site-functions/_ztb' 'completion fish:fish/vendor_completions.d/ztb.fish'; do
  # The words are to be split.
  # shellcheck disable=SC2086
  "$tree/bin/ztb" ${text%%:*} | cmp - "$tree/share/${text#*:}" || fail "no ${text%%:*} in its place"
done
MANPATH=$tree/share/man man -w ztb | grep -qx "$tree/share/man/man1/ztb.1" || fail 'man finds no page'
