#!/usr/bin/env bash
# The installed package is imported by python3 from wherever the tree is moved to, with nothing but
# the folder of its packages on the path.
#
#   installed_package_test.sh BUILD_FOLDER PYTHON PACKAGE_FOLDER
set -euo pipefail
build=$1 python=$2 packages=$3
unset LD_LIBRARY_PATH PYTHONPATH
export PYTHONDONTWRITEBYTECODE=1

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cmake --install "$build" --prefix "$folder/installed" >/dev/null
mv "$folder/installed" "$folder/moved"
cd "$folder"

PYTHONPATH=$folder/moved/$packages "$python" - <<'END'
import os
import numpy as np
import ztb

assert os.path.dirname(ztb.__file__).startswith(os.path.join(os.getcwd(), "moved")), ztb.__file__
with ztb.Database() as db:
    s = db.add_set("s")
    s.extend(["a", "b"])
    db.add_parameter("p", [s]).from_numpy(np.array([1.0, 2.0]))
    db.write("a.rxf")
with ztb.open("a.rxf") as db:
    assert dict(db["p"]) == {("a",): 1.0, ("b",): 2.0}
    assert db["p"].to_pandas().tolist() == [1.0, 2.0]

# Which library it was that answered.
with open("/proc/self/maps") as maps:
    libraries = {line.split()[-1] for line in maps if "libztbcclib64" in line}
assert libraries == {os.path.join(os.getcwd(), "moved/lib/libztbcclib64.so")}, libraries
END

# Everything but pandas objects is there without pandas.
mkdir hidden
printf 'raise ImportError("hidden")\n' >hidden/pandas.py
PYTHONPATH=$folder/hidden:$folder/moved/$packages "$python" - <<'END'
import ztb

with ztb.open("a.rxf") as db:
    assert db["p"].to_numpy().tolist() == [1.0, 2.0]
    try:
        db["p"].to_pandas()
    except ImportError:
        pass
    else:
        raise AssertionError("pandas was not hidden")
END
