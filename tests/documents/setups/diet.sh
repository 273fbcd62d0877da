# The diet of 1939 as the documents speak of it: diet.rxf, diet.lp and the tables they are made of.
#
#   diet.sh PROJECT
cp "$1"/examples/diet/*.csv "$1"/examples/diet/diet.lp .
ztb import diet.rxf \
  --from foods.csv --set 'food : unit' --parameter 'price(food) = price_cents_1939' \
  --from requirements.csv --set nutrient --parameter 'requirement(nutrient) = daily_allowance' \
  --from nutrition.csv --parameter 'nutrition(food, nutrient) = per_dollar' \
  --check-domains
cp diet.rxf big.rxf
