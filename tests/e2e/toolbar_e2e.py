# SPDX-License-Identifier: MIT
"""A render window's toolbar arranged as a person does it: open the frame window of the
demo, right-click its toolbar, choose Customize Toolbar…, uncheck the Morph position
slider with the keyboard and press OK: the slider leaves the toolbar, Save still works
from the keyboard, and the arrangement is kept in the user defaults."""

import os
import sys
import time

from e2e_support import Accessibility, E2EError, Plyra, copy_demo, main, wait_for


def test(display, scratch, binary, render_binary, demo):
    package = copy_demo(demo, scratch)
    plyra = Plyra(binary, display.display, [package], scratch)
    try:
        window = plyra.window("demo")
        plyra.focus(window)
        a11y = Accessibility()
        plyra.key("ctrl+r")
        frame_window = plyra.window("rendered image 50%")
        slider = a11y.find("Morph position", "slider")
        settings = a11y.find("Settings", "push button")
        plyra.click(a11y.centre(settings), button=3)
        time.sleep(0.5)
        plyra.key("Down", "Return")
        a11y.find("Toolbar items")  # the dialog is open
        entry = a11y.find("Morph position", "list item")
        plyra.click(a11y.centre(entry))
        plyra.key("space", "Return")
        wait_for(lambda: not a11y.extents(slider)[2] or not slider.getState().contains(a11y.pyatspi.STATE_SHOWING),
                 what="the slider to leave the toolbar")

        with open(os.path.join(scratch, "defaults.ini")) as defaults:
            stored = defaults.read()
        section = stored.split("[MorphFrameController]", 1)
        if len(section) < 2 or "toolbarItems=" not in section[1] or "timeSlider" in section[1].split("\n", 2)[1]:
            raise E2EError(f"the arrangement was not kept: {stored!r}")

        plyra.focus(frame_window)
        plyra.key("ctrl+s")
        plyra.window("Save")  # the save dialog opens from the keyboard
        plyra.key("Escape")
        plyra.focus(window)
        plyra.quit()
    finally:
        plyra.kill()


if __name__ == "__main__":
    sys.exit(main(test))
