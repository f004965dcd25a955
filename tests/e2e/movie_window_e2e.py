# SPDX-License-Identifier: MIT
"""The movie window as a person uses it: open the demo, choose Render Movie, set 10
frames, easing in and out, half a second on the first image and ping-pong in the
settings sheet, watch the title go from "rendering movie" to "rendered movie", save the
movie as .mp4 through the save dialog; ffprobe reads 19 H.264 frames lasting 1.45 s from
it. The document, saved and read by plyra-render, keeps the movie's settings."""

import json
import os
import shutil
import subprocess
import sys
import time

from e2e_support import SKIP, Accessibility, E2EError, Plyra, copy_demo, main, render_info, wait_for


def probe(path):
    out = subprocess.run(["ffprobe", "-v", "error", "-count_frames", "-select_streams", "v:0",
                          "-show_entries", "stream=codec_name,nb_read_frames:format=duration", "-of", "json", path],
                         capture_output=True, text=True, check=True)
    found = json.loads(out.stdout)
    stream = found["streams"][0]
    return stream["codec_name"], int(stream["nb_read_frames"]), float(found["format"]["duration"])


def retype(plyra, a11y, name, text):
    plyra.click(a11y.centre(a11y.find(name)))
    plyra.key("ctrl+a")
    plyra.xdotool("type", "--delay", "20", text)


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
        retype(plyra, a11y, "Number of frames", "10")
        plyra.click(a11y.centre(a11y.find("Linear", "combo box")))
        plyra.key("End", "Return")
        retype(plyra, a11y, "Hold at start", "0.5")
        plyra.click(a11y.centre(a11y.find("Ping-pong")))
        plyra.click(a11y.centre(a11y.find("OK", "push button")))

        plyra.window("demo rendered movie", timeout=120)
        save = a11y.find("Save", "push button")
        wait_for(lambda: a11y.is_enabled(save), what="Save to be enabled")
        target = os.path.join(scratch, "morph.mp4")
        plyra.save_through_dialog(movie_window, a11y.centre(save), target, "the saved movie")
        time.sleep(0.5)
        # Forth and back, the last frame once: 19 frames of 1/20 s, the first held 0.5 s.
        codec, count, duration = probe(target)
        if (codec, count) != ("h264", 19) or abs(duration - 1.45) > 0.01:
            raise E2EError(f"the saved movie is {count} {codec} frames in {duration} s, not 19 h264 in 1.45 s")
        plyra.focus(window)
        plyra.key("ctrl+s")
        wait_for(lambda: render_info(render_binary, package).get("movie"), what="the saved document's movie")
        movie = render_info(render_binary, package)["movie"]
        if (movie["frames"], movie["easing"], movie["hold"], movie["pingPong"]) != (10, "ease-in-out", [0.5, 0], True):
            raise E2EError(f"the document keeps the movie as {movie}")
        plyra.quit()
    finally:
        plyra.kill()


if __name__ == "__main__":
    if shutil.which("ffprobe") is None:
        print("SKIP: ffprobe is not installed")
        sys.exit(SKIP)
    sys.exit(main(test))
