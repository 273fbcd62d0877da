#!/usr/bin/env bash
# Installs the packages in /packages, uses each and removes them all; for a root folder that is
# thrown away.
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
cd /packages
fail() {
  printf 'FAILED: %s\n' "$1" >&2
  exit 1
}

apt-get update -qq
# The command alone brings the libraries, and needs no solver.
apt-get install -qq -y --no-install-recommends ./libztb5_*.deb ./ztb_*.deb >/dev/null
cd diet
printed=$(ztb import diet.rxf --from foods.csv --set food \
  --parameter 'price(food) = price_cents_1939' --from requirements.csv --set nutrient \
  --from nutrition.csv --parameter 'nutrition(food, nutrient) = per_dollar')
[ "$printed" = 'diet.rxf: 4 symbols, 86 labels, 733 records' ] || fail "ztb import printed: $printed"
gzip -dc /usr/share/man/man1/ztb.1.gz | grep -q '^\.TH' || fail 'there is no manual page'
for file in bash-completion/completions/ztb zsh/site-functions/_ztb \
  fish/vendor_completions.d/ztb.fish doc/ztb/README.md doc/ztb/tutorial/data.md doc/ztb/copyright; do
  [ -s "/usr/share/$file" ] || fail "there is no /usr/share/$file"
done
ztb show diet.rxf price --slice macaroni --csv | grep -qx 'Macaroni,14.1' ||
  fail 'the command shows no price of macaroni'
# What is opened when a command needs it: tables, SQL, the viewer.
ztb export diet.rxf --all --to diet.db >log || fail "no SQLite file is written: $(cat log)"
ztb export diet.rxf --all --to diet.xlsx >log || fail "no workbook is written: $(cat log)"
for file in diet.db diet.xlsx; do
  ztb import back.rxf --from $file >log && ztb diff diet.rxf back.rxf >log ||
    fail "$file is not what was written: $(cat log)"
done
[ "$(ztb sql diet.rxf "select value from price where food = 'Macaroni'" --csv | tail -n 1)" = 14.1 ] ||
  fail 'the command finds no price of macaroni in SQL'
ztb plot diet.rxf price --x food --type bar --out price.svg >log || fail "nothing is drawn: $(cat log)"
mkfifo link
ztb view diet.rxf --no-open >link 2>log &
viewer=$!
read -r shown <link
grep -q 'http://127\.0\.0\.1:' <<<"$shown" || fail "the viewer says: $shown $(cat log)"
kill $viewer
wait $viewer || fail "the viewer ends with $?: $(cat log)"
if ztb solve diet.lp --solver clp >log 2>&1; then
  fail 'the command solved a model without a solver'
fi

apt-get install -qq -y --no-install-recommends ../ztb-solvers_*.deb >/dev/null
for solver in clp cbc glpk ipopt bonmin; do
  ztb solve diet.lp --solver $solver | grep -Eq '^objective +39\.66' ||
    fail "$solver does not solve the diet"
done

printf 'Minimize\n obj: x\nSubject To\n c: [ x * y ] >= 6\nBounds\n 0 <= x <= 9\n 0 <= y <= 4\nGenerals\n x y\nEnd\n' >whole.lp
ztb solve whole.lp | grep -Eq '^objective +2$' || fail 'no model with integers and products is solved'
printf 's,food,price\nas_is,Spinach,1\ndear,Spinach,3\n' >prices.csv
ztb import prices.rxf --from prices.csv --set 's(s)' --parameter 'price(s, food) = price' >log
ztb sweep diet.lp --scenarios prices.rxf --over s --report buy --out sweep.rxf --jobs 2 >log 2>&1 ||
  fail "the sweep says: $(cat log)"
ztb show sweep.rxf sweep_objective --csv | grep -q '^dear,41\.52' || fail 'the sweep has other results'

apt-get install -qq -y --no-install-recommends ../python3-ztb_*.deb >/dev/null
python3 -c 'import ztb
with ztb.open("diet.rxf") as db:
    assert db["price"]["Macaroni"] == 14.1, db["price"]["Macaroni"]' || fail 'Python does not read the file'
ls /usr/lib/python3/dist-packages/ztb/__pycache__ >/dev/null || fail 'the package is not compiled'

apt-get install -qq -y --no-install-recommends ../libztb-dev_*.deb cmake g++ make pkg-config >/dev/null
cmake -S /usr/share/doc/libztb-dev/examples/diet -B /tmp/built >/dev/null
cmake --build /tmp/built >/dev/null
/tmp/built/diet diet.rxf >log || fail "the example fails: $(cat log)"
printf '#include <ztb/ztb.h>\nint main(void) { ztbRec* z = 0; char m[256];\n' >small.c
printf 'return !(ztbcreate(&z, m, 256) && ztbfree(&z)); }\n' >>small.c
# The flags are words to be split.
# shellcheck disable=SC2046
gcc small.c $(pkg-config --cflags --libs ztb ztb-model ztb-rxf ztb-formats ztb-sweep ztb-sql ztb-view) -o small
./small || fail 'a program in C fails'

cd /packages
apt-get purge -qq -y libztb5 libztb-dev ztb python3-ztb ztb-solvers >/dev/null
apt-get autoremove -qq -y --purge >/dev/null
if left=$(find /usr /etc /var -path /var/lib/apt -prune -o -path /var/cache -prune -o \
  \( -name '*ztb*' -o -name '*rxfcclib*' -o -name '*lomudclib*' -o -name 'vltcmpNT*' \) -print |
  grep .); then
  fail "removing the packages left: $left"
fi
