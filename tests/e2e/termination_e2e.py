# SPDX-License-Identifier: MIT
"""Ending plyra from outside: SIGTERM while a movie window is open ends the program
cleanly, and the temporary movie of that window is removed."""

import glob
import signal
import sys

from e2e_support import E2EError, Plyra, copy_demo, main, wait_for


def temporary_movies():
    return set(glob.glob("/tmp/Plyra_*"))


def test(display, scratch, binary, render_binary, demo):
    package = copy_demo(demo, scratch)
    before = temporary_movies()
    plyra = Plyra(binary, display.display, [package], scratch)
    try:
        window = plyra.window("demo")
        plyra.focus(window)
        plyra.key("ctrl+shift+r")
        plyra.window("demo rendered movie", timeout=120)
        made = wait_for(lambda: temporary_movies() - before, what="the window's temporary movie")
        plyra.process.send_signal(signal.SIGTERM)
        status = plyra.wait()
        if status != 0:
            raise E2EError(f"plyra ended with status {status} on SIGTERM")
        left = made & temporary_movies()
        if left:
            raise E2EError(f"temporary movies left behind: {sorted(left)}")
    finally:
        plyra.kill()


if __name__ == "__main__":
    sys.exit(main(test))
