# What the commands of the README find: readme.sh PROJECT
bash -e "$(dirname "$0")/tool.sh" "$1"
rm -f diet.rxf
ztb import old.rxf --from foods.csv --set 'food : unit' --parameter 'price(food) = price_cents_1939' \
  --from nutrition.csv --distinct-set nutrient --parameter 'nutrition(food, nutrient) = per_dollar'
