#!/usr/bin/env python3
"""The Debian packages as a user gets them.

Builds them with scripts/package, checks them with lintian, desktop-file-validate and
appstreamcli, unpacks them into a temporary root and starts the installed app from there:
--help and --version, a first start on an empty home (the first-run screen, the user's data in
the XDG folder, nothing beside the binary), and a start on a catalogue. Every QML module the app
loads on the way, and every module those need, must come from a package the app's package
depends on: a module missing at run time is a missing dependency, caught here.

  package_test.py SOURCE_DIR DEMO_KEY DEMO_CATALOGUE
Exits 77 (skipped) where the Debian tools can't run.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

SKIP = 77


def run(args, **kwargs):
    return subprocess.run(args, capture_output=True, text=True, **kwargs)


def fail(message):
    print("FAIL: " + message)
    sys.exit(1)


def qmldir_closure(traced):
    """The qmldir files of the modules loaded, and of every module they import or depend on."""
    qml_root = None
    for path in traced:
        match = re.match(r"(.*/qt6/qml)/", path)
        if match:
            qml_root = match.group(1)
    seen, todo = set(), list(traced)
    while todo:
        path = todo.pop()
        if path in seen or not os.path.exists(path):
            continue
        seen.add(path)
        with open(path, encoding="utf-8") as qmldir:
            for line in qmldir:
                words = line.split()
                if len(words) >= 2 and words[0] in ("import", "depends", "optional") and qml_root:
                    module = words[2] if words[0] == "optional" and len(words) > 2 else words[1]
                    if module == "import":
                        continue
                    todo.append(os.path.join(qml_root, *module.split("."), "qmldir"))
    return seen


def traced_modules(app, home, env):
    trace = dict(env, QML_IMPORT_TRACE="1")
    result = run([app, "--home", home, "--self-test"], env=trace, timeout=60)
    return set(re.findall(r'"(/[^"]*/qml/[^"]*qmldir)"', result.stdout + result.stderr)), result


def check_link_from_the_desktop(root, app, env, work):
    """A velmora:// link opened the desktop's way (gio, as xdg-open does in a GNOME or Phosh
    session) goes through the unpacked desktop entry to the app already running."""
    if not (shutil.which("gio") and shutil.which("update-desktop-database")):
        print("not checked: opening a link the desktop's way needs gio and update-desktop-database")
        return
    share = os.path.join(root, "usr/share")
    run(["update-desktop-database", os.path.join(share, "applications")])
    desktop = dict(env, XDG_DATA_DIRS=share, XDG_CURRENT_DESKTOP="GNOME",
                   PATH=os.path.join(root, "usr/bin") + os.pathsep + os.environ.get("PATH", ""))
    log_path = os.path.join(work, "running.log")
    with open(log_path, "w") as log:
        running = subprocess.Popen([app], env=desktop, stdout=log, stderr=subprocess.STDOUT)
    try:
        def said(text, seconds):
            for _ in range(seconds * 10):
                with open(log_path, encoding="utf-8", errors="replace") as log:
                    if text in log.read():
                        return True
                time.sleep(0.1)
            return False
        if not said("Root:", 20):
            fail("the installed app didn't start for the link test")
        opened = run(["gio", "open", "velmora://place/12"], env=desktop, timeout=30)
        if opened.returncode != 0:
            fail("gio can't open velmora:// links with the package's desktop entry: " + opened.stderr)
        if not said("Another start handed over velmora://place/12", 15):
            fail("the link didn't reach the running app")
        print("ok: a velmora:// link opened the desktop's way reached the running app")
    finally:
        running.terminate()
        running.wait(10)


def main():
    source, demo_key, demo_catalogue = sys.argv[1:4]
    for tool in ("dpkg-buildpackage", "lintian", "desktop-file-validate", "appstreamcli", "dpkg-deb"):
        if not shutil.which(tool):
            print(f"SKIPPED: {tool} is not installed (scripts/setup installs it)")
            return SKIP
    work = tempfile.mkdtemp(prefix="velmora-package-")
    try:
        out = os.path.join(work, "out")
        built = run(["bash", os.path.join(source, "scripts/package"), "--key", demo_key, "--out", out], cwd=source, timeout=3000)
        if built.returncode != 0:
            fail("scripts/package failed:\n" + built.stdout[-3000:] + built.stderr[-3000:])
        debs = sorted(f for f in os.listdir(out) if f.endswith(".deb") and "dbgsym" not in f)
        app_deb = os.path.join(out, next(f for f in debs if f.startswith("velmora_")))
        toolkit_deb = os.path.join(out, next(f for f in debs if f.startswith("velmora-toolkit_")))

        checked = run(["lintian", "--fail-on", "error", "--tag-display-limit", "0", app_deb, toolkit_deb])
        print(checked.stdout)
        if checked.returncode != 0:
            fail("lintian reports errors")

        root = os.path.join(work, "root")
        for deb in (app_deb, toolkit_deb):
            if run(["dpkg-deb", "-x", deb, root]).returncode != 0:
                fail("can't unpack " + deb)
        desktop = os.path.join(root, "usr/share/applications/app.velmora.Velmora.desktop")
        validated = run(["desktop-file-validate", desktop])
        if validated.returncode != 0 or validated.stdout.strip():
            fail("desktop-file-validate: " + validated.stdout + validated.stderr)
        with open(desktop, encoding="utf-8") as entry:
            if "MimeType=x-scheme-handler/velmora;" not in entry.read():
                fail("the desktop entry doesn't take velmora:// links")
        metainfo = os.path.join(root, "usr/share/metainfo/app.velmora.Velmora.metainfo.xml")
        validated = run(["appstreamcli", "validate", "--no-net", metainfo])
        if validated.returncode != 0:
            fail("appstreamcli: " + validated.stdout + validated.stderr)
        for size in ("48x48", "64x64", "128x128", "256x256", "512x512"):
            if not os.path.exists(os.path.join(root, f"usr/share/icons/hicolor/{size}/apps/app.velmora.Velmora.png")):
                fail("no icon of " + size)

        app = os.path.join(root, "usr/bin/velmora")
        tool = os.path.join(root, "usr/bin/velmora-catalogue")
        for binary in (app, tool):
            for option in ("--help", "--version"):
                answered = run([binary, option], timeout=30)
                if answered.returncode != 0 or not answered.stdout.strip():
                    fail(f"{binary} {option} answered {answered.returncode}: {answered.stderr}")

        # A first start on an empty home, the home left to the platform: the XDG data folder.
        user = os.path.join(work, "user")
        env = {k: v for k, v in os.environ.items() if not k.startswith(("VELMORA_HOME", "XDG_"))}
        env.update(HOME=user, QT_QPA_PLATFORM="offscreen", LANGUAGE="en", TZ="UTC",
                   VELMORA_UPDATE_URL="http://127.0.0.1:9/ios/last.txt", VELMORA_ANALYTICS_URL="http://127.0.0.1:9/")
        trace = dict(env, QML_IMPORT_TRACE="1")
        first = run([app, "--self-test"], env=trace, timeout=60)
        if "root walkthrough shown" not in first.stdout:
            fail("the installed app didn't show the first-run screen: " + first.stdout + first.stderr[-2000:])
        if not os.path.isdir(os.path.join(user, ".local/share/Velmora/Velmora")):
            fail("the user's data isn't in the XDG data folder")
        if sorted(os.listdir(os.path.join(root, "usr/bin"))) != ["velmora", "velmora-catalogue"]:
            fail("the app wrote beside its binary: " + str(os.listdir(os.path.join(root, "usr/bin"))))
        traced = set(re.findall(r'"(/[^"]*/qml/[^"]*qmldir)"', first.stdout + first.stderr))

        # A start on a catalogue: the guide itself.
        home = os.path.join(work, "home")
        os.makedirs(os.path.join(home, "Documents"))
        shutil.copy(demo_catalogue, os.path.join(home, "Documents"))
        guide, result = traced_modules(app, home, env)
        if "list rows of main shown" not in result.stdout:
            fail("the installed app didn't show the guide: " + result.stdout + result.stderr[-2000:])
        traced |= guide
        if not traced:
            fail("no QML module traced; QML_IMPORT_TRACE said nothing")

        check_link_from_the_desktop(root, app, env, work)

        depends = run(["dpkg-deb", "-f", app_deb, "Depends"]).stdout
        declared = {re.split(r"[ (]", d.strip())[0] for d in depends.split(",")}
        missing = []
        for qmldir in sorted(qmldir_closure(traced)):
            owner = run(["dpkg", "-S", qmldir])
            package = owner.stdout.split(":")[0] if owner.returncode == 0 else None
            if package not in declared:
                missing.append(f"{qmldir} ({package or 'no package'})")
        if missing:
            fail("QML modules the app loads that its package doesn't depend on:\n  " + "\n  ".join(missing))
        print(f"ok: {len(qmldir_closure(traced))} QML modules, each from a package the app depends on")
        return 0
    finally:
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
