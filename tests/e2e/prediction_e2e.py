# SPDX-License-Identifier: MIT
"""Predicted counterparts and the transform frame as a person uses them: a document whose
last image shows the first turned, smaller and shifted, with three true line pairs; a line
drawn with the mouse in the first image is saved with its counterpart at the mapped place
in the last image; Select All, a drag of the frame's top-right corner scales the first
image's lines about the opposite corner; Edit > Flip Selection Horizontally mirrors them;
Ctrl+D adds a copy of them beside them."""

import math
import os
import sys

from e2e_support import Accessibility, E2EError, Plyra, main, render_info, unit_to_screen, wait_for, write_png

FIRST = (400, 300)
LAST = (300, 400)


def to_last(p):
    """The true map: scale 0.6, turned by 12°, shifted, between the images' pixels."""
    a = math.radians(12.0)
    x, y = p[0] * FIRST[0], p[1] * FIRST[1]
    return ((0.6 * (math.cos(a) * x - math.sin(a) * y) + 50) / LAST[0],
            (0.6 * (math.sin(a) * x + math.cos(a) * y) + 90) / LAST[1])


TRUE_LINES = [((0.15, 0.7), (0.35, 0.8)), ((0.6, 0.75), (0.8, 0.65)), ((0.5, 0.45), (0.55, 0.6))]


def line_plist(start, end):
    def point(p):
        return f"<string>{{{p[0]:.6f}, {p[1]:.6f}}}</string>"
    return ("<dict><key>startPoints</key><array>" + point(start) + point(to_last(start)) + "</array>"
            "<key>endPoints</key><array>" + point(end) + point(to_last(end)) + "</array></dict>")


def write_package(scratch):
    package = os.path.join(scratch, "pairs.plyra")
    os.makedirs(package)
    write_png(os.path.join(package, "first.png"), *FIRST)
    write_png(os.path.join(package, "last.png"), *LAST)
    with open(os.path.join(package, "info.plist"), "w") as out:
        out.write('<?xml version="1.0" encoding="UTF-8"?>\n<plist version="1.0"><dict>'
                  "<key>firstImagePath</key><string>first.png</string>"
                  "<key>lastImagePath</key><string>last.png</string>"
                  f"<key>frameWidth</key><real>{FIRST[0]}</real><key>frameHeight</key><real>{FIRST[1]}</real>"
                  "<key>morphLines</key><array>" + "".join(line_plist(*l) for l in TRUE_LINES) +
                  "</array></dict></plist>\n")
    return package


def points(info, track):
    return [(tuple(l["startPoints"][track]), tuple(l["endPoints"][track])) for l in info["lines"]]


def expect_near(actual, expected, tolerance, what):
    if math.hypot(actual[0] - expected[0], actual[1] - expected[1]) > tolerance:
        raise E2EError(f"{what}: {actual} is not at {expected}")


def saved_after(plyra, render_binary, package, changed):
    plyra.key("ctrl+s")
    return wait_for(lambda: (lambda info: info if changed(info) else None)(render_info(render_binary, package)),
                    what="the saved package to show the change")


def test(display, scratch, binary, render_binary, demo):
    package = write_package(scratch)
    plyra = Plyra(binary, display.display, [package], scratch)
    try:
        window = plyra.window("pairs")
        plyra.focus(window)
        a11y = Accessibility()
        box = a11y.extents(a11y.find("First image"))
        plyra.drag(unit_to_screen(box, (0.2, 0.2)), unit_to_screen(box, (0.45, 0.3)))
        info = saved_after(plyra, render_binary, package, lambda i: len(i["lines"]) == 4)
        drawn = points(info, 0)[3]
        predicted = points(info, 1)[3]
        for k in (0, 1):
            expect_near(predicted[k], to_last(drawn[k]), 1e-4, "the predicted counterpart")

        # Select All, then drag the frame's top-right corner 40 pixels left and 30 down.
        plyra.key("ctrl+a")
        before = [p for line in points(info, 0) for p in line]
        left, bottom = min(p[0] for p in before), min(p[1] for p in before)
        right, top = max(p[0] for p in before), max(p[1] for p in before)
        corner = unit_to_screen(box, (right, top))
        plyra.drag(corner, (corner[0] - 40, corner[1] + 30))
        sx = 1 - 40 / (box[2] * (right - left))
        sy = 1 - 30 / (box[3] * (top - bottom))
        drawn_info = info
        info = saved_after(plyra, render_binary, package, lambda i: points(i, 0)[0] != points(drawn_info, 0)[0])
        after = [p for line in points(info, 0) for p in line]
        for old, new in zip(before, after):
            expect_near(new, (left + sx * (old[0] - left), bottom + sy * (old[1] - bottom)), 2e-3, "a scaled point")
        if points(info, 1) != points(drawn_info, 1):
            raise E2EError("scaling in the first image moved points of the last image")

        # Edit > Flip Selection Horizontally, by its mnemonics.
        plyra.key("alt+e", "h")
        mirrored = min(p[0] for p in after) + max(p[0] for p in after)
        scaled_info = info
        info = saved_after(plyra, render_binary, package, lambda i: points(i, 0)[0] != points(scaled_info, 0)[0])
        for old, new in zip(after, [p for line in points(info, 0) for p in line]):
            expect_near(new, (mirrored - old[0], old[1]), 1e-4, "a mirrored point")

        # Edit > Duplicate: copies 10 pixels of the view right of and below the lines.
        plyra.key("ctrl+d")
        flipped = points(info, 0)
        info = saved_after(plyra, render_binary, package, lambda i: len(i["lines"]) == 2 * len(flipped))
        for old, new in zip([p for line in flipped for p in line], [p for line in points(info, 0)[4:] for p in line]):
            expect_near(new, (old[0] + 10 / box[2], old[1] - 10 / box[3]), 1e-4, "a copied point")
        plyra.quit()
    finally:
        plyra.kill()


if __name__ == "__main__":
    sys.exit(main(test))
