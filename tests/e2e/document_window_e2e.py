# SPDX-License-Identifier: MIT
"""The document window as a person uses it: open the demo, draw a line in the first
image with the mouse, choose another last image from the File menu by keys, save with
Ctrl+S, quit with Ctrl+Q; the saved package then holds one line more and the new image."""

import os
import sys

from e2e_support import Accessibility, E2EError, Plyra, copy_demo, main, render_info, wait_for, write_png


def test(display, scratch, binary, render_binary, demo):
    package = copy_demo(demo, scratch)
    lines_before = len(render_info(render_binary, package)["lines"])
    plyra = Plyra(binary, display.display, [package], scratch)
    try:
        window = plyra.window("demo")
        plyra.focus(window)
        a11y = Accessibility()
        first = a11y.find("First image")
        x, y, w, h = a11y.extents(first)
        if w < 100 or h < 100:
            raise E2EError(f"the first-image editor is only {w}x{h}")
        # The bottom-left corner of the demo's first image has no line near it.
        plyra.drag((x + 0.06 * w, y + 0.90 * h), (x + 0.30 * w, y + 0.80 * h))
        # File > Choose Last Image… by its mnemonics; the dialog's name field has the focus.
        replacement = os.path.join(scratch, "replacement.png")
        write_png(replacement, 400, 200)
        plyra.key("alt+f", "l")
        plyra.focus(plyra.window("Choose Last Image"))
        plyra.xdotool("type", "--delay", "10", replacement)
        plyra.key("Return")
        plyra.focus(window)
        plyra.key("ctrl+s")
        wait_for(lambda: len(render_info(render_binary, package)["lines"]) == lines_before + 1,
                 what="the saved package to hold the new line")
        plyra.quit()
    finally:
        plyra.kill()
    info = render_info(render_binary, package)
    if len(info["lines"]) != lines_before + 1:
        raise E2EError(f"expected {lines_before + 1} lines, found {len(info['lines'])}")
    last = info["images"][1]
    if (last["width"], last["height"]) != (400, 200):
        raise E2EError(f"the last image is {last['width']}x{last['height']}, not the chosen 400x200")


if __name__ == "__main__":
    sys.exit(main(test))
