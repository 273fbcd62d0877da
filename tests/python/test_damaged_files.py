"""What is damaged or forged is an error in Python, too, and nothing of it is delivered."""

import ctypes
import re
import struct

import pytest

import ztb

STORES = ["map", "vector", "trie"]


def reseal(data):
    """The bytes with checksums that are right again, in the places of docs/reference/rxf-format.md."""
    library = ctypes.CDLL("libxxhash.so.0")
    library.XXH3_64bits.restype = ctypes.c_uint64
    library.XXH3_64bits.argtypes = [ctypes.c_char_p, ctypes.c_size_t]

    def checksum(first, end):
        return struct.pack("<Q", library.XXH3_64bits(bytes(data[first:end]), end - first))

    data = bytearray(data)
    data[88:96] = checksum(0, 88)
    at = 96
    while at < len(data):
        body = at + 40
        end = body + struct.unpack_from("<I", data, at + 16)[0]
        data[at + 24 : at + 32] = checksum(body, end)
        data[at + 32 : at + 40] = checksum(at, at + 32)
        at = end
    return bytes(data)


@pytest.fixture
def path(db, tmp_path):
    """A set with two texts and a parameter."""
    s = db.add_set("s")
    s["a"], s["b"] = "first", "other"
    db.add_parameter("p", ["*"])["a"] = 2
    db.write(tmp_path / "a.rxf")
    return tmp_path / "a.rxf"


def forge(path, old, new):
    data = path.read_bytes()
    assert data.count(old) == 1
    path.write_bytes(reseal(data.replace(old, new)))


@pytest.mark.parametrize("twin", [b"first", b"FIRST"])
def test_a_file_that_names_a_text_twice_is_not_opened(path, twin):
    forge(path, b"other", twin)
    with pytest.raises(ztb.DamagedFileError) as failure:
        ztb.open(path)
    assert str(failure.value) == (
        f"Error opening RXF file: File is damaged: text table of {path}, chunk 1, entry 2: "
        "text stands twice"
    )


@pytest.mark.parametrize("store", STORES)
def test_a_record_that_names_a_text_that_there_is_not_fails_its_set(path, tmp_path, store):
    # Decimal numbers that begin with 1 and go up by 1, then by 2.
    forge(path, b"\1\0\1\0" + struct.pack("<qq", 1, 1), b"\1\0\1\0" + struct.pack("<qq", 2, 1))
    text = re.escape(f"Symbol s could not be read from {path}: File is damaged: block 1 of 1 ")
    other = tmp_path / "b.rxf"
    with ztb.open(path, store=store) as db:
        for use in [lambda: len(db["s"]), lambda: dict(db["s"]), lambda: db.write(other)]:
            with pytest.raises(ztb.DamagedFileError, match=text):
                use()
        assert dict(db["p"]) == {("a",): 2.0} and not other.exists()
        db["s"].clear()
        db.write(other)


def test_a_file_that_is_cut_short_is_damaged(path):
    path.write_bytes(path.read_bytes()[:-40])
    with pytest.raises(ztb.DamagedFileError, match="Error opening RXF file: File is cut short"):
        ztb.open(path)
