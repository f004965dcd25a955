#!/usr/bin/env python3
# Builds resources/demo/demo.plyra from the two photographs and resources/demo/demo-lines.txt.
# A maintainer's tool (needs python3-pil); the package it writes is committed, so neither
# building nor running Plyra needs it.
import os
import plistlib
import shutil
import sys

from PIL import Image

here = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "resources", "demo")
first = Image.open(os.path.join(here, "ast_face.png")).convert("RGB")
last = Image.open(os.path.join(here, "hopper_face.png")).convert("RGB")


def unit(x, y, size):
    # Unit coordinates: fraction of the width from the left, of the height from the bottom.
    return "{%.6g, %.6g}" % (x / size[0], 1.0 - y / size[1])


lines = []
with open(os.path.join(here, "demo-lines.txt")) as f:
    for row in f:
        row = row.strip()
        if not row or row.startswith("#"):
            continue
        left, right = row.split("|")
        a = [float(v) for v in left.split()[1:]]
        b = [float(v) for v in right.split()]
        lines.append({
            "startPoints": [unit(a[0], a[1], first.size), unit(b[0], b[1], last.size)],
            "endPoints": [unit(a[2], a[3], first.size), unit(b[2], b[3], last.size)],
            "startPointBeginMoveTime": "0", "startPointStopMoveTime": "1",
            "endPointBeginMoveTime": "0", "endPointStopMoveTime": "1",
            "dissolveStartTime": "0.2", "dissolveEndTime": "0.8",
        })

package = os.path.join(here, "demo.plyra")
shutil.rmtree(package, ignore_errors=True)
os.makedirs(package)
first.save(os.path.join(package, "Image_0.tiff"), compression="packbits")
last.save(os.path.join(package, "Image_1.tiff"), compression="packbits")
info = {
    "firstImagePath": "Image_0.tiff",
    "lastImagePath": "Image_1.tiff",
    "frameWidth": float(first.size[0]),
    "frameHeight": float(first.size[1]),
    "codecFormat": "avc1",
    "codecQuality": 768,
    "morphLines": lines,
}
with open(os.path.join(package, "info.plist"), "wb") as f:
    plistlib.dump(info, f, fmt=plistlib.FMT_XML)
print("wrote %s with %d lines" % (package, len(lines)), file=sys.stderr)
