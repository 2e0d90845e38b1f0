"""Drives the real korvel program the way a person and an agent do: starts it with
its own data folders, talks to it over korvel-mcp --connect, finds its windows and
presses keys with xdotool, and kills it. Needs DISPLAY (tests/support/with-x)."""
import glob
import json
import os
import signal
import subprocess
import time
import zipfile


class Failure(Exception):
    pass


def wait_until(what, check, timeout=20.0, step=0.05):
    end = time.monotonic() + timeout
    while time.monotonic() < end:
        value = check()
        if value:
            return value
        time.sleep(step)
    raise Failure("timed out waiting for " + what)


class Agent:
    """One MCP client on the running window's socket."""

    def __init__(self, mcp, pipe):
        env = dict(os.environ, KORVEL_MCP_PIPE=pipe)
        self.process = subprocess.Popen([mcp, "--connect"], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                        env=env, text=True, bufsize=1)
        self.next_id = 1
        self.request("initialize", {"protocolVersion": "2025-06-18", "capabilities": {},
                                    "clientInfo": {"name": "e2e", "version": "1"}})
        self.send({"jsonrpc": "2.0", "method": "notifications/initialized"})

    def send(self, message):
        self.process.stdin.write(json.dumps(message) + "\n")
        self.process.stdin.flush()

    def start(self, method, params):
        """Sends a request without waiting for its answer; returns its id."""
        request_id = self.next_id
        self.next_id += 1
        self.send({"jsonrpc": "2.0", "id": request_id, "method": method, "params": params})
        return request_id

    def answer(self, request_id):
        while True:
            line = self.process.stdout.readline()
            if not line:
                raise Failure("the agent connection closed")
            message = json.loads(line)
            if message.get("id") == request_id:
                return message

    def request(self, method, params):
        return self.answer(self.start(method, params))

    def call(self, name, arguments=None):
        message = self.request("tools/call", {"name": name, "arguments": arguments or {}})
        result = message.get("result")
        if result is None:
            raise Failure(name + ": " + json.dumps(message))
        text = "".join(part.get("text", "") for part in result.get("content", []))
        if result.get("isError"):
            raise Failure(name + " failed: " + text)
        return text

    def close(self):
        try:
            self.process.stdin.close()
        except OSError:
            pass
        try:
            self.process.wait(timeout=5)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()


class Korvel:
    """One korvel process with the data folders of `home` (shared between instances
    that should see each other's recovery folders) and its own agent socket."""

    def __init__(self, bin_dir, home, name, env=None):
        self.bin_dir = bin_dir
        self.home = home
        self.pipe = os.path.join(home, name + ".sock")
        settings = {
            "XDG_CONFIG_HOME": os.path.join(home, "config"),
            "XDG_DATA_HOME": os.path.join(home, "data"),
            "XDG_STATE_HOME": os.path.join(home, "state"),
            "XDG_CACHE_HOME": os.path.join(home, "cache"),
            "KORVEL_MCP_PIPE": self.pipe,
            "KORVEL_AUTOSAVE_MS": "300",
        }
        settings.update(env or {})
        self.environment = dict(os.environ, **settings)
        self.log_path = os.path.join(home, name + ".log")
        self.launches = 0
        self._launch()

    def _launch(self):
        self.launches += 1
        self.log = open(self.log_path, "w")
        self.process = subprocess.Popen([os.path.join(self.bin_dir, "korvel")],
                                        env=self.environment, stdout=self.log,
                                        stderr=subprocess.STDOUT)

    def check_running(self):
        """Raises when the program has ended. A start refused by a busy X server (its
        listening queue full of the tools' short connections) is tried again."""
        if self.process.poll() is None:
            return
        self.log.close()
        with open(self.log_path) as log:
            text = log.read()
        if "could not connect to display" in text and self.launches < 3:
            self._launch()
            return
        raise Failure("korvel ended (%s): %s" % (self.process.returncode, text[-1000:]))

    def wait_ready(self):
        def ready():
            self.check_running()
            return os.path.exists(self.pipe)
        wait_until("the agent socket of korvel", ready)

    def agent(self):
        self.wait_ready()
        return Agent(os.path.join(self.bin_dir, "korvel-mcp"), self.pipe)

    def kill(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
        self.process.wait()
        if not self.log.closed:
            self.log.close()

    def windows(self, title_pattern):
        """This process's visible windows whose titles match (xdotool's --pid search
        ignores --onlyvisible, so the process is checked window by window)."""
        self.check_running()
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", title_pattern],
                               capture_output=True, text=True).stdout.split()
        return [w for w in found
                if subprocess.run(["xdotool", "getwindowpid", w], capture_output=True,
                                  text=True).stdout.strip() == str(self.process.pid)]

    def press(self, title_pattern, key):
        """Waits for a window of this process whose title matches, presses a key in it,
        and waits for it to close. A window that has just been mapped may not take the
        focus or keys yet, so the key is pressed again while the window stays."""
        window = wait_until("a window titled " + title_pattern,
                            lambda: self.windows(title_pattern), step=0.2)[0]
        for _ in range(20):
            if subprocess.run(["xdotool", "windowfocus", "--sync", window],
                              stderr=subprocess.DEVNULL).returncode == 0:
                subprocess.run(["xdotool", "key", "--clearmodifiers", key], check=True)
            try:
                wait_until("the window to close", lambda: not self.windows(title_pattern), 0.5)
                return
            except Failure:
                pass
        raise Failure("the window titled %s didn't answer %s" % (title_pattern, key))

    def title(self):
        window = wait_until("the main window", lambda: self.windows("^Korvel Studio"))[0]
        return subprocess.run(["xdotool", "getwindowname", window], capture_output=True,
                              text=True).stdout.strip()


def data_folder(home):
    return os.path.join(home, "data", "KorvelStudio")


def autosaves(home):
    return sorted(glob.glob(os.path.join(data_folder(home), "recovery", "*", "autosave.kv3")))


def document_json(project):
    with zipfile.ZipFile(project) as archive:
        return json.loads(archive.read("document.json"))


def stable_autosave(home, count=1):
    """The autosave files once `count` of them exist and none has changed for a while."""
    def settled():
        files = autosaves(home)
        if len(files) < count:
            return None
        newest = max(os.path.getmtime(f) for f in files)
        return files if time.time() - newest > 0.6 else None
    return wait_until("an autosave", settled)


def open_headless(bin_dir, project):
    """Opens a project with the headless agent server: the answer of get_document, or
    a Failure with the reader's sentence."""
    hello = {"jsonrpc": "2.0", "id": 1, "method": "initialize",
             "params": {"protocolVersion": "2025-06-18", "capabilities": {},
                        "clientInfo": {"name": "reader", "version": "1"}}}
    calls = [{"jsonrpc": "2.0", "id": 2, "method": "tools/call",
              "params": {"name": "open_project", "arguments": {"path": project}}},
             {"jsonrpc": "2.0", "id": 3, "method": "tools/call",
              "params": {"name": "get_document", "arguments": {}}}]
    text = "\n".join(json.dumps(m) for m in [hello] + calls) + "\n"
    run = subprocess.run([os.path.join(bin_dir, "korvel-mcp")], input=text, capture_output=True,
                         text=True, timeout=30)
    answers = {}
    for line in run.stdout.splitlines():
        message = json.loads(line)
        answers[message.get("id")] = message
    opened = answers.get(2, {}).get("result", {})
    if opened.get("isError", True):
        raise Failure("couldn't open " + project + ": " + json.dumps(opened))
    return "".join(p.get("text", "") for p in answers[3]["result"]["content"])
