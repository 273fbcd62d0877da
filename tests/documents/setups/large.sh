# large.rxf, with the parameter flow: large.sh PROJECT
printf 'from,to,amount\noslo,turin,3\nturin,oslo,4\n' >flow.csv
ztb import large.rxf --from flow.csv --parameter 'flow(from, to) = amount'
