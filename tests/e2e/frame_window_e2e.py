# SPDX-License-Identifier: MIT
"""The frame window as a person uses it: open the demo, choose Render Image, wait for
the frame, move the Morph position slider to the end with the keyboard, save the frame
through the save dialog; the JPEG has the document's frame size and the title the new
time. Then an exact time typed into the time field: the PNG saved is byte for byte the
one plyra-render writes for that time."""

import os
import subprocess
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
        if (width, height) != (300, 300):
            raise E2EError(f"the saved frame is {width}x{height}, not the document's 300x300")

        field = a11y.find("Morph time in percent", "spin button")
        plyra.click(a11y.centre(field))
        plyra.key("ctrl+a")
        plyra.xdotool("type", "--delay", "20", "40.5")
        plyra.key("Return")
        plyra.window("rendered image 40.5%")
        wait_for(lambda: a11y.is_enabled(save), what="the frame at 40.5 %")
        typed = os.path.join(scratch, "typed.png")
        plyra.save_through_dialog(frame_window, a11y.centre(save), typed, "the frame at the typed time")
        cli = os.path.join(scratch, "cli.png")
        subprocess.run([render_binary, package, "-o", cli, "--time", "0.405", "--quiet"], check=True)
        with open(typed, "rb") as a, open(cli, "rb") as b:
            if a.read() != b.read():
                raise E2EError("the frame saved at 40.5 % differs from plyra-render --time 0.405")
        plyra.focus(window)
        plyra.quit()
    finally:
        plyra.kill()


if __name__ == "__main__":
    sys.exit(main(test))
