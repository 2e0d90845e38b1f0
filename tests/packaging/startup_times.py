#!/usr/bin/env python3
"""Start-up times of the programs, as a person and an agent meet them: korvel from
process start to the first painted frame of its window (needs DISPLAY: run it under
xvfb-run -a -s "-screen 0 1600x1000x24"), korvel-mcp from process start to the answer
to initialize. Prints the minimum and median of several runs; measures, asserts nothing.

usage: startup_times.py [BIN_DIR (default /usr/bin)] [RUNS (default 20)]"""
import datetime
import json
import os
import re
import statistics
import subprocess
import sys
import tempfile
import time

INITIALIZE = json.dumps({"jsonrpc": "2.0", "id": 1, "method": "initialize",
                         "params": {"protocolVersion": "2025-06-18", "capabilities": {},
                                    "clientInfo": {"name": "timing", "version": "1"}}})
FIRST_FRAME = re.compile(r"^(\d\d):(\d\d):(\d\d)\.(\d\d\d) korvel\.startup: first frame painted "
                         r"(\d+) ms after start")


def agent_server(program):
    """Milliseconds from spawning korvel-mcp to reading its initialize answer."""
    start = time.perf_counter()
    process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL)
    process.stdin.write((INITIALIZE + "\n").encode())
    process.stdin.flush()
    answer = process.stdout.readline()
    elapsed = (time.perf_counter() - start) * 1000
    process.stdin.close()
    process.wait()
    if b'"protocolVersion"' not in answer:
        raise SystemExit("korvel-mcp did not answer initialize: %r" % answer)
    return elapsed


def window(program, home):
    """Milliseconds from spawning korvel to its first painted frame (taken from the
    log line's wall-clock time), and the program's own count from main()."""
    log = os.path.join(home, "korvel.log")
    if os.path.exists(log):
        os.remove(log)  # the last run's line must not be read as this one's
    env = dict(os.environ, KORVEL_LOG=log, KORVEL_MCP="0",
               XDG_CONFIG_HOME=os.path.join(home, "config"),
               XDG_DATA_HOME=os.path.join(home, "data"),
               XDG_STATE_HOME=os.path.join(home, "state"),
               XDG_CACHE_HOME=os.path.join(home, "cache"))  # Mesa's shader cache
    spawned = datetime.datetime.now()
    process = subprocess.Popen([program], env=env, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    try:
        deadline = time.monotonic() + 60
        while time.monotonic() < deadline:
            if os.path.exists(log):
                with open(log) as lines:
                    for line in lines:
                        found = FIRST_FRAME.match(line)
                        if found:
                            h, m, s, ms, own = (int(g) for g in found.groups())
                            painted = spawned.replace(hour=h, minute=m, second=s,
                                                      microsecond=ms * 1000)
                            return (painted - spawned).total_seconds() * 1000, own
            if process.poll() is not None:
                raise SystemExit("korvel ended before its first frame")
            time.sleep(0.01)
        raise SystemExit("korvel painted no frame within a minute")
    finally:
        process.terminate()
        process.wait()


def report(what, times):
    print("%s: min %.1f ms, median %.1f ms over %d runs" %
          (what, min(times), statistics.median(times), len(times)))


def main():
    bin_dir = sys.argv[1] if len(sys.argv) > 1 else "/usr/bin"
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 20
    report("korvel-mcp, start to initialize answer",
           [agent_server(os.path.join(bin_dir, "korvel-mcp")) for _ in range(runs)])
    if not os.environ.get("DISPLAY"):
        print("korvel: no DISPLAY, first frame not measured")
        return
    spawn, own = [], []
    with tempfile.TemporaryDirectory() as home:
        # The first run fills an empty shader cache; the others find it filled.
        cold, _ = window(os.path.join(bin_dir, "korvel"), home)
        for _ in range(runs):
            total, inside = window(os.path.join(bin_dir, "korvel"), home)
            spawn.append(total)
            own.append(inside)
    print("korvel, start to first painted frame with an empty shader cache: %.0f ms" % cold)
    report("korvel, start to first painted frame", spawn)
    report("korvel, main() to first painted frame", own)


if __name__ == "__main__":
    main()
