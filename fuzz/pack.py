#!/usr/bin/env python3
"""Packs of inputs: each is preceded by its length in two bytes, low byte first.

pack.py split PACK FOLDER     writes each input to a file in FOLDER
pack.py join PACK FOLDER      makes a pack of the files in FOLDER, the shortest first
"""
import hashlib
import pathlib
import sys


def split(pack, folder):
    data = pack.read_bytes() if pack.exists() else b""
    while data:
        size = int.from_bytes(data[:2], "little")
        content, data = data[2 : 2 + size], data[2 + size :]
        (folder / hashlib.sha1(content).hexdigest()).write_bytes(content)


def join(pack, folder):
    inputs = sorted((f.read_bytes() for f in folder.iterdir()), key=lambda c: (len(c), c))
    pack.write_bytes(b"".join(len(c).to_bytes(2, "little") + c for c in inputs))


if __name__ == "__main__":
    {"split": split, "join": join}[sys.argv[1]](*map(pathlib.Path, sys.argv[2:]))
