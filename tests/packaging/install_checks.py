#!/usr/bin/env python3
"""What `cmake --install` lays out for the desktop, checked by the freedesktop and
Debian tools that read it. Each check installs the desktop files into a folder of its
own and exits 77 (skipped) when the tool it needs is absent.
    install_checks.py <build folder> <bin folder> <version> <check>
where <check> is layout, desktop-entry, metainfo, mime or debian-docs."""
import glob
import json
import os
import shutil
import subprocess
import sys
import tempfile
import zipfile

BUILD, BIN, VERSION, CHECK = sys.argv[1:5]
ID = "io.korvel.Studio"
PROJECT_TYPE = "application/x-korvel-project"
SKIPPED = 77


class Failure(Exception):
    pass


def check(condition, what):
    if not condition:
        raise Failure(what)


def need(*tools):
    missing = [t for t in tools if not shutil.which(t)]
    if missing:
        print("skipped: %s not installed" % ", ".join(missing))
        sys.exit(SKIPPED)


def run(*command, env=None):
    done = subprocess.run(command, capture_output=True, text=True, env=env, timeout=120)
    return done.returncode, (done.stdout + done.stderr).strip()


def install(prefix):
    code, output = run("cmake", "--install", BUILD, "--prefix", prefix, "--component", "desktop")
    check(code == 0, "cmake --install failed: " + output)
    return os.path.join(prefix, "share")


def layout(share):
    found = sorted(os.path.relpath(f, share)
                   for f in glob.glob(os.path.join(share, "**"), recursive=True)
                   if os.path.isfile(f))
    expected = sorted([
        "applications/%s.desktop" % ID, "icons/hicolor/scalable/apps/%s.svg" % ID,
        "mime/packages/%s.xml" % ID, "metainfo/%s.metainfo.xml" % ID,
        "man/man1/korvel.1.gz", "man/man1/korvel-mcp.1.gz",
        "doc/korvel-studio/copyright", "doc/korvel-studio/changelog.Debian.gz"])
    check(found == expected, "installed %s, expected %s" % (found, expected))
    with open(os.path.join(share, "icons/hicolor/scalable/apps/%s.svg" % ID)) as icon:
        check('viewBox="0 0 128 128"' in icon.read(), "the icon is not a square scalable image")


def desktop_entry(share):
    need("desktop-file-validate")
    entry = os.path.join(share, "applications", ID + ".desktop")
    code, output = run("desktop-file-validate", entry)
    check(code == 0 and output == "", "desktop-file-validate: " + output)
    with open(entry) as text:
        lines = text.read().splitlines()
    check("MimeType=%s;" % PROJECT_TYPE in lines, "the entry does not open projects")
    check("Icon=" + ID in lines, "the entry does not name the installed icon")
    # The action opens the Open Project dialog, and korvel knows the option it uses.
    action = lines[lines.index("[Desktop Action open-project]"):]
    check("Name=Open Project" in action, "no Open Project action")
    check("Exec=korvel --open" in action, "the Open Project action runs something else")
    korvel = os.path.join(BIN, "korvel")
    if os.path.exists(korvel):
        check("--open" in run(korvel, "--help")[1], "korvel does not take --open")


def metainfo(share):
    need("appstreamcli")
    info = os.path.join(share, "metainfo", ID + ".metainfo.xml")
    code, output = run("appstreamcli", "validate", "--no-net", "--explain", info)
    check(code == 0, "appstreamcli validate:\n" + output)
    with open(info) as text:
        xml = text.read()
    for part in ("<id>%s</id>" % ID, '<launchable type="desktop-id">%s.desktop</launchable>' % ID,
                 "<mediatype>%s</mediatype>" % PROJECT_TYPE, '<release version="%s"' % VERSION):
        check(part in xml, "the metainfo lacks " + part)


def saved_project(folder):
    """A project saved by the real program, as a user's would be."""
    path = os.path.join(folder, "part.kv3")
    messages = [{"jsonrpc": "2.0", "id": 1, "method": "initialize", "params": {}},
                {"jsonrpc": "2.0", "id": 2, "method": "tools/call",
                 "params": {"name": "new_document", "arguments": {}}},
                {"jsonrpc": "2.0", "id": 3, "method": "tools/call",
                 "params": {"name": "create_box", "arguments": {"width": 10, "depth": 10,
                                                                "height": 10}}},
                {"jsonrpc": "2.0", "id": 4, "method": "tools/call",
                 "params": {"name": "save_project", "arguments": {"path": path}}}]
    done = subprocess.run([os.path.join(BIN, "korvel-mcp")], capture_output=True, text=True,
                          input="".join(json.dumps(m) + "\n" for m in messages), timeout=60)
    check(os.path.exists(path), "korvel-mcp saved no project: " + done.stdout + done.stderr)
    return path


def mime(share):
    need("update-mime-database", "xdg-mime", "mimetype")
    code, output = run("update-mime-database", os.path.join(share, "mime"))
    check(code == 0, "update-mime-database: " + output)
    folder = tempfile.mkdtemp(dir=os.path.dirname(share))
    project = saved_project(folder)
    files = {"part.kv3": project}
    for name in ("part.osv", "part-without-extension"):
        files[name] = os.path.join(folder, name)
        shutil.copy(project, files[name])
    # Zips that are not projects: another first entry, or no zip at all.
    other = os.path.join(folder, "other-archive")
    with zipfile.ZipFile(other, "w") as archive:
        archive.writestr("document.json", "{}")
        archive.writestr("manifest.json", "{}")
    text = os.path.join(folder, "notes-without-extension")
    with open(text, "w") as out:
        out.write("PK and manifest.json, but not a zip\n")

    # Only the installed types: the generic desktop path of xdg-mime (mimetype, which
    # reads the shared MIME database) sees nothing but this prefix.
    env = {k: v for k, v in os.environ.items()
           if k not in ("XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "KDE_FULL_SESSION",
                        "GNOME_DESKTOP_SESSION_ID")}
    env.update(XDG_DATA_DIRS=share, XDG_DATA_HOME=os.path.join(folder, "home"))
    seen = {name: run("xdg-mime", "query", "filetype", path, env=env)[1]
            for name, path in list(files.items()) + [("other-archive", other),
                                                     ("notes-without-extension", text)]}
    for name in files:
        check(seen[name] == PROJECT_TYPE, "%s is seen as %s" % (name, seen[name]))
    for name in ("other-archive", "notes-without-extension"):
        check(seen[name] != PROJECT_TYPE, name + " is taken for a project")


def debian_docs(share):
    need("dpkg-parsechangelog", "man")
    docs = os.path.join(share, "doc", "korvel-studio")
    code, version = run("dpkg-parsechangelog", "-l", os.path.join(docs, "changelog.Debian.gz"),
                        "-S", "Version")
    check(code == 0 and version.startswith(VERSION + "-"),
          "the changelog's newest entry is %r, not this version %s" % (version, VERSION))
    with open(os.path.join(docs, "copyright")) as text:
        check(text.readline().startswith("Format: https://www.debian.org/doc/packaging-manuals/"
                                         "copyright-format/1.0/"), "copyright is not DEP-5")
    for page in glob.glob(os.path.join(share, "man", "man1", "*.1.gz")):
        env = dict(os.environ, LC_ALL="C.UTF-8", MANWIDTH="80")
        warnings = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page],
                                  stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True,
                                  env=env, timeout=60)
        check(warnings.returncode == 0 and warnings.stderr == "",
              "%s: %s" % (page, warnings.stderr[:500]))
        check(VERSION in run("man", "-l", page, env=env)[1], page + " names another version")


CHECKS = {"layout": layout, "desktop-entry": desktop_entry, "metainfo": metainfo, "mime": mime,
          "debian-docs": debian_docs}

if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as prefix:
        try:
            CHECKS[CHECK](install(prefix))
        except Failure as failure:
            print("FAILED: %s" % failure)
            sys.exit(1)
    print("passed: " + CHECK)
