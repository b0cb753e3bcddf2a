#!/usr/bin/python3
"""Reads an image file with readers that did not write it (PIL; ImageMagick's command line only
for PICT, which PIL can't read) and prints what the file really holds, as JSON:
format, size, bits per pixel, dpi, compression, JPEG quality and progressive flag, and the mean
difference per channel against a reference picture (a binary PPM)."""
import json
import struct
import subprocess
import sys

from PIL import Image


def jpeg_quality(im):
    # libjpeg scales the standard luminance table by the quality; find the quality that gives
    # the file's table.
    std = [16, 11, 10, 16, 24, 40, 51, 61, 12, 12, 14, 19, 26, 58, 60, 55]
    table = list(im.quantization[0])
    for q in range(1, 101):
        scale = 5000 // q if q < 50 else 200 - 2 * q
        if all(max(1, min(255, (s * scale + 50) // 100)) == t for s, t in zip(std, table[:16])):
            return q
    return None


def psd_facts(data):
    pos = 26
    pos += 4 + struct.unpack(">I", data[pos:pos + 4])[0]  # colour mode data
    res_len = struct.unpack(">I", data[pos:pos + 4])[0]
    res, dpi = data[pos + 4:pos + 4 + res_len], None
    i = 0
    while i + 12 <= len(res) and res[i:i + 4] == b"8BIM":
        rid = struct.unpack(">H", res[i + 4:i + 6])[0]
        name_len = res[i + 6]
        j = i + 6 + ((name_len + 2) & ~1)
        size = struct.unpack(">I", res[j:j + 4])[0]
        if rid == 0x03ED:
            dpi = struct.unpack(">I", res[j + 4:j + 8])[0] / 65536.0
        i = j + 4 + size + (size & 1)
    pos += 4 + res_len
    pos += 4 + struct.unpack(">I", data[pos:pos + 4])[0]  # layers and masks
    return {"rle": struct.unpack(">H", data[pos:pos + 2])[0] == 1, "dpi": dpi}


def main(path, reference):
    data = open(path, "rb").read()
    out = {}
    if data[:4] == b"8BPS":
        out.update(psd_facts(data))
    if data[:2] == b"BM":
        out["bits"] = struct.unpack("<H", data[28:30])[0]
        out["dpi"] = struct.unpack("<i", data[38:42])[0] * 0.0254
    try:
        im = Image.open(path)
        im.load()
        out["format"] = im.format
    except Exception:  # PICT: no reader of PIL's own
        ppm = subprocess.run(["convert", path, "ppm:-"], check=True, capture_output=True).stdout
        im = Image.open(__import__("io").BytesIO(ppm))
        out["format"] = "PICT" if data[522:524] == b"\x00\x11" else "unknown"
        res = subprocess.run(["identify", "-format", "%x", path], capture_output=True, text=True)
        out["dpi"] = float(res.stdout.split()[0]) if res.stdout.strip() else None
    out["size"] = list(im.size)
    out["mode"] = im.mode
    if im.format == "JPEG":
        out["quality"] = jpeg_quality(im)
        out["progressive"] = bool(im.info.get("progressive") or im.info.get("progression"))
    if im.format == "PNG":
        out["interlaced"] = bool(im.info.get("interlace"))
    if im.format == "TIFF":
        out["compression"] = im.info.get("compression")
    if im.format == "TGA":
        out["rle"] = data[2] in (9, 10, 11)
        out["top_left"] = bool(data[17] & 0x20)
    if "dpi" in im.info and "dpi" not in out:
        out["dpi"] = float(im.info["dpi"][0])
    ref = Image.open(reference).convert("RGB")
    got = im.convert("RGB")
    if got.size == ref.size:
        a, b = got.tobytes(), ref.tobytes()
        out["difference"] = sum(abs(x - y) for x, y in zip(a, b)) / len(a)
    out["bytes"] = len(data)
    print(json.dumps(out))


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
