#!/usr/bin/env python3
"""vklcheck.exe under Wine against the Linux vklcheck: the same JSON, messages, exit status and
saved bytes on every menu file in tests/data, on random menus, and on names holding "ä".

usage: agreement.py LINUX_VKLCHECK WINDOWS_VKLCHECK_EXE DATA_DIR
Wine comes from the environment (WINEPREFIX, WINEDEBUG) as scripts/windows_check.sh sets it.
"""

import os
import random
import re
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "cli"))
import vklcheck_test as menus  # noqa: E402  (random menus and the header lines)

LIBRARY_LINE = 14  # the saved file's library name is the clock's minute: compared by form only
failures = []


def run(cmd, cwd):
    p = subprocess.run(cmd, capture_output=True, cwd=cwd, timeout=120)
    return p.returncode, p.stdout, p.stderr


def saved(path):
    if not os.path.exists(path):
        return None
    with open(path, "rb") as f:
        lines = f.read().split(b"\r\n")
    if len(lines) > LIBRARY_LINE and menus.LIBRARY_LINE.match(lines[LIBRARY_LINE]):
        lines[LIBRARY_LINE] = b"<library name>"
    return lines


def compare(linux, windows, folder, name, lang):
    """Runs both programs on one file in folder; records every difference."""
    what = f"{name!r} --lang {lang}"
    for args in (["--json"], ["--json", "--resave", "{out}"], ["--resave", "{out}"]):
        results = []
        for cmd in ([linux], ["wine", windows]):
            out = "\u00e4-out.vkl"  # one name: the tool's messages hold it
            argv = [a.replace("{out}", out) for a in args] + ["--lang", lang, name]
            code, stdout, stderr = run(cmd + argv, folder)
            results.append((code, stdout, stderr, saved(os.path.join(folder, out))))
            if os.path.exists(os.path.join(folder, out)):
                os.remove(os.path.join(folder, out))
        if results[0] != results[1]:
            labels = ("exit status", "standard output", "standard error", "saved lines")
            diff = [label for label, a, b in zip(labels, *results) if a != b]
            failures.append(f"{what} {' '.join(args)}: {', '.join(diff)} differ\n"
                            f"  linux:   {str(results[0])[:400]}\n"
                            f"  windows: {str(results[1])[:400]}")


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    linux, windows, data = (os.path.abspath(a) for a in sys.argv[1:])
    folder = tempfile.mkdtemp(prefix="vkl-wine-")
    menus.TMP = folder
    files = []
    try:
        # Every menu file of the tests, copied under one folder with its subfolder in the name.
        for dirpath, _, names in sorted(os.walk(data)):
            for n in sorted(names):
                rel = os.path.relpath(os.path.join(dirpath, n), data).replace(os.sep, "_")
                shutil.copyfile(os.path.join(dirpath, n), os.path.join(folder, rel))
                files.append(rel)
        # Random menus, with CR LF, LF or lone CR line ends and umlauts in the text.
        rng = random.Random(12)
        for i in range(8):
            lines, _, _, _ = menus.random_menu(rng)
            header = list(menus.HEADER)
            header[1] = f"\u00dcber Men\u00fc {i}"
            pair = rng.choice([[], ["SHORTCUT|datadir|C:\\d\u00e4ten"], ["SHORTCUT|bmpdir|x"]])
            name = f"random{i}.vkl"
            menus.write(name, pair + lines, header=header, end=rng.choice(["\r\n", "\n", "\r"]))
            files.append(name)
        # CTRL-Z ends a file read in the C runtime's text mode; here it is a byte of a title.
        head = "\r\n".join(menus.HEADER).encode() + b"\r\n"
        menus.write_bytes("ctrl_z.vkl", head + b"Cut\x1a here|a.bmp|F|f\r\nLast|b.bmp|D|d\r\n\x1a")
        files.append("ctrl_z.vkl")
        # A name Windows holds only in UTF-16 (the ANSI code page would mangle it), also in a
        # folder of such a name.
        os.mkdir(os.path.join(folder, "M\u00e4rz"))
        for n in ("men\u00fc \u00e4.vkl", os.path.join("M\u00e4rz", "\u00e4\u00df.vkl")):
            shutil.copyfile(os.path.join(folder, "random7.vkl"), os.path.join(folder, n))
            files.append(n)

        for n in files:
            compare(linux, windows, folder, n, random.Random(n).choice(["1", "2"]))
        # The umlaut file's JSON is a real read, not two equal error reports.
        code, out, _ = run(["wine", windows, "--json", "men\u00fc \u00e4.vkl"], folder)
        if code != 0 or b'"rows"' not in out:
            failures.append(f"vklcheck.exe did not read 'men\u00fc \u00e4.vkl': {code} {out[:200]}")
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    for f in failures:
        print("FAILED:", f)
    runs = len(files) * 3 + 1
    print(f"agreement: {len(files)} menu files, three runs each plus one read of the umlaut name")
    print(f"agreement: {runs - len(failures)} passed, {len(failures)} failed")
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
