# SPDX-License-Identifier: MIT
"""The line editors by keyboard, as a person who does not use the mouse works them: a click
on a line's end without moving selects it and changes nothing; Escape clears the selection,
Tab selects a line; three quick arrow presses are one undo step; Ctrl+1 and Ctrl+0 zoom to
actual size and back to fit, and the status bar says so."""

import sys

from e2e_support import Accessibility, E2EError, Plyra, copy_demo, main, render_info, unit_to_screen, wait_for


def test(display, scratch, binary, render_binary, demo):
    package = copy_demo(demo, scratch)
    info = render_info(render_binary, package)
    count = len(info["lines"])
    plyra = Plyra(binary, display.display, [package], scratch)
    try:
        window = plyra.window("demo")
        plyra.focus(window)
        a11y = Accessibility()
        first = a11y.find("First image", role="canvas")

        def description():
            return first.description

        def edited():
            return any(title.startswith("demo*") for title in a11y.window_titles())

        def zoom_text():
            label = a11y.pyatspi.findDescendant(a11y.app, lambda node: node is not None and node.getRoleName() == "label"
                                                and node.name.startswith("Zoom "))
            return label.name if label is not None else None

        # A click on the start of a line, without motion: selected, nothing changed.
        start = info["lines"][0]["startPoints"][0]
        plyra.click(unit_to_screen(a11y.extents(first), start))
        wait_for(lambda: description() == f"Lines: {count}, selected: 1", what="the clicked line to be selected")
        if edited():
            raise E2EError("a click without motion marked the document edited")

        plyra.key("Escape")
        wait_for(lambda: description() == f"Lines: {count}, selected: 0", what="Escape to clear the selection")
        plyra.key("Tab")
        wait_for(lambda: description() == f"Lines: {count}, selected: 1", what="Tab to select a line")

        # Three quick nudges are one step: one Ctrl+Z brings back the saved state.
        plyra.key("Up", "Up", "Up")
        wait_for(edited, what="the nudges to mark the document edited")
        plyra.key("ctrl+z")
        wait_for(lambda: not edited(), what="one undo to take back all three nudges")

        fit = zoom_text()
        plyra.key("ctrl+1")
        wait_for(lambda: zoom_text() == "Zoom 100 %", what="Actual Size in the status bar")
        plyra.key("ctrl+0")
        wait_for(lambda: zoom_text() == fit, what="Zoom to Fit to come back to the fitted size")
        plyra.quit()
    finally:
        plyra.kill()


if __name__ == "__main__":
    sys.exit(main(test))
