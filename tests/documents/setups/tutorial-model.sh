# What the first two parts of the tutorial leave: tutorial-model.sh PROJECT
bash -e "$(dirname "$0")/tutorial.sh" "$1"
sed -n '/^Minimize$/,/^End$/p' "$1/docs/tutorial/model.md" >transport.lp
