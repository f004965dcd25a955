# SPDX-License-Identifier: MIT
"""The frame window as a person uses it: open the demo, choose Render Image, wait for
the frame, move the Morph position slider to the end with the keyboard, save the frame
through the save dialog; the JPEG has the frame's size and the title the new time."""

import os
import sys

from e2e_support import Accessibility, E2EError, Plyra, copy_demo, jpeg_size, main, wait_for


def test(display, scratch, binary, render_binary, demo):
    package = copy_demo(demo, scratch)
    plyra = Plyra(binary, display.display, [package], scratch)
    try:
        window = plyra.window("demo")
        plyra.focus(window)
        a11y = Accessibility()
        plyra.key("ctrl+r")
        frame_window = plyra.window("rendered image 50%")
        save = a11y.find("Save", "push button")
        wait_for(lambda: a11y.is_enabled(save), what="the frame to be rendered (Save enabled)")

        slider = a11y.find("Morph position", "slider")
        plyra.click(a11y.centre(slider))
        plyra.key("End")
        plyra.window("rendered image 100%")
        wait_for(lambda: a11y.is_enabled(save), what="the frame at time 1")

        target = os.path.join(scratch, "frame.jpg")
        plyra.save_through_dialog(frame_window, a11y.centre(save), target, "the saved frame")
        width, height = jpeg_size(target)
        if width < 100 or height < 100:
            raise E2EError(f"the saved frame is only {width}x{height}")
        plyra.focus(window)
        plyra.quit()
    finally:
        plyra.kill()


if __name__ == "__main__":
    sys.exit(main(test))
