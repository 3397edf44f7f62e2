#!/usr/bin/env python3
"""Writes the sample RLR table file data/sample/rlr_para.bin.

Layout (L = file length, here 1024 bytes):
  0..255    day table      256 bytes
  256..511  dusk table     256 bytes
  512..767  night table    256 bytes
  L-229     version        3 bytes  (1.0.3)
  L-226     date stamp     6 bytes  (year-2000, month, day, hour, minute, second)
  L-220     220 bytes that readers skip (zero here)
Bytes between 768 and L-229 are not read (zero here).

Usage: python3 data/sample/make_rlr_para.py [OUTPUT]   (default: rlr_para.bin beside this script)
"""
import os
import sys

LENGTH = 1024
VERSION = (1, 0, 3)
STAMP = (24, 5, 6, 9, 30, 0)  # 2024/5/6 9:30:0


def curve(gain, lift):
    """A monotonic 256-entry red-light gain table: lift in the dark, soft knee near white."""
    out = []
    for i in range(256):
        x = i / 255.0
        y = lift + (255 - lift) * (x ** gain)
        out.append(max(0, min(255, int(y + 0.5))))
    return out


def build():
    data = bytearray(LENGTH)
    tables = curve(1.00, 0) + curve(0.80, 8) + curve(0.60, 20)  # day, dusk, night
    data[0:768] = bytes(tables)
    at = LENGTH - 229
    data[at:at + 3] = bytes(VERSION)
    data[at + 3:at + 9] = bytes(STAMP)
    return bytes(data)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    path = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "rlr_para.bin")
    with open(path, "wb") as f:
        f.write(build())
    print("wrote", path, LENGTH, "bytes")


if __name__ == "__main__":
    main()
