# The files that the page of the command speaks of: tool.sh PROJECT
cp "$1"/examples/diet/*.csv "$1"/examples/diet/diet.lp .

# Two versions of prices.
printf 'food,cents\nMilk,11\nLard,9.8\nTofu,30\n' >prices.csv
printf 'nutrient,food\niron,Tofu\n' >best.csv
ztb import old.rxf --from prices.csv --set food --parameter 'price(food) = cents'
sed -e 's/Milk,11/Milk,12.5/' -e '/Lard/d' prices.csv >prices2.csv
ztb import new.rxf --from prices2.csv --set food --parameter 'price(food) = cents' \
  --from best.csv --set 'best(nutrient, food)'

# Records outside their domains.
printf 'food\nMilk\nTofu\n' >food.csv
printf 'dish\nPie\n' >dish.csv
printf 'food,by,dish,share\nMilk,x,Pie,1\nMilk,x,Lard,2\nLard,x,Ham,3\n' >blends.csv
ztb import blends.rxf --from food.csv --set food --from dish.csv --set dish \
  --from blends.csv --parameter 'blends(food, by, dish) = share'

printf 'airline,from,to,flights\nLH,FRA,OSL,3\nLH,FRA,SVQ,2\nLH,MUC,OSL,1\nIB,MAD,SVQ,9\n' >routes.csv
ztb import routes.rxf --from routes.csv --parameter 'types(airline, from, to) = flights'

# A transport model whose demand can be set, the same without columns for it, and one in MathProg.
cat >transport.lp <<'END'
Minimize
 cost: 4 ship[turin,oslo] + 3 ship[turin,seville] + 2 ship[lyon,oslo] + 5 ship[lyon,seville]
Subject To
 supply[turin]: ship[turin,oslo] + ship[turin,seville] <= 50
 supply[lyon]: ship[lyon,oslo] + ship[lyon,seville] <= 40
 meet[oslo]: ship[turin,oslo] + ship[lyon,oslo] - demand_var[oslo] >= 0
 meet[seville]: ship[turin,seville] + ship[lyon,seville] - demand_var[seville] >= 0
Bounds
 demand_var[oslo] = 20
 demand_var[seville] = 10
End
END
printf 'city,tons\nseville,25\n' >demand.csv
ztb import demand.rxf --from demand.csv --parameter 'demand(city) = tons'
cat >network.lp <<'END'
Minimize
 cost: 4 ship[turin,oslo] + 3 ship[turin,seville] + 2 ship[lyon,oslo] + 5 ship[lyon,seville]
Subject To
 supply[turin]: ship[turin,oslo] + ship[turin,seville] <= 50
 supply[lyon]: ship[lyon,oslo] + ship[lyon,seville] <= 40
 meet[oslo]: ship[turin,oslo] + ship[lyon,oslo] >= 20
 meet[seville]: ship[turin,seville] + ship[lyon,seville] >= 10
End
END
cat >plan.mod <<'END'
set PLANT;
param limit{PLANT};
var make{p in PLANT}, >= 0, <= limit[p];
maximize profit: sum{p in PLANT} 2 * make[p];
end;
END
printf 'set PLANT := a b;\nparam limit := a 3 b 4;\nend;\n' >plan.dat

# A table with mistakes in it.
cat >faulty.csv <<'END'
food,unit,price_cents_1939
Milk,1 qt.,11
Lard,1 lb.,36 c
Milk,1 qt.,12
Wheat Flour Enriched with Iron Thiamine Riboflavin and Niacin Added,1 lb.,5
Tofu,30
END

# Price scenarios for the diet.
python3 "$1"/examples/diet/make_scenarios.py 1000
sed -e '1s/scenario/s/' scenarios.csv >s.csv
sed -e '1s/scenario/s/' prices.csv >index.csv
ztb import prices.rxf --from s.csv --set s --from foods.csv --set food \
  --from index.csv --parameter 'price(s, food) = index'
