# What the first part of the tutorial leaves: tutorial.sh PROJECT
printf 'plant,supply\nturin,60\nlyon,50\n' >plants.csv
printf 'city,demand\noslo,30\nseville,25\nghent,40\n' >cities.csv
cat >costs.csv <<'END'
plant,city,cost
turin,oslo,9
turin,seville,7
turin,ghent,6
lyon,oslo,10
lyon,seville,5
lyon,ghent,3
END
ztb import plan.rxf --from plants.csv --set plant --parameter 'supply(plant)' \
  --from cities.csv --set city --parameter 'demand(city)' \
  --from costs.csv --parameter 'cost(plant, city) "Euros a ton"' --check-domains
