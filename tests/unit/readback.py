#!/usr/bin/python3
"""Reads an image file with readers that did not write it (PIL; ImageMagick's command line only
for PICT, which PIL can't read; exiftool) and prints what the file really holds, as JSON: format,
size, dpi, compression and its settings, the description each reader finds, a digest of the decoded
pixels and the mean difference per channel against a reference picture."""
import hashlib
import io
import json
import struct
import subprocess
import sys

from PIL import Image


def jpeg_quality(im):
    # libjpeg scales the standard luminance table by the quality: find the one that gives the file's.
    std = [16, 11, 10, 16, 24, 40, 51, 61, 12, 12, 14, 19, 26, 58, 60, 55]
    return next((q for q in range(1, 101) if list(im.quantization[0])[:16] ==
                 [max(1, min(255, (s * (5000 // q if q < 50 else 200 - 2 * q) + 50) // 100)) for s in std]), None)


def main(path, reference):
    data = open(path, "rb").read()
    try:
        im = Image.open(path)
        out = {"format": im.format, "rle": im.tile[0][0] in ("packbits", "tga_rle")}  # known before loading
        im.load()
    except Exception:  # PICT
        im = Image.open(io.BytesIO(subprocess.run(["convert", path, "ppm:-"], check=True, capture_output=True).stdout))
        dpi = subprocess.run(["identify", "-format", "%x", path], capture_output=True, text=True).stdout.split()
        out = {"format": "PICT" if data[522:524] == b"\x00\x11" else "unknown", "dpi": float(dpi[0]) if dpi else None}
    if "dpi" in im.info:
        out["dpi"] = float(im.info["dpi"][0])
    if im.format == "PSD":  # the resolution resource: 16.16 fixed point
        res = {rid: d for rid, _, d in im.resources}
        out["dpi"] = struct.unpack(">I", res[0x03ED][:4])[0] / 65536.0 if 0x03ED in res else None
    if im.format == "BMP":
        out["bits"] = struct.unpack("<H", data[28:30])[0]
    if im.format == "JPEG":
        out.update(quality=jpeg_quality(im), progressive=bool(im.info.get("progressive") or im.info.get("progression")))
    out.update(size=list(im.size), interlaced=bool(im.info.get("interlace")), compression=im.info.get("compression"),
               top_left=im.info.get("orientation") == 1, bytes=len(data))
    tags = json.loads(subprocess.run(["exiftool", "-j", "-G1", "-ImageDescription", "-Description", path],
                                     capture_output=True).stdout or "[{}]")[0]
    found = {r: tags[t] for t, r in (("IFD0:ImageDescription", "exif"), ("XMP-dc:Description", "xmp"),
                                     ("PNG:Description", "png")) if t in tags}
    if im.format == "PNG" and "Description" in im.info:
        found["pil"] = im.info["Description"]
    if data.endswith(b"TRUEVISION-XFILE.\0"):  # Targa's extension area: comments of four 81-byte lines
        at = struct.unpack("<I", data[-26:-22])[0] + 43
        found["tga"] = b"".join(data[at + 81 * i:at + 81 * i + 81].split(b"\0")[0] for i in range(4)).decode()
    got, ref = im.convert("RGB"), Image.open(reference).convert("RGB")
    out.update(description=found, pixels=hashlib.sha1(got.tobytes()).hexdigest())
    if got.size == ref.size:
        out["difference"] = sum(abs(x - y) for x, y in zip(got.tobytes(), ref.tobytes())) / len(got.tobytes())
    print(json.dumps(out))


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
