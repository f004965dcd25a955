# SPDX-License-Identifier: MIT
"""The inspector panel as a person uses it: click a line of the demo in the first
image, open the inspector with Ctrl+I, type a new start time into its field, save;
undo in the document window and save again: the package holds the old time."""

import math
import sys

from e2e_support import Accessibility, Plyra, copy_demo, main, render_info, unit_to_screen, wait_for


def longest_line(info):
    def length(line):
        (x0, y0), (x1, y1) = line["startPoints"][0], line["endPoints"][0]
        return math.hypot(x1 - x0, y1 - y0)
    return max(range(len(info["lines"])), key=lambda i: length(info["lines"][i]))


def start_begins(render_binary, package):
    return [line["startPointBeginMoveTime"] for line in render_info(render_binary, package)["lines"]]


def test(display, scratch, binary, render_binary, demo):
    package = copy_demo(demo, scratch)
    info = render_info(render_binary, package)
    index = longest_line(info)
    line = info["lines"][index]
    middle = [(a + b) / 2 for a, b in zip(line["startPoints"][0], line["endPoints"][0])]
    before = start_begins(render_binary, package)

    plyra = Plyra(binary, display.display, [package], scratch)
    try:
        window = plyra.window("demo")
        plyra.focus(window)
        a11y = Accessibility()
        first = a11y.find("First image")
        plyra.click(unit_to_screen(a11y.extents(first), middle))
        plyra.key("ctrl+i")
        field = a11y.find("Start point begins moving")
        plyra.click(a11y.centre(field))
        plyra.key("ctrl+a")
        plyra.xdotool("type", "0.3")
        plyra.key("Return")

        plyra.focus(window)
        plyra.key("ctrl+s")
        wait_for(lambda: abs(start_begins(render_binary, package)[index] - 0.3) < 1e-6,
                 what="the saved line to begin moving at 0.3")
        plyra.key("ctrl+z")
        plyra.key("ctrl+s")
        wait_for(lambda: start_begins(render_binary, package) == before, what="the undone time to be saved")
        plyra.quit()
    finally:
        plyra.kill()


if __name__ == "__main__":
    sys.exit(main(test))
