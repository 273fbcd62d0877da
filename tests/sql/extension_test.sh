#!/usr/bin/env bash
# The extension in SQLite's own program.
#
#   extension_test.sh ZTB EXTENSION
set -euo pipefail
ztb=$1
extension=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
printf 'food,unit\nMilk,quart\nTofu,block\n' >foods.csv
printf 'food,price\nMilk,11\nTofu,2.5\n' >prices.csv
printf 'a,b,c,d,e,v\n1,2,3,4,5,6\n' >wide.csv
"$ztb" import diet.rxf --from foods.csv --set 'food : unit' --from prices.csv \
  --parameter 'price(food) = price' --from wide.csv --parameter 'wide(a, b, c, d, e) = v' >/dev/null

# Compares what the program says to a query with what it must say.
expect() {
  local said
  said=$(sqlite3 -cmd ".load $extension" :memory: "$1" 2>&1 || true)
  if [ "$said" != "$2" ]; then
    printf '%s\nsaid: %s\nnot:  %s\n' "$1" "$said" "$2" >&2
    exit 1
  fi
}

expect "select * from ztb('diet.rxf', 'price')" $'Milk||||11.0|\nTofu||||2.5|'
expect "select dim_1, text from ztb('diet.rxf', 'food') where dim_1 = 'TOFU'" 'Tofu|block'
expect "select value from ztb('diet.rxf', 'price') where dim_1 in ('milk', 'x')" '11.0'
expect "select value from ztb('diet.rxf', 'price') where dim_2 = 'Milk'" ''
expect "select dim_5, value from ztb('diet.rxf', 'wide')" '5|6.0'
printf 'a,b,c,d,e,v\nu,v,w,x,Yes,6\nu,v,w,x,No,7\n' >letters.csv
"$ztb" import letters.rxf --from letters.csv --parameter 'deep(a, b, c, d, e) = v' >/dev/null
expect "select value from ztb('letters.rxf', 'deep') where dim_5 = 'YES'" '6.0'
expect "select value from ztb('letters.rxf', 'deep') where dim_5 in ('yes', 'z')" '6.0'
expect "select value from ztb('letters.rxf', 'deep') where dim_5 < 'P'" '7.0'
expect "select b.value from ztb('letters.rxf', 'deep') b join (select 'NO' as x) on dim_5 = x" '7.0'
expect "select value from ztb('letters.rxf', 'deep') where dim_5 = 'YES' collate binary" ''
expect "create virtual table temp.p using ztb_symbol('diet.rxf', 'price');
  select food, value from p where food = 'milk'" 'Milk|11.0'
expect "create virtual table p using ztb_symbol('diet.rxf', 'wide'); select * from p" '1|2|3|4|5|6.0'
expect "select f.column1, p.value from (values ('tofu'), ('milk')) f
  join ztb('diet.rxf', 'price') p on p.dim_1 = f.column1" $'tofu|2.5\nmilk|11.0'

# Each part of an OR is planned by itself, and numbers of a list are compared as those of a column.
expect "select dim_1 from ztb('diet.rxf', 'price') where dim_1 = 'milk' or dim_1 = 'tofu'" $'Milk\nTofu'
expect "select dim_1 from ztb('diet.rxf', 'price') where dim_1 = 'milk' or dim_2 = 'x' or value < 3" \
  $'Milk\nTofu'
expect "select dim_1 from ztb('diet.rxf', 'price') where dim_2 in ('milk', 'tofu')" ''
expect "create table n(any, real real); insert into n values (5, 5.0);
  select dim_5 from ztb('diet.rxf', 'wide') where dim_5 in (select any from n);
  select value from ztb('diet.rxf', 'wide') where dim_5 in (select real from n)" '6.0'
printf 'y,v\n2020,1\n2020.0,2\n' >years.csv
"$ztb" import years.rxf --from years.csv --parameter 'of(y) = v' >/dev/null
expect "create table n(real real); insert into n values (2020);
  select value from ztb('years.rxf', 'of') where dim_1 in (select real from n)" $'1.0\n2.0'

# The same for what the message of a failure must hold.
fails() {
  sqlite3 -cmd ".load $extension" :memory: "$1" >said 2>&1 || true
  if ! grep -qF -- "$2" said; then
    printf '%s\nsaid: %s\nnot:  %s\n' "$1" "$(cat said)" "$2" >&2
    exit 1
  fi
}
fails "select * from ztb('diet.rxf', 'nothing')" 'diet.rxf: there is no symbol nothing'
fails "select * from ztb('none.rxf', 'price')" 'none.rxf'
fails "select * from ztb('diet.rxf')" 'ztb() takes a file and the name of a symbol'
fails "select * from ztb('diet.rxf', 'wide')" \
  'symbol wide has 5 positions, of which * shows 4: name dim_5 and on, or create virtual table using ztb_symbol'
fails "create virtual table p using ztb_symbol('diet.rxf')" \
  'ztb_symbol takes a file and the name of a symbol'
fails "create virtual table p using ztb_symbol('diet.rxf', 'price'); delete from p" \
  'table p may not be modified'
