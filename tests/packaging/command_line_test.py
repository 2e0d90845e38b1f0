#!/usr/bin/env python3
"""The programs' command lines as a person types them, with no display at all:
answers on the terminal, one sentence and status 2 for a bad option, korvel-mcp's
set-up block for MCP clients, and nothing left behind.
    command_line_test.py <bin folder>"""
import json
import os
import subprocess
import sys
import tempfile
import unittest

BIN = sys.argv.pop(1)
KORVEL = os.path.join(BIN, "korvel")
MCP = os.path.join(BIN, "korvel-mcp")
VERSION = os.environ["KORVEL_VERSION"]


class Run:
    """One run of a program without DISPLAY, in a home of its own."""

    def __init__(self, program, *arguments, stdin=""):
        self.home = tempfile.TemporaryDirectory()
        env = {k: v for k, v in os.environ.items()
               if k not in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM")}
        env.update(HOME=self.home.name, XDG_STATE_HOME=os.path.join(self.home.name, "state"),
                   XDG_DATA_HOME=os.path.join(self.home.name, "data"),
                   XDG_CONFIG_HOME=os.path.join(self.home.name, "config"),
                   KORVEL_MCP_PIPE=os.path.join(self.home.name, "nobody.sock"))
        done = subprocess.run([program, *arguments], input=stdin, capture_output=True, text=True,
                              env=env, timeout=60)
        self.code, self.out, self.err = done.returncode, done.stdout, done.stderr
        self.left_behind = sorted(os.listdir(self.home.name))
        self.home.cleanup()


def needs_korvel(test):
    return unittest.skipUnless(os.path.exists(KORVEL), "korvel is not built")(test)


class Korvel(unittest.TestCase):
    @needs_korvel
    def test_answers_without_a_display(self):
        for option in ("--version", "-v"):
            run = Run(KORVEL, option)
            self.assertEqual((run.code, run.out, run.err), (0, "korvel %s\n" % VERSION, ""))
            self.assertEqual(run.left_behind, [], "--version must not touch the disk")
        run = Run(KORVEL, "--help")
        self.assertEqual(run.code, 0, run.err)
        self.assertTrue(run.out.startswith("Usage: korvel [options] [project]\n"), run.out)
        for named in ("--open", "--version", "KORVEL_LOG", "KORVEL_MCP_PIPE"):
            self.assertIn(named, run.out)
        self.assertNotIn("-platform", run.out)  # Qt's options pass through, unlisted

    @needs_korvel
    def test_a_bad_option_is_one_sentence_and_status_2(self):
        unknown = "korvel: unknown option %s; korvel --help lists the options.\n"
        for arguments, sentence in (
                (["--frobnicate"], unknown % "--frobnicate"),
                (["-x", "part.kv3"], unknown % "-x"),
                (["part.kv3", "-frob=1"], unknown % "-frob"),
                (["-platform"], "korvel: Missing value after '-platform'.\n")):
            run = Run(KORVEL, *arguments)
            self.assertEqual((run.code, run.out, run.err), (2, "", sentence), arguments)
            self.assertEqual(run.left_behind, [], "no crash report, no data folder")

    @needs_korvel
    def test_the_window_needs_a_display_and_says_so(self):
        for arguments in ([], ["part.kv3"], ["-platform", "xcb", "--open"]):
            run = Run(KORVEL, *arguments)
            self.assertEqual(run.code, 1, arguments)
            self.assertEqual(run.err.count("\n"), 1, run.err)
            self.assertIn("there is no display to open the window on", run.err)
            self.assertNotIn("state", run.left_behind, "a refused start is no crash")


class AgentServer(unittest.TestCase):
    def test_answers_on_the_terminal(self):
        run = Run(MCP, "--version")
        self.assertEqual((run.code, run.out), (0, "korvel-mcp %s\n" % VERSION))
        run = Run(MCP, "--help")
        self.assertEqual(run.code, 0)
        for named in ("--listen [SOCKET]", "--connect [SOCKET]", "--print-config"):
            self.assertIn(named, run.out)

    def test_a_bad_command_line_is_one_sentence_and_status_2(self):
        no_mode = "a socket path goes after --listen or --connect."
        for arguments, sentence in (
                (["--frobnicate"],
                 "unknown option --frobnicate; korvel-mcp --help lists the options."),
                (["some.sock"], no_mode),
                (["--print-config", "some.sock"], no_mode),
                (["--listen", "--connect"],
                 "--listen, --connect and --print-config each go alone."),
                (["--connect", "a.sock", "b.sock"], "give one socket path at most.")):
            run = Run(MCP, *arguments)
            self.assertEqual((run.code, run.out, run.err), (2, "", "korvel-mcp: %s\n" % sentence),
                             arguments)

    def test_connecting_to_nobody_is_one_line_and_a_failure(self):
        run = Run(MCP, "--connect", stdin='{"jsonrpc":"2.0","id":1,"method":"ping"}\n')
        self.assertEqual(run.code, 1)
        self.assertEqual(run.out, "")
        self.assertEqual(run.err.count("\n"), 1, run.err)
        self.assertIn("nothing is serving agents at", run.err)

    def test_print_config_sets_up_both_servers_by_absolute_path(self):
        # Started by a relative path from another folder: the block still names the
        # program absolutely, as a client started anywhere needs it.
        relative = os.path.relpath(os.path.realpath(MCP), "/tmp")
        done = subprocess.run([relative, "--print-config"], cwd="/tmp", capture_output=True,
                              text=True, timeout=60)
        self.assertEqual(done.returncode, 0, done.stderr)
        servers = json.loads(done.stdout)["mcpServers"]
        self.assertEqual(servers, {
            "korvel": {"command": os.path.realpath(MCP), "args": []},
            "korvel-window": {"command": os.path.realpath(MCP), "args": ["--connect"]}})
        # The headless entry really serves: a client's first request, answered.
        hello = {"jsonrpc": "2.0", "id": 1, "method": "initialize", "params": {}}
        server = servers["korvel"]
        run = Run(server["command"], *server["args"], stdin=json.dumps(hello) + "\n")
        answer = json.loads(run.out)
        self.assertEqual(answer["result"]["serverInfo"]["version"], VERSION)


if __name__ == "__main__":
    unittest.main(verbosity=2)
