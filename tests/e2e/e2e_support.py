# SPDX-License-Identifier: MIT
"""Drives the real plyra program on a virtual X display, as a person would: real X
input through xdotool, the windows and their controls found through the accessibility
bus (AT-SPI), screenshots for failures. Used by the end-to-end tests in this folder."""

import json
import os
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import zlib


class E2EError(AssertionError):
    pass


def wait_for(predicate, timeout=20.0, interval=0.1, what="condition"):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        value = predicate()
        if value:
            return value
        time.sleep(interval)
    raise E2EError(f"timed out waiting for {what}")


class VirtualDisplay:
    """An Xvfb server on a display number it chooses itself."""

    def __init__(self, size="1400x900x24"):
        read_fd, write_fd = os.pipe()
        self.process = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_fd), "-screen", "0", size, "-nolisten", "tcp"],
            pass_fds=(write_fd,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_fd)
        with os.fdopen(read_fd) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise E2EError("Xvfb did not start")
        self.display = f":{number}"

    def close(self):
        self.process.terminate()
        self.process.wait(timeout=10)

    def screenshot(self, path):
        """Keeps the screen as an X window dump (view it with xwud -in PATH)."""
        xwd = subprocess.run(["xwd", "-root", "-silent", "-display", self.display], capture_output=True)
        if xwd.returncode == 0:
            with open(path, "wb") as out:
                out.write(xwd.stdout)


class Plyra:
    """The plyra program running on a virtual display, with its own user defaults."""

    def __init__(self, binary, display, args, scratch, language="en"):
        self.display = display
        self.scratch = scratch
        env = dict(os.environ)
        env.update({
            "DISPLAY": display,
            "QT_QPA_PLATFORM": "xcb",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            "QT_ACCESSIBILITY": "1",
            "PLYRA_DEFAULTS_FILE": os.path.join(scratch, "defaults.ini"),
            "XDG_STATE_HOME": os.path.join(scratch, "state"),
            "LANGUAGE": language,
            "LC_ALL": "C.UTF-8" if language == "en" else "de_DE.UTF-8",
            "LANG": "C.UTF-8" if language == "en" else "de_DE.UTF-8",
        })
        env.pop("WAYLAND_DISPLAY", None)
        self.log = open(os.path.join(scratch, "plyra.log"), "w")
        self.process = subprocess.Popen([binary] + args, env=env, stdout=self.log, stderr=subprocess.STDOUT)

    def xdotool(self, *args, check=True):
        result = subprocess.run(["xdotool"] + [str(a) for a in args], capture_output=True, text=True,
                                env=dict(os.environ, DISPLAY=self.display))
        if check and result.returncode != 0:
            raise E2EError(f"xdotool {' '.join(map(str, args))} failed: {result.stderr}")
        return result.stdout.strip()

    def window(self, name_pattern, timeout=30.0):
        def find():
            out = self.xdotool("search", "--onlyvisible", "--name", name_pattern, check=False)
            return out.split()[0] if out else None
        return wait_for(find, timeout, what=f"a window named like {name_pattern!r}")

    def focus(self, window):
        self.xdotool("windowraise", window)
        self.xdotool("windowfocus", "--sync", window)
        time.sleep(0.2)

    def key(self, *keys):
        self.xdotool("key", "--delay", "60", *keys)

    def drag(self, start, end, steps=12, button=1):
        self.xdotool("mousemove", "--sync", int(start[0]), int(start[1]))
        self.xdotool("mousedown", button)
        for i in range(1, steps + 1):
            x = start[0] + (end[0] - start[0]) * i / steps
            y = start[1] + (end[1] - start[1]) * i / steps
            self.xdotool("mousemove", "--sync", int(x), int(y))
            time.sleep(0.02)
        self.xdotool("mouseup", button)

    def click(self, point, button=1):
        self.xdotool("mousemove", "--sync", int(point[0]), int(point[1]))
        self.xdotool("click", button)

    def wait(self, timeout=20.0):
        try:
            return self.process.wait(timeout=timeout)
        except subprocess.TimeoutExpired:
            raise E2EError("plyra did not quit")

    def quit(self):
        """Quits with Ctrl+Q and expects a clean exit."""
        self.key("ctrl+q")
        if self.wait() != 0:
            raise E2EError("plyra did not exit cleanly")

    def save_through_dialog(self, window, save_button, target, what):
        """Clicks a render window's Save, types the target into the save dialog's name
        field (focused when it opens) and waits until the file is written."""
        self.focus(window)
        self.click(save_button)
        time.sleep(1.0)
        self.key("ctrl+a")
        self.xdotool("type", "--delay", "20", target)
        self.key("Return")
        wait_for(lambda: os.path.exists(target) and os.path.getsize(target) > 1000, what=what)

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        self.log.close()


class Accessibility:
    """The accessible objects of one application, read through AT-SPI."""

    def __init__(self, app_name="plyra", timeout=30.0):
        import pyatspi  # noqa: deferred, so that a missing module gives a clear skip
        self.pyatspi = pyatspi
        self.app = wait_for(lambda: self._find_app(app_name), timeout, what="plyra on the accessibility bus")

    def _find_app(self, name):
        desktop = self.pyatspi.Registry.getDesktop(0)
        for i in range(desktop.childCount):
            app = desktop.getChildAtIndex(i)
            if app is not None and app.name == name:
                return app
        return None

    def find(self, name, role=None, timeout=20.0):
        def search():
            def matches(node):
                return node is not None and node.name == name and (role is None or node.getRoleName() == role)
            return self.pyatspi.findDescendant(self.app, matches)
        return wait_for(search, timeout, what=f"an accessible object named {name!r}")

    def extents(self, node):
        box = node.queryComponent().getExtents(self.pyatspi.DESKTOP_COORDS)
        return box.x, box.y, box.width, box.height

    def is_enabled(self, node):
        return node.getState().contains(self.pyatspi.STATE_ENABLED)

    def window_titles(self):
        return [self.app.getChildAtIndex(i).name for i in range(self.app.childCount)
                if self.app.getChildAtIndex(i) is not None]

    def centre(self, node):
        x, y, w, h = self.extents(node)
        return x + w / 2, y + h / 2


def unit_to_screen(extents, point):
    """A point in unit image coordinates (y up) on an editor's screen extents."""
    x, y, w, h = extents
    return x + point[0] * w, y + (1.0 - point[1]) * h


def parse_point(text):
    x, y = text.strip("{}").split(",")
    return float(x), float(y)


def jpeg_size(path):
    """Width and height from a JPEG's start-of-frame marker."""
    with open(path, "rb") as f:
        data = f.read()
    if data[:2] != b"\xff\xd8":
        raise E2EError(f"{path} is not a JPEG file")
    i = 2
    while i < len(data):
        marker, length = data[i + 1], int.from_bytes(data[i + 2:i + 4], "big")
        if marker in (0xC0, 0xC1, 0xC2):
            return int.from_bytes(data[i + 7:i + 9], "big"), int.from_bytes(data[i + 5:i + 7], "big")
        i += 2 + length
    raise E2EError(f"{path} has no frame header")


def write_png(path, width, height):
    """A plain grey-gradient PNG, written without any imaging library."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    rows = b"".join(b"\0" + bytes(x * 255 // width for x in range(width) for _ in range(3)) for _ in range(height))
    with open(path, "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
                  + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def render_info(render_binary, package):
    out = subprocess.run([render_binary, package, "--info"], capture_output=True, text=True, check=True)
    return json.loads(out.stdout)


def copy_demo(source, scratch):
    target = os.path.join(scratch, os.path.basename(source.rstrip("/")))
    shutil.copytree(source, target)
    return target


SKIP = 77


def main(test):
    """The command line of every end-to-end test: PLYRA RENDER DEMO."""
    if len(sys.argv) != 4:
        print(f"usage: {sys.argv[0]} PLYRA PLYRA-RENDER DEMO.plyra")
        return 2
    for tool in ("Xvfb", "xdotool", "xwd"):
        if shutil.which(tool) is None:
            print(f"SKIP: {tool} is not installed")
            return SKIP
    try:
        import pyatspi  # noqa: F401
    except ImportError:
        print("SKIP: python3-pyatspi is not installed")
        return SKIP
    return run(test, *sys.argv[1:])


def run(test, binary, render_binary, demo):
    """Runs test(display, scratch, binary, render_binary, demo) on a fresh display."""
    scratch = tempfile.mkdtemp(prefix="plyra-e2e-")
    display = VirtualDisplay()
    try:
        test(display, scratch, binary, render_binary, demo)
        print("PASS")
        shutil.rmtree(scratch, ignore_errors=True)
        return 0
    except Exception as failure:  # the test's own message, plus what the screen showed
        shot = os.path.join(scratch, "failure.xwd")
        display.screenshot(shot)
        print(f"FAIL: {failure}\nscreen: {shot}\nlog: {os.path.join(scratch, 'plyra.log')}")
        return 1
    finally:
        display.close()
