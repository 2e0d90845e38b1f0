#!/usr/bin/env python3
"""The window started the ways a desktop starts it: with a project (the file manager's
Open With), with paths that are no project (each shows the "Open Project" warning over
a running window, never a crash), and through the entry's Open Project action.
    window_command_line_test.py <bin folder> <e2e folder>     (under tests/support/with-x)"""
import json
import os
import shutil
import subprocess
import sys
import tempfile

BIN, E2E = sys.argv[1:3]
sys.path.insert(0, E2E)
from korvel_driver import Failure, Korvel, wait_until  # noqa: E402

WARNING = "^Open Project$"


class KorvelWith(Korvel):
    """korvel started with command-line arguments."""

    def __init__(self, home, name, arguments):
        self.arguments = arguments
        super().__init__(BIN, home, name, env={"KORVEL_MCP": "0"})

    def _launch(self):
        self.launches += 1
        self.log = open(self.log_path, "w")
        self.process = subprocess.Popen([os.path.join(self.bin_dir, "korvel")] + self.arguments,
                                        env=self.environment, stdout=self.log,
                                        stderr=subprocess.STDOUT)


def save_project(home):
    path = os.path.join(home, "bracket.kv3")
    messages = [{"jsonrpc": "2.0", "id": 1, "method": "initialize", "params": {}},
                {"jsonrpc": "2.0", "id": 2, "method": "tools/call",
                 "params": {"name": "create_box", "arguments": {"width": 5, "depth": 5,
                                                                "height": 5}}},
                {"jsonrpc": "2.0", "id": 3, "method": "tools/call",
                 "params": {"name": "save_project", "arguments": {"path": path}}}]
    subprocess.run([os.path.join(BIN, "korvel-mcp")], input="".join(
        json.dumps(m) + "\n" for m in messages), capture_output=True, text=True, timeout=60)
    if not os.path.exists(path):
        raise Failure("korvel-mcp saved no project")
    return path


def opens_the_project(home):
    project = save_project(home)
    window = KorvelWith(home, "project", [project])
    try:
        wait_until("the project's name in the title", lambda: "bracket" in window.title())
        if window.windows(WARNING):
            raise Failure("a good project was refused")
    finally:
        window.kill()


def warns_about_what_is_no_project(home):
    folder = os.path.join(home, "a-folder.kv3")
    os.mkdir(folder)
    text = os.path.join(home, "notes.kv3")
    with open(text, "w") as out:
        out.write("not a zip\n")
    cases = [os.path.join(home, "missing.kv3"), folder, text]
    if os.geteuid() != 0:  # root reads any file
        unreadable = os.path.join(home, "locked.kv3")
        shutil.copy(text, unreadable)
        os.chmod(unreadable, 0)
        cases.append(unreadable)
    for n, path in enumerate(cases):
        window = KorvelWith(home, "bad%d" % n, [path])
        try:
            window.press(WARNING, "Return")
            title = window.title()  # raises if the program ended
            if "Untitled" not in title:
                raise Failure("after refusing %s the window shows %s" % (path, title))
        finally:
            window.kill()


def open_action_asks_for_a_project(home):
    window = KorvelWith(home, "action", ["--open"])
    try:
        window.press(WARNING, "Escape")  # the dialog, cancelled
        if "Untitled" not in window.title():
            raise Failure("cancelling the Open Project dialog changed the document")
    finally:
        window.kill()


if __name__ == "__main__":
    if not shutil.which("xdotool"):
        print("skipped: xdotool not installed")
        sys.exit(77)
    for case in (opens_the_project, warns_about_what_is_no_project,
                 open_action_asks_for_a_project):
        # A home each: a killed window's autosave must not be offered to the next.
        with tempfile.TemporaryDirectory() as home:
            try:
                case(home)
            except Failure as failure:
                print("FAILED %s: %s" % (case.__name__, failure))
                sys.exit(1)
        print("passed: " + case.__name__)
