# SPDX-License-Identifier: MIT
"""The movie window as a person uses it: open the demo, choose Render Movie, set 10
frames in the settings sheet, watch the title go from "rendering movie" to "rendered
movie", save the movie through the save dialog; ffprobe reads 10 frames from it."""

import json
import os
import shutil
import subprocess
import sys
import time

from e2e_support import SKIP, Accessibility, E2EError, Plyra, copy_demo, main, wait_for


def frame_count(path):
    out = subprocess.run(["ffprobe", "-v", "error", "-count_frames", "-select_streams", "v:0",
                          "-show_entries", "stream=nb_read_frames", "-of", "json", path],
                         capture_output=True, text=True, check=True)
    return int(json.loads(out.stdout)["streams"][0]["nb_read_frames"])


def test(display, scratch, binary, render_binary, demo):
    package = copy_demo(demo, scratch)
    plyra = Plyra(binary, display.display, [package], scratch)
    try:
        window = plyra.window("demo")
        plyra.focus(window)
        a11y = Accessibility()
        plyra.key("ctrl+shift+r")
        movie_window = plyra.window("demo render")
        plyra.focus(movie_window)
        plyra.click(a11y.centre(a11y.find("Settings", "push button")))
        frames = a11y.find("Number of frames")
        plyra.click(a11y.centre(frames))
        plyra.key("ctrl+a")
        plyra.xdotool("type", "10")
        plyra.click(a11y.centre(a11y.find("OK", "push button")))

        plyra.window("demo rendered movie", timeout=120)
        save = a11y.find("Save", "push button")
        wait_for(lambda: a11y.is_enabled(save), what="Save to be enabled")
        target = os.path.join(scratch, "morph.mov")
        plyra.save_through_dialog(movie_window, a11y.centre(save), target, "the saved movie")
        time.sleep(0.5)
        count = frame_count(target)
        if count != 10:
            raise E2EError(f"the saved movie has {count} frames, not 10")
        plyra.focus(window)
        plyra.quit()
    finally:
        plyra.kill()


if __name__ == "__main__":
    if shutil.which("ffprobe") is None:
        print("SKIP: ffprobe is not installed")
        sys.exit(SKIP)
    sys.exit(main(test))
