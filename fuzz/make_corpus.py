#!/usr/bin/env python3
"""Writes the seed corpora of the fuzz targets into fuzz/corpus/<target>/.

Seeds come from the sample data (data/sample/*) and from hand-made cases that
sit on the edges of each format: the smallest accepted file, a version one
step off, sizes that do not fit, counts out of bounds, lines split at the
read size, and so on. The files are committed; run this again after changing
it (it rewrites every seed it makes and leaves other files alone).

Usage: python3 fuzz/make_corpus.py
"""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
SAMPLE = os.path.join(ROOT, "data", "sample")
CORPUS = os.path.join(HERE, "corpus")

VERSION = 82981.0
TABLE_SIZE = 8820
ENTRY_SIZE = 8824
NIR_POINTS = 511


def sample(name):
    with open(os.path.join(SAMPLE, name), "rb") as f:
        return f.read()


def write(target, name, data):
    folder = os.path.join(CORPUS, target)
    os.makedirs(folder, exist_ok=True)
    if isinstance(data, str):
        data = data.encode("latin-1")
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


# ---- parameter file -------------------------------------------------------

def header(version=VERSION):
    h = struct.pack("<f", version) + b"2024-05-06 09:30".ljust(32, b"\0")
    h += struct.pack("<f", 1.0) + b"fuzz-chip".ljust(32, b"\0") + b"fuzz-product".ljust(32, b"\0")
    assert len(h) == 104
    return h


def checksum(head, block):
    words = struct.unpack("<26I", head)
    s = 0
    for w in words:
        s ^= w
    for i in range(0, len(block) // 4 * 4, 4):
        s ^= struct.unpack_from("<I", block, i)[0]
    return s


def param_file(block, version=VERSION, size_word=None, chk_xor=0, trailing=b""):
    head = header(version)
    size = len(block) if size_word is None else size_word
    chk = checksum(head, block) ^ chk_xor
    return head + struct.pack("<I", size) + block + struct.pack("<I", chk) + trailing


def table(fusion_flag=1, seed=0):
    """A table whose fusion records and stage records hold mid-range values."""
    out = bytearray(TABLE_SIZE)
    struct.pack_into("<I", out, 0, fusion_flag)
    for g in range(16):
        base = 4 + g * 544
        struct.pack_into("<6Hh", out, base, 100 + g + seed, 128, 32, 64, 200 + 10 * g, 1000, -16)
        out[base + 14:base + 33] = bytes([8, 200, 0, 0xFF, 1, 10, 64, 8, 4, 200, 16, 240, 128, 8, 8, 8, 16, 240, 128])
        out[base + 33:base + 544] = bytes((i + g) & 0xFF for i in range(NIR_POINTS))
    for i in range(4 + 16 * 544, TABLE_SIZE):
        out[i] = (i * 13 + seed) & 0x7F
    return bytes(out)


def entry(table_type, body=None):
    return struct.pack("<i", table_type) + (body if body is not None else table(seed=table_type & 0xFF))


def param_seeds():
    t = "param_file"
    write(t, "sample_dsp_isp_para.bin", sample("dsp_isp_para.bin"))
    write(t, "one_table.bin", param_file(entry(0)))
    write(t, "two_tables_same_type.bin", param_file(entry(12) + entry(12)))
    write(t, "smallest_accepted_113.bin", param_file(b"\x01"))
    write(t, "empty_block_rejected_112.bin", param_file(b""))
    write(t, "version_next_float.bin", param_file(entry(0), version=82981.0078125))
    write(t, "checksum_off_by_one.bin", param_file(entry(1), chk_xor=1))
    write(t, "size_word_beyond_file.bin", param_file(entry(0), size_word=ENTRY_SIZE * 3))
    write(t, "size_word_huge.bin", param_file(entry(0), size_word=0xFFFFFFFF))
    write(t, "invalid_type_120.bin", param_file(entry(0) + entry(120)))
    write(t, "invalid_type_negative.bin", param_file(entry(-1)))
    write(t, "incomplete_entry.bin", param_file(entry(2) + entry(3)[:100]))
    write(t, "block_not_word_multiple.bin", param_file(b"\x07\x00\x00\x00\xAA\xBB"))
    write(t, "trailing_bytes.bin", param_file(entry(0), trailing=b"TRAILING" * 4))
    write(t, "header_only_truncated.bin", param_file(entry(0))[:60])


def table_seeds():
    t = "table_block"
    full = sample("dsp_isp_para.bin")
    size = struct.unpack_from("<I", full, 104)[0]
    write(t, "sample_block.bin", full[108:108 + size])
    write(t, "one_entry.bin", entry(0))
    write(t, "base_and_traffic.bin", entry(0) + entry(1) + entry(12) + entry(16))
    write(t, "ivs_only.bin", entry(69) + entry(66))
    write(t, "last_type_119.bin", entry(119))
    write(t, "invalid_second_entry.bin", entry(0) + entry(4096))
    write(t, "incomplete_last_entry.bin", entry(0) + entry(1)[:ENTRY_SIZE - 1])
    write(t, "three_bytes.bin", b"\x00\x00\x00")
    write(t, "empty.bin", b"")


# ---- registration file ----------------------------------------------------

def registration(zooms, reg_num=2, tform=True, crlf=False):
    nl = "\r\n" if crlf else "\n"
    text = "ZOOMNUM:%d REGNUM:%d%s" % (len(zooms), reg_num, nl)
    reg = 0x10
    for zoom in zooms:
        text += "ZOOM:%d%s" % (zoom, nl)
        for k in range(reg_num):
            text += "0x%x 0x%x%s" % (reg, k + 1, nl)
            reg += 1
        if tform:
            text += "TFORM: 1 0 0 0 1 0" + nl
    return text


def registration_seeds():
    t = "registration"
    write(t, "sample_calibration.txt", sample("calibration.txt"))
    write(t, "three_zooms.txt", registration([100, 200, 300]))
    write(t, "crlf.txt", registration([100, 200], crlf=True))
    write(t, "no_tform.txt", registration([100, 200, 300], tform=False))
    write(t, "separate_header_lines.txt", "# comment\nZOOMNUM: 2\nREGNUM: 1\nZOOM:5\n0x1 0x2\nTFORM:\nZOOM:9\nreg x3 val x4\nTFORM:\n")
    write(t, "regnum_before_zoomnum.txt", "REGNUM:2\nZOOMNUM:3\n")
    write(t, "empty_values.txt", "ZOOMNUM:\nREGNUM:\n")
    write(t, "negative_counts.txt", "ZOOMNUM:-3 REGNUM:-2\nZOOM:1\n")
    write(t, "huge_counts.txt", "ZOOMNUM:2147483647 REGNUM:2147483647\nZOOM:1\n0x1 0x1\n")
    write(t, "counts_at_bounds.txt", "ZOOMNUM:4096 REGNUM:256\nZOOM:1\n0x1 0x1\nTFORM:\n")
    write(t, "too_many_pairs.txt", registration([100], reg_num=2).replace("TFORM", "0x77 0x88\nTFORM"))
    write(t, "odd_register_lines.txt", "ZOOMNUM:1 REGNUM:4\nZOOM:7\n0x 0x5\nx\n0x10\n0xZZ 0xQQ\n-0x1 +0x2\nTFORM:\n")
    write(t, "long_line.txt", "ZOOMNUM:1 REGNUM:1\nZOOM:3\n" + "0x1" + " " * 300 + "0x2\nTFORM:\n")
    write(t, "zoom_overflow.txt", "ZOOMNUM:2 REGNUM:1\nZOOM:99999999999999999999\n0x1 0x1\nTFORM:\nZOOM:-99999999999\n0xffffffffff 0x1\nTFORM:\n")
    write(t, "truncated_mid_block.txt", registration([100, 200, 300])[:60])


# ---- NIR curve ------------------------------------------------------------

def nir_text(points):
    lines = []
    for k in range(39):
        lines.append("".join("%d," % p for p in points[13 * k:13 * k + 13]))
    lines.append(",".join("%d" % p for p in points[507:511]))
    return "\n".join(lines) + "\n"


def nir_seeds():
    t = "nir_curve"
    write(t, "sample_nir.txt", sample("nir.txt"))
    write(t, "ramp.txt", nir_text(list(range(511))))
    write(t, "negative_and_large.txt", nir_text([-1, 300, 255, 256, -256, 2147483647] * 85 + [0]))
    write(t, "blanks_before_numbers.txt", nir_text(list(range(511))).replace(",", ", "))
    text = nir_text(list(range(511)))
    write(t, "missing_last_line.txt", text[:text.rfind("\n", 0, len(text) - 1) + 1])
    write(t, "short_line.txt", text.replace("13,14,15,", "13,14,", 1))
    write(t, "crlf.txt", text.replace("\n", "\r\n"))
    write(t, "line_too_long.txt", " " * 300 + text)
    write(t, "empty.txt", "")


# ---- RLR files ------------------------------------------------------------

def rlr_input(custom, flash, host_buffer=False):
    flags = (1 if custom is not None else 0) | (2 if flash is not None else 0) | (4 if host_buffer else 0)
    custom = custom or b""
    return bytes([flags]) + struct.pack("<H", len(custom)) + custom + (flash or b"")


def rlr_seeds():
    t = "rlr"
    custom = sample("rlr_para.bin")
    write(t, "custom_only.bin", rlr_input(custom, None))
    write(t, "custom_and_flash_copy.bin", rlr_input(custom, custom[:768]))
    write(t, "same_768.bin", rlr_input(custom[:768], custom[:768], host_buffer=True))
    write(t, "custom_shorter_than_229.bin", rlr_input(custom[:200], custom[:768]))
    write(t, "custom_shorter_than_tables.bin", rlr_input(custom[:500], None))
    write(t, "flash_differs_in_version.bin", rlr_input(custom, custom[:767] + b"\x09"))
    write(t, "nothing.bin", rlr_input(None, None))
    write(t, "flash_only.bin", rlr_input(None, custom))


# ---- console --------------------------------------------------------------

COMMANDS = ["ep_delta", "fusion_hf_ratio", "fwmin_wt", "nir_k", "hf_zoom", "dark_inner", "high_lum_thr",
            "fwmin_limit", "fwmax_limit", "copy_en", "nir_a", "vis_b", "nir_min", "uv_coef", "uv_diff_thr",
            "uv_diff_min", "uv_diff_max", "uv_vlight_min", "uv_vlight_max", "uv_sat_limit", "uv_rsmooth",
            "uv_gsmooth", "uv_bsmooth", "uv_wmin", "uv_wmax", "uv_w", "w_nir"]


def console(*args):
    return b"\0".join(a.encode() for a in args)


def console_seeds():
    t = "console"
    write(t, "ep_delta.bin", console("ep_delta", "100"))
    write(t, "two_in_order.bin", console("ep_delta", "10", "hf_zoom", "200"))
    write(t, "out_of_order.bin", console("hf_zoom", "200", "ep_delta", "10"))
    write(t, "run_param.bin", console("runParam", "1"))
    write(t, "run_param_alone.bin", console("runParam"))
    write(t, "w_nir.bin", console("w_nir", "3"))
    write(t, "unknown.bin", console("nonsense", "1"))
    write(t, "values.bin", console("dark_inner", "12abc", "high_lum_thr", "-99999999999", "copy_en", "abc"))
    every = []
    for i, name in enumerate(COMMANDS):
        every += [name, str(i * 37 - 100)]
    write(t, "every_command_16.bin", console(*every[:32]))
    write(t, "every_command_rest.bin", console(*every[32:]))
    write(t, "thirty_three_names.bin", console(*(["ep_delta"] * 33)))
    write(t, "empty.bin", b"")


if __name__ == "__main__":
    param_seeds()
    table_seeds()
    registration_seeds()
    nir_seeds()
    rlr_seeds()
    console_seeds()
