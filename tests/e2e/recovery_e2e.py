"""Work is never lost, checked on the real program: a killed window's autosave is
offered and restored exactly at the next start; saves keep the earlier versions as
backups; a save killed halfway leaves the old file intact; and with two windows
running, only the dead one's autosave is offered.
    recovery_e2e.py <bin folder>      (under tests/support/with-x)"""
import os
import shutil
import sys
import tempfile
import time

from korvel_driver import (Failure, Korvel, autosaves, data_folder, document_json,
                           open_headless, stable_autosave, wait_until)

BIN = sys.argv[1]
RESTORE_TITLE = "^Restore your work\\?$"


def box(agent, x, size=10):
    agent.call("create_box", {"width": size, "depth": size, "height": size, "x": x})


def check(condition, what):
    if not condition:
        raise Failure(what)


def killed_window_is_restored(home):
    first = Korvel(BIN, home, "first")
    agent = first.agent()
    box(agent, 0)
    box(agent, 30, 20)
    before = agent.call("get_document")
    [copy] = stable_autosave(home)
    saved = document_json(copy)
    agent.close()
    first.kill()

    second = Korvel(BIN, home, "second")
    second.press(RESTORE_TITLE, "Return")
    agent = second.agent()
    after = agent.call("get_document")
    check(after == before, "the restored document differs from the one killed:\n%s\n%s" % (before, after))
    wait_until("the modified mark", lambda: second.title().endswith("\u2022"))
    project = os.path.join(home, "restored.kv3")
    agent.call("save_project", {"path": project})
    check(document_json(project) == saved, "the restored document.json differs from the autosave")
    return second, agent, project


def saves_keep_backups(second, agent, project, home):
    versions = [document_json(project)]
    for x in (60, 90):
        time.sleep(1.1)  # backups are named by the second the file was written
        box(agent, x)
        agent.call("save_project", {})
        versions.append(document_json(project))
    folder = os.path.join(data_folder(home), "backups", "restored")
    names = sorted(os.listdir(folder))
    check(len(names) == 2, "expected two backups, found %s" % names)
    check([document_json(os.path.join(folder, n)) for n in names] == versions[:2],
          "the backups aren't the earlier versions, oldest first")
    agent.close()
    second.kill()


def killed_save_leaves_old_file(home):
    window = Korvel(BIN, home, "saving", {"KORVEL_SAVE_HOLD_MS": "5000"})
    agent = window.agent()
    project = os.path.join(home, "part.kv3")
    box(agent, 0)
    agent.call("save_project", {"path": project})
    first = open_headless(BIN, project)
    box(agent, 40)
    agent.start("tools/call", {"name": "save_project", "arguments": {}})
    wait_until("the half-written save", lambda: os.path.exists(project + ".saving"))
    window.kill()
    agent.close()
    check(open_headless(BIN, project) == first, "the project changed under a killed save")
    backups = os.listdir(os.path.join(data_folder(home), "backups", "part"))
    check(len(backups) == 1, "the version being replaced isn't in the backups folder")


def only_the_dead_window_is_offered(home):
    dead = Korvel(BIN, home, "dead")
    live = Korvel(BIN, home, "live")
    dead_agent, live_agent = dead.agent(), live.agent()
    box(dead_agent, 0)
    dead_document = dead_agent.call("get_document")
    stable_autosave(home, 1)
    # The live window's copy is the newer one: offered wrongly, it would come first.
    box(live_agent, 0, 5)
    box(live_agent, 20, 5)
    stable_autosave(home, 2)
    dead_agent.close()
    dead.kill()

    third = Korvel(BIN, home, "third")
    third.press(RESTORE_TITLE, "Return")
    agent = third.agent()
    check(agent.call("get_document") == dead_document, "the third window restored the wrong work")
    time.sleep(0.5)
    check(not third.windows(RESTORE_TITLE), "a second recovery question appeared")
    check(len(autosaves(home)) == 2, "the live window's autosave was touched")
    for client in (agent, live_agent):
        client.close()
    for window in (third, live):
        window.kill()


def main():
    root = tempfile.mkdtemp(prefix="korvel-e2e-")
    try:
        homes = [os.path.join(root, name) for name in ("restore", "saving", "windows")]
        for home in homes:
            os.makedirs(home)
        second, agent, project = killed_window_is_restored(homes[0])
        saves_keep_backups(second, agent, project, homes[0])
        killed_save_leaves_old_file(homes[1])
        only_the_dead_window_is_offered(homes[2])
    except Failure as failure:
        print("FAILED:", failure)
        for home in homes:
            for name in sorted(os.listdir(home)):
                if name.endswith(".log"):
                    print("---", name, "\n" + open(os.path.join(home, name)).read()[-2000:])
        return 1
    finally:
        shutil.rmtree(root, ignore_errors=True)
    print("recovery: all scenarios passed")
    return 0


if __name__ == "__main__":
    sys.exit(main())
