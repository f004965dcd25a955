# SPDX-License-Identifier: MIT
"""Unsaved work survives a kill and a termination signal: open the demo, draw a line, wait
for the recovery copy, kill -9 the program; start it again and answer "Recover"; press
Ctrl+Q and, while the question about saving is open, send SIGTERM: plyra ends with status
0 and keeps the copy; start a third time, "Recover", save with Ctrl+S and quit: the package
holds the line and no recovery copy is left."""

import glob
import os
import signal
import sys

from e2e_support import Accessibility, E2EError, Plyra, copy_demo, main, render_info, wait_for


def recovery_copies(scratch):
    return glob.glob(os.path.join(scratch, "state", "Plyra", "recovery", "*", "recovery.plist"))


def find_text(a11y, prefix):
    return a11y.pyatspi.findDescendant(a11y.app, lambda node: node is not None and node.name.startswith(prefix))


def recover(plyra):
    """Answers "Recover" in the alert about the demo's unsaved changes."""
    a11y = Accessibility()
    wait_for(lambda: find_text(a11y, "Plyra found unsaved changes to “demo” from"),
             what="the alert about the unsaved changes to demo")
    plyra.click(a11y.centre(a11y.find("Recover", "push button")))
    window = plyra.window("demo")
    plyra.focus(window)
    return a11y


def test(display, scratch, binary, render_binary, demo):
    package = copy_demo(demo, scratch)
    lines_before = len(render_info(render_binary, package)["lines"])
    plyra = Plyra(binary, display.display, [package], scratch)
    try:
        plyra.focus(plyra.window("demo"))
        a11y = Accessibility()
        x, y, w, h = a11y.extents(a11y.find("First image"))
        plyra.drag((x + 0.06 * w, y + 0.90 * h), (x + 0.30 * w, y + 0.80 * h))
        wait_for(lambda: recovery_copies(scratch), timeout=35, what="the recovery copy of the unsaved line")
    finally:
        plyra.kill()  # SIGKILL: nothing is cleaned up, nothing asked

    plyra = Plyra(binary, display.display, [], scratch)
    try:
        a11y = recover(plyra)
        plyra.key("ctrl+q")
        wait_for(lambda: find_text(a11y, "Do you want to save the changes made to the document"),
                 what="the question about saving demo")
        plyra.process.send_signal(signal.SIGTERM)
        status = plyra.wait()
        if status != 0:
            raise E2EError(f"plyra ended with status {status} on SIGTERM with the question open")
        if not recovery_copies(scratch):
            raise E2EError("SIGTERM did not keep the recovery copy")
    finally:
        plyra.kill()

    plyra = Plyra(binary, display.display, [], scratch)
    try:
        recover(plyra)
        plyra.key("ctrl+s")
        wait_for(lambda: len(render_info(render_binary, package)["lines"]) == lines_before + 1,
                 what="the saved package to hold the recovered line")
        plyra.quit()
    finally:
        plyra.kill()
    if recovery_copies(scratch):
        raise E2EError(f"recovery copies left after the save: {recovery_copies(scratch)}")


if __name__ == "__main__":
    sys.exit(main(test))
