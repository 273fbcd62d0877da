"""Reads exchange files through the Python package: a path a line on standard input, a verdict a line
on standard output, as JSON {"kind": "open refused" | "read refused" | "delivered" | "broken",
"digest": ..., "text": ...}."""

import hashlib
import json
import os
import struct
import sys

import ztb

OLD_FILE = b"the file that stood here before"


def bits(value):
    return struct.pack("<d", value)


def read(db):
    """Digest of all that a database says, and the text of the first symbol that cannot be read."""
    digest = hashlib.blake2b(digest_size=16)
    refused = ""
    for symbol in db.symbols():
        digest.update(symbol.name.encode())
        if isinstance(symbol, ztb.Alias):
            continue
        digest.update(f"|{symbol.dimension}|{symbol.text}\n".encode())
        try:
            for key, value in symbol.items():
                digest.update(repr(key).encode())
                if isinstance(symbol, ztb.Set):
                    digest.update(value.encode())
                elif isinstance(symbol, ztb.Parameter):
                    digest.update(bits(value))
                else:
                    digest.update(b"".join(bits(number) for number in value))
        except ztb.Error as error:
            refused = refused or str(error) or "no text"
    return digest.hexdigest(), refused


def verdict(path, scratch):
    try:
        db = ztb.open(path)
    except (ztb.Error, OSError) as error:
        return {"kind": "open refused" if str(error) else "broken", "text": str(error)}
    with db:
        digest, refused = read(db)
        with open(scratch, "wb") as out:
            out.write(OLD_FILE)
        try:
            db.write(scratch)
            written = ""
        except (ztb.Error, OSError) as error:
            written = str(error) or "no text"
        if refused:
            with open(scratch, "rb") as old:
                kept = old.read() == OLD_FILE
            if not written or not kept:
                return {"kind": "broken", "text": "an unreadable symbol was written: " + refused}
            return {"kind": "read refused", "text": refused}
        if written:
            return {"kind": "broken", "text": "what was read cannot be written: " + written}
    with ztb.open(scratch) as again:
        if read(again) != (digest, ""):
            return {"kind": "broken", "text": "what was written reads back otherwise"}
    return {"kind": "delivered", "digest": digest}


def main():
    for line in sys.stdin:
        path = line.rstrip("\n")
        try:
            answer = verdict(path, path + ".scratch")
        except Exception as error:  # anything else is a broken promise, not the end of the attack
            answer = {"kind": "broken", "text": f"{type(error).__name__}: {error}"}
        print(json.dumps(answer), flush=True)
        if os.path.exists(path + ".scratch"):
            os.remove(path + ".scratch")


main()
