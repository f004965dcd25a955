# SPDX-License-Identifier: MIT
"""Face lines as a person makes them: plyra-render --new makes a document of two
portraits, the toolbar's Face Lines button adds the lines that pair the faces, Ctrl+S
saves them, Ctrl+Z takes all of them away in one step. Skipped in a build without the
face networks."""

import os
import shutil
import subprocess
import sys
import tempfile

from e2e_support import SKIP, Accessibility, Plyra, main, render_info, wait_for

PHOTOS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data", "photos")
FACES = [os.path.join(PHOTOS, "ast_face.png"), os.path.join(PHOTOS, "hopper_face.png")]


def saved_line_count(plyra, render_binary, package):
    plyra.key("ctrl+s")
    return len(render_info(render_binary, package)["lines"])


def test(display, scratch, binary, render_binary, demo):
    package = os.path.join(scratch, "faces.plyra")
    subprocess.run([render_binary, "--new", *FACES, "-o", package, "--quiet"], check=True)
    plyra = Plyra(binary, display.display, [package], scratch)
    try:
        window = plyra.window("faces")
        plyra.focus(window)
        a11y = Accessibility()
        button = a11y.find("Face Lines", role="push button")
        wait_for(lambda: a11y.is_enabled(button), what="Face Lines to be enabled")
        plyra.click(a11y.centre(button))
        # The faces are found off the main thread; each save shows how far it got.
        wait_for(lambda: saved_line_count(plyra, render_binary, package) == 39, interval=0.5,
                 what="the saved package to hold the 39 face lines")
        plyra.key("ctrl+z")
        wait_for(lambda: saved_line_count(plyra, render_binary, package) == 0, interval=0.5,
                 what="one undo to take all face lines away")
        plyra.quit()
    finally:
        plyra.kill()


def face_lines_available(render_binary):
    scratch = tempfile.mkdtemp(prefix="plyra-e2e-probe-")
    try:
        probe = subprocess.run([render_binary, "--new", *FACES, "-o", os.path.join(scratch, "probe.plyra"),
                                "--face-lines", "--quiet"], capture_output=True, text=True)
        return "not available in this build" not in probe.stderr
    finally:
        shutil.rmtree(scratch, ignore_errors=True)


if __name__ == "__main__":
    if len(sys.argv) == 4 and not face_lines_available(sys.argv[2]):
        print("SKIP: this build has no face networks")
        sys.exit(SKIP)
    sys.exit(main(test))
