#!/usr/bin/env bash
# The wheel is installed by pip into a clean virtual environment, where it works outside of the tree
# with its own libraries alone, and is taken away again.
#
#   wheel_test.sh BUILD_FOLDER PYTHON PROJECT
set -euo pipefail
build=$1 python=$2 project=$3
unset LD_LIBRARY_PATH PYTHONPATH
export PYTHONDONTWRITEBYTECODE=1 PIP_DISABLE_PIP_VERSION_CHECK=1 PIP_ROOT_USER_ACTION=ignore

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

wheel=$("$python" "$project/bindings/python/ztb_wheel.py" "$build" "$folder/wheels")
# The same tree makes the same wheel, and nothing else is left beside it.
"$python" "$project/bindings/python/ztb_wheel.py" "$build" "$folder/again" >/dev/null
cmp "wheels/$wheel" "again/$wheel"
[ "$(ls -A wheels)" = "$wheel" ]

# numpy and pandas are the system's.
"$python" -m venv --system-site-packages environment
environment/bin/pip install --quiet --no-index "wheels/$wheel"
environment/bin/pip show --files ztb >shown
grep -q '  ztb/libztbcclib64.so' shown

environment/bin/python - "$wheel" <<'END'
import base64, csv, ctypes, hashlib, importlib.metadata, os, sys
import numpy as np
import ztb

package = os.path.dirname(ztb.__file__)
assert package.startswith(os.path.join(os.getcwd(), "environment/")), package
assert sys.argv[1] == f"ztb-{ztb.__version__}-cp311-cp311-linux_{os.uname().machine}.whl"
assert importlib.metadata.version("ztb") == ztb.__version__
with ztb.Database() as db:
    food = db.add_set("food")
    food.extend(["Milk", "Tofu"])
    db.add_parameter("price", food).from_numpy(np.array([11.0, 30.0]))
    db.write("a.rxf")
with ztb.open("a.rxf") as db:
    assert dict(db["price"]) == {("Milk",): 11.0, ("Tofu",): 30.0}
    assert db["price"].to_pandas().tolist() == [11.0, 30.0]

# Each library opens, and all that are ours are the wheel's.
libraries = [name for name in os.listdir(package) if name.startswith("lib")]
expected = "ztbcclib64 rxfcclib64 ztbformats ztbsql ztbsweep ztbview lomudclib64 nmtmdclib64 ztbclp ztbcbc ztbglpk ztbipopt ztbbonmin"
assert sorted(libraries) == sorted(f"lib{name}.so" for name in expected.split()), libraries
for name in libraries:
    ctypes.CDLL(os.path.join(package, name))
with open("/proc/self/maps") as maps:
    opened = {line.split()[-1] for line in maps if line.endswith(".so\n")}
ours = {path for path in opened if os.path.basename(path) in libraries}
assert ours == {os.path.join(package, name) for name in libraries}, ours

# Every file is as the wheel's list says.
root = os.path.dirname(package)
with open(os.path.join(root, f"ztb-{ztb.__version__}.dist-info/RECORD")) as record:
    rows = [row for row in csv.reader(record) if row[0].startswith("ztb/") and row[1]]
assert len(rows) > len(libraries)
for name, checksum, size in rows:
    with open(os.path.join(root, name), "rb") as file:
        content = file.read()
    digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
    assert (checksum, int(size)) == (f"sha256={digest}", len(content)), name
END

environment/bin/pip uninstall --quiet --yes ztb
if environment/bin/python -c 'import ztb' 2>/dev/null; then
  echo "ztb is still there" >&2
  exit 1
fi
