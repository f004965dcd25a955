# SPDX-License-Identifier: MIT
"""Takes the face detector and the 468-point face landmark network out of the npm
package @mediapipe/face_mesh (a .tgz as `npm pack` writes it) and converts both to
ONNX files in an output folder.

The package packs its TFLite files into one data file; its loader script lists each
file's start and end offset there."""

import argparse
import json
import os
import re
import sys
import tarfile

import onnx

from tflite_to_onnx import convert

LOADER = "package/face_mesh_solution_packed_assets_loader.js"
DATA = "package/face_mesh_solution_packed_assets.data"
NETWORKS = ("face_detection_short_range.tflite", "face_landmark.tflite")


def packed_offsets(loader_text):
    """File name -> (start, end) of every file the loader script lists."""
    match = re.search(r"loadPackage\((\{.*?\})\)", loader_text, re.S)
    if not match:
        raise ValueError(f"{LOADER} lists no packed files")
    files = json.loads(match.group(1))["files"]
    return {os.path.basename(f["filename"]): (f["start"], f["end"]) for f in files}


def networks(package_path):
    """Name -> bytes of each network in NETWORKS."""
    with tarfile.open(package_path, "r:gz") as package:
        offsets = packed_offsets(package.extractfile(LOADER).read().decode())
        data = package.extractfile(DATA).read()
    missing = [n for n in NETWORKS if n not in offsets]
    if missing:
        raise ValueError(f"the package has no {', '.join(missing)}")
    return {name: data[offsets[name][0]:offsets[name][1]] for name in NETWORKS}


def write_atomically(model, path):
    partial = path + ".partial"
    onnx.save(model, partial)
    os.replace(partial, path)


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("package", help="mediapipe-face_mesh-VERSION.tgz")
    parser.add_argument("output", help="folder for the .onnx files")
    args = parser.parse_args(argv)
    os.makedirs(args.output, exist_ok=True)
    for name, tflite in networks(args.package).items():
        onnx_name = name.replace(".tflite", ".onnx")
        write_atomically(convert(tflite, name), os.path.join(args.output, onnx_name))


if __name__ == "__main__":
    main(sys.argv[1:])
