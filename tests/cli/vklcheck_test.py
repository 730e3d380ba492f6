#!/usr/bin/env python3
"""Runs the built vklcheck on menu files and checks what it prints, writes and returns.

usage: vklcheck_test.py GROUP VKLCHECK DATA_DIR
"""

import codecs
import json
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

VKL = CLI_DATA = TMP = ""
failures = []

COMMENTS = ["# Created by VKL Editor", "# Submenus are automatically distinguished by spaces"]
HEADER = ["lib", "About", "p3", "p4", "p5", "Title"] + "16 16 10 10 11 11".split()
LIBRARY_LINE = re.compile(rb"^[0-9]{4,8} # this is a unique library name - not visible for user$")
SEVEN_KEYS = ["header", "shortcuts", "rows", "tree", "submenuBitmaps", "skipped", "fatal"]
USAGE = "usage: vklcheck [--lang 1|2] [--json] [--resave OUT] FILE"


def expect(cond, what):
    if not cond:
        failures.append(what)


def expect_eq(actual, expected, what):
    if actual != expected:
        failures.append(f"{what}:\n  expected {expected!r}\n  actual   {actual!r}")


def run(*args, cwd=None):
    """Runs vklcheck; returns exit status, stdout and stderr (both must be UTF-8)."""
    p = subprocess.run([VKL, *args], capture_output=True, cwd=cwd or TMP, timeout=240)
    err = p.stderr.decode("utf-8", "replace")
    # Whatever the input, the tool ends by itself and the sanitizers stay quiet.
    expect(p.returncode >= 0, f"vklcheck {args[:3]} died of signal {-p.returncode}")
    expect("Sanitizer" not in err and "runtime error:" not in err,
           f"vklcheck {args[:3]} sanitizer report:\n{err[:2000]}")
    try:
        return p.returncode, p.stdout.decode("utf-8"), err
    except UnicodeDecodeError as e:
        failures.append(f"vklcheck {args[:3]} printed no UTF-8: {e}")
        return p.returncode, "", err


def run_json(*args):
    code, out, err = run("--json", *args)
    try:
        return code, json.loads(out), err
    except json.JSONDecodeError as e:
        failures.append(f"vklcheck --json {args[:3]} printed no JSON: {e}: {out[:300]!r}")
        return code, {}, err


def expect_findings(name, expected, what, code=None, cwd=None):
    """The lines printed for a file (and its exit status when given)."""
    got_code, out, _ = run(name, cwd=cwd)
    expect_eq((got_code if code is not None else None, out.splitlines()), (code, expected), what)


def summary(name, *counts):
    words = ["row", "submenu", "SHORTCUT pair", "skipped line"]
    return f"{name}: " + ", ".join(f"{n} {w}{'' if n == 1 else 's'}" for n, w in zip(counts, words))


def trap(name, saves):
    return (f"{name}: saving this file {saves} time{'' if saves == 1 else 's'} makes it unreadable"
            " (third SHORTCUT line, run-time error 9)")


def _undefined_bytes(e):
    """The five bytes Windows-1252 leaves undefined are written as such."""
    run = e.object[e.start:e.end]
    if not all(ord(c) in (0x81, 0x8D, 0x8F, 0x90, 0x9D) for c in run):
        raise e
    return run.encode("latin-1"), e.end


codecs.register_error("vkl_undefined_1252", _undefined_bytes)


def write(name, lines, header=HEADER, comments=COMMENTS, end="\r\n"):
    text = end.join(list(comments) + list(header) + list(lines)) + end
    return write_bytes(name, text.encode("cp1252", "vkl_undefined_1252"))


def write_bytes(name, data):
    path = os.path.join(TMP, name)
    with open(path, "wb") as f:
        f.write(data)
    return path


def data(name):
    return os.path.join(CLI_DATA, name)


def tmp(name):
    return os.path.join(TMP, name)


def expect_refused(name, message, *args):
    """A file vklcheck will not read: status 2, nothing on stdout, one message on stderr."""
    code, out, err = run(*args, name)
    expect_eq((code, out, err.strip()), (2, "", f"vklcheck: {name}: {message}"), f"{args} {name}")


def expect_saved_as(out_path, expected_path, what):
    """The bytes written equal the expected file, the library-name line (15) aside."""
    if not os.path.exists(out_path):
        return failures.append(f"{what}: {out_path} was not written")
    got, want = (Path(p).read_bytes().split(b"\r\n") for p in (out_path, expected_path))
    expect(LIBRARY_LINE.match(got[14]) is not None, f"{what}: library-name line {got[14]!r}")
    expect_eq(got[:14] + got[15:], want[:14] + want[15:], f"{what}: saved lines")


# ---- Groups ---------------------------------------------------------------------------------


def group_findings():
    expect_findings("sheetmetal.vkl", [f"sheetmetal.vkl:{n}: {t}" for n, t in [
        (30, "wrong number of fields:  Hem|hem.bmp|F|sm_hem|closed"),
        (31, "empty parameter:  Relief cut|relief.bmp|F| "),
        (32, "submenu without children is not saved: Cutouts|cut.bmp|S|Cutouts"),
        (33, "table line 2 has missing entries and is not saved: Punch library|punch.bmp|LOS|"
             "D:\\Sheet\\pkg\\"),
        (35, "empty title: |about.bmp|D|sm_about"), (36, "empty action: Export DXF|dxf.bmp||sm_dxf"),
    ]] + [trap("sheetmetal.vkl", 2), summary("sheetmetal.vkl", 3, 2, 1, 4)], "sheetmetal.vkl", 1, CLI_DATA)
    # Its data and image folder pairs come back twice after one save.
    expect_findings("woodshop.vkl", [trap("woodshop.vkl", 1), summary("woodshop.vkl", 9, 3, 2, 0)],
                    "the SHORTCUT trap", 1, CLI_DATA)

    # The header takes lines by position: menu lines inside it are swallowed (positions 2 and
    # 6 are read back whole and not reported; two or four "|" do not look like a menu line).
    write("short.vkl", [], comments=["# c"], header=["lib", "About|x|y|z", "Menu|a.bmp|F|f",
          "Short|cut|x", "p5", "T|t.bmp|F|t", "Sub|s.bmp|S|Sub", "Five|a|b|c|d"])
    expect_findings("short.vkl", ["short.vkl:4: header position 3 looks like a menu line: Menu|a.bmp|F|f",
                                  "short.vkl:8: header position 7 looks like a menu line: Sub|s.bmp|S|Sub",
                                  "short.vkl:9: the file ends inside the header: Five|a|b|c|d",
                                  summary("short.vkl", 0, 0, 0, 0)], "header findings")
    write("pos12.vkl", ["A|a.bmp|F|f"], header=HEADER[:11] + ["X|x.bmp|F|x"])
    expect_findings("pos12.vkl", ["pos12.vkl:14: header position 12 looks like a menu line: X|x.bmp|F|x",
                                  summary("pos12.vkl", 1, 0, 0, 0)], "the twelfth header line too")
    # A file of comments ends inside the header at its last line; an empty one has no line.
    for name, data_, at in [("comments.vkl", b"# a\r\n\r\n# b\r\n", ":3"), ("empty.vkl", b"", "")]:
        write_bytes(name, data_)
        expect_eq(run(name)[1].splitlines()[0], f"{name}{at}: the file ends inside the header", name)

    # Physical line numbers across LF, CR and CR LF; the first reason that applies; the text
    # in UTF-8 with control bytes spelled out.
    write_bytes("lines.vkl", "\n".join(HEADER).encode() + b"\nok|a|F|f\rbad \xe4|x\r\nA|b|F|f\n"
                b"\x01bad\x00|F\n|x|F\n |x| |y\nT|x| | \nT|x|F|\n")
    expect_findings("lines.vkl", [f"lines.vkl:{n}: {t}" for n, t in [
        (14, "wrong number of fields: bad \u00e4|x"), (16, "wrong number of fields: \\x01bad\\x00|F"),
        (17, "wrong number of fields: |x|F"), (18, "empty title:  |x| |y"),
        (19, "empty action: T|x| | "), (20, "empty parameter: T|x|F|")]]
        + [summary("lines.vkl", 2, 0, 0, 6)], "line numbers, reasons and texts")


# Rows and tree are checked on random menus (round_trip); here the fields around them.
WOODSHOP_JSON = {"header": {"Text2": "Cabinet", "Text3": "Cabinet tools for Brindlemark # 1. text in the [About] box",
                            "Combo2": "60", "Combo3": "60", "Datadir": "C:\\Cabinet\\data",
                            "Imagedir": "[installdir]\\bitmaps"}, "skipped": [], "fatal": None,
                 "shortcuts": [["datadir", "C:\\Cabinet\\data"], ["bmpdir", "[installdir]\\bitmaps"]],
                 "submenuBitmaps": {"1": "drill.bmp", "2": "panel.bmp", "3": "fronts.bmp"}}


def group_json():
    _, got, _ = run_json(data("woodshop.vkl"))
    expect_eq(list(got.keys()), SEVEN_KEYS, "the seven keys in order")
    expect_eq(len(got.get("rows", [])), 9, "woodshop.vkl rows")
    expect_eq({k: got.get(k) for k in WOODSHOP_JSON}, WOODSHOP_JSON, "woodshop.vkl fields")

    # The skipped lines' reasons: findings; their JSON form: third.vkl below.
    expect_eq(run_json(data("sheetmetal.vkl"))[1].get("submenuBitmaps"), {"1": "bend.bmp", "2": "cut.bmp"},
              "bitmaps of sheetmetal.vkl, the empty submenu's included")

    # A third SHORTCUT line ends the reading: what came before is reported, the line itself
    # only as the fatal error, and nothing after it is read. Item titles are upper-cased in the
    # code page (\u00ff becomes \u0178); a run-time error ends with status 2, JSON printed all
    # the same.
    write("third.vkl", ["SHORTCUT|bmpdir|B:\\mp", "A\u20ac|a.bmp|F|f", "bad|line", "two|bad",
                        "Sub||S|Sub", " \xff\x81|b.bmp|D|d", "SHORTCUT|k|v", "SHORTCUT|k2|v2",
                        "After|c|F|g"])
    code, got, _ = run_json("third.vkl")
    tree = got.get("tree", {}).get("children", [{}, {}])
    seen = (code, got.get("fatal"), got.get("skipped"), got.get("shortcuts"),
            got.get("header", {}).get("Imagedir"), got.get("rows"), [c.get("text") for c in tree],
            tree[-1].get("children"))
    want = (2, {"line": 22, "error": 9, "description": "Subscript out of range"},
            [{"line": 17, "text": "bad|line", "reason": "wrong number of fields"},
             {"line": 18, "text": "two|bad", "reason": "wrong number of fields"}],
            [["bmpdir", "B:\\mp"], ["k", "v"]], "B:\\mp",
            [["1", "A\u20ac", "a.bmp", "F", "f", "a.bmp", "f"],
             ["2", "\u00ff\u0081", "b.bmp", "D", "d", "b.bmp", "d"]],
            ["A\u20ac", "Sub"], [{"key": "Child2", "text": "\u0178\u0081", "image": "", "children": []}])
    expect_eq(seen, want,
              "status, fatal, skipped, pairs, Imagedir, rows and tree read before a third SHORTCUT line")


def group_resave():
    out = tmp("woodshop.out.vkl")
    code, text, err = run("--resave", out, data("woodshop.vkl"))
    expect_saved_as(out, data("woodshop.resaved.vkl"), "woodshop resaved")
    # The editor writes the directory fields once more in their own form; the file it saved
    # thus holds four SHORTCUT lines and ends the editor when it is opened again.
    expect_eq((code, err, text.splitlines()[-1]), (1, "", f"{out}: the saved file cannot be opened again: "
                                                          "run-time error 9 (Subscript out of range)"),
              "a resave that cannot be opened again")
    expect(":29: third SHORTCUT line ends the editor (run-time error 9)" in run(out)[1],
           "the resaved menu trips over its own SHORTCUT lines")

    out = tmp("sheetmetal.out.vkl")
    code, text, err = run("--json", "--resave", out, data("sheetmetal.vkl"))
    expect_saved_as(out, data("sheetmetal.resaved.vkl"), "sheetmetal resaved")
    expect_eq(err.splitlines(), ["vklcheck: " + trap(data("sheetmetal.vkl"), 2),
                                 "Menu 'Cutouts' without children is ignored !",
                                 "Following table lines have missing entries and are not stored :", "", "2"],
              "the editor's messages on stderr")
    expect_eq(json.loads(text or "{}").get("rows", [None])[0],
              ["1", "Flange", "flange.bmp", "F", "sm_flange", "flange.bmp", "sm_flange"],
              "--json --resave prints the JSON of what was read")

    # The check before saving refuses a menu without a complete row: nothing is written, an
    # existing file stays as it was.
    write("norows.vkl", ["Sub|s.bmp|S|Sub", "Lib|l.bmp|LOS|C:\\pkg\\"])
    out = write_bytes("keep.vkl", b"old contents\r\n")
    code, _, err = run("--resave", out, "norows.vkl")
    expect_eq((code, "Check before saving failed ! - Table is all empty" in err, Path(out).read_bytes()),
              (1, True, b"old contents\r\n"), f"refused save, message {err!r}")
    run("--resave", tmp("new.vkl"), "norows.vkl")
    expect(not os.path.exists(tmp("new.vkl")), "no file created by a refused save")

    # A read that ended the editor (a failed save: the files group's full disk).
    write("fatal.vkl", ["A|a|F|f", "SHORTCUT|a|b", "SHORTCUT|c|d", "SHORTCUT|e|f"])
    code, _, err = run("--resave", tmp("fatal.out.vkl"), "fatal.vkl")
    expect_eq((code, os.path.exists(tmp("fatal.out.vkl")), "Run-time error '9': Subscript out of range" in err),
              (2, False, True), f"nothing saved after the editor ended, message {err!r}")


def group_bad_input():
    rng = random.Random(6)
    write_bytes("binary.vkl", bytes(rng.randrange(256) for _ in range(200_000)))
    write("nul.vkl", ["A\x00B|a.bmp|F|f", "\x00\x00\x00\x00"])
    write("huge.vkl", ["Big|b.bmp|F|" + "x" * 1_000_000, "y" * 1_000_000 + "|F"])
    write("toolong.vkl", ["A|a|F|f", "Big|b.bmp|F|" + "x" * (1 << 20)])
    write("deep.vkl", ["A|a|F|f", "Sub||S|Sub", " " * 40_000 + "B|b|F|f", "C|c|F|f"])
    write("nested.vkl", [" " * d + f"S{d}||S|S" for d in range(1500)] + [" " * 1500 + "L||F|f"])
    write("limit.vkl", [f"I{i}||F|f" for i in range(32_768)])
    # With both counters at their end, a submenu line runs out of submenus, not of rows.
    write("both.vkl", [f"I{i}||F|f" for i in range(32_767)] + ["S||S|S"] * 32_768)
    os.makedirs(tmp("dir.vkl"), exist_ok=True)

    code, out, err = run("binary.vkl")
    expect(code == 1 and out.endswith("skipped lines\n"), f"binary file: {code} {out[-200:]!r}")
    expect(all(len(line) < 600 for line in out.splitlines()), "binary lines are shown cut")
    code, got, _ = run_json("nul.vkl")
    expect_eq((code, got.get("rows", [[0, 0]])[0][1], got.get("skipped", [{}])[0].get("text")),
              (1, "A\x00B", "\x00\x00\x00\x00"), "NUL bytes kept in JSON")
    expect_findings("huge.vkl", [f"huge.vkl:16: wrong number of fields: {'y' * 200}... (999802 more bytes)",
                                 summary("huge.vkl", 1, 0, 0, 1)], "huge lines")
    expect_eq(run_json("huge.vkl")[1].get("rows", [[0] * 7])[0][6], "x" * 1_000_000, "huge parameter in JSON")
    # A line beyond the bound of a menu line ends the reading there, as running out of memory;
    # so do the row and submenu limits, as an overflow.
    for name, rows, fatal in [("toolong.vkl", 1, {"line": 16, "error": 7, "description": "Out of memory"}),
                              ("limit.vkl", 32_767, {"line": 32_782, "error": 6, "description": "Overflow"})]:
        code, got, _ = run_json(name)
        expect_eq((code, len(got.get("rows", [])), got.get("fatal")), (2, rows, fatal), name)
    for name, finding in [("limit.vkl", "limit.vkl:32782: row limit reached (run-time error 6): I32767||F|f"),
                          ("both.vkl", "both.vkl:65549: submenu limit reached (run-time error 6): S||S|S")]:
        expect(finding in run(name)[1], finding)
    # The editor ends there: no word about the submenu that a save would have left out.
    expect_findings("deep.vkl", ["deep.vkl:17: indentation too deep (run-time error 6): (40000 blanks)B|b|F|f",
                                 summary("deep.vkl", 1, 1, 0, 0)], "deep indentation", code=2)
    expect("Run-time error '6': Overflow" in run("deep.vkl")[2], "deep indentation error box")
    expect_findings("nested.vkl", [summary("nested.vkl", 1, 1500, 0, 0)], "1500 nested submenus", code=0)
    sys.setrecursionlimit(20_000)
    node, depth = run_json("nested.vkl")[1].get("tree", {}), 0
    while node.get("children"):
        node, depth = node["children"][0], depth + 1
    expect_eq((depth, node.get("key")), (1501, "Child1"), "the nested tree in JSON")

    for name, message in [("missing.vkl", "no such file"), ("dir.vkl", "is a folder, not a menu file")]:
        for args in ([], ["--json"], ["--resave", "x.out"]):
            expect_refused(name, message, *args)
    expect(not os.path.exists(tmp("x.out")), "nothing saved from a missing file")


def group_files():
    """Only regular files are read, within bounds; a save keeps the owner of the file it replaces
    (links, names, mode and refusals: the core's Files tests)."""
    fifo, loop = tmp("fifo.vkl"), tmp("loop.vkl")
    os.mkfifo(fifo)
    os.symlink("loop.vkl", loop)
    os.truncate(write_bytes("big.vkl", b""), 1 << 30)
    special = "is not a regular file (a FIFO, device or socket)"
    for name, message in [(fifo, special), ("/dev/zero", special), ("/dev/urandom", special),
                          (loop, "is a loop of symbolic links, not a menu file")]:
        expect_refused(name, message)
    code, out, err = run(tmp("big.vkl"))
    expect_eq((code, out, (err.splitlines() or [""])[0]), (2, "", "Run-time error '7': Out of memory"),
              "a file larger than any menu")

    menu, reference = write("menu.vkl", ["A|a.bmp|F|f"]), tmp("reference.vkl")
    expect_eq(run("--resave", reference, menu)[0], 0, "a plain save")
    if os.geteuid() == 0:
        owned = write_bytes("owned.vkl", b"old\r\n")
        os.chown(owned, 1234, 2345)
        os.chmod(owned, 0o640)
        expect_eq(run("--resave", owned, menu)[0], 0, "root saves a user's file")
        expect_saved_as(owned, reference, "a user's file saved by root")
        st = os.stat(owned)
        expect_eq((st.st_uid, st.st_gid, st.st_mode & 0o7777), (1234, 2345, 0o640), "owner, group and mode stay")

    code, _, err = run("--resave", "/dev/full", menu)
    expect_eq((code, "Run-time error '61': Disk full" in err), (2, True), "a full disk")
    expect_eq([n for n in os.listdir(TMP) if ".saving-" in n], [], "no file is left beside the saved ones")


def group_language():
    out = tmp("de.vkl")
    code, _, err = run("--lang", "2", "--resave", out, data("sheetmetal.vkl"))
    expect_eq(err.splitlines(), ["Leeres Menu 'Cutouts' wird nicht abgespeichert  !", "Folgende Tabellenzeilen"
                                 " haben leere Spalten und wurden nicht abgespeichert :", "", "2"], "German messages")
    expect_saved_as(out, data("sheetmetal.resaved.vkl"), "the language does not change the file")

    # A header too short to reach the title keeps what the window's language put there.
    write("untitled.vkl", [], header=["lib", "About"])
    for lang, title in [("1", "Write here your own menu title !"), ("2", "Hier eigenen Menu Titel eintragen !")]:
        header = run_json("--lang", lang, "untitled.vkl")[1].get("header", {})
        expect_eq((header.get("Text2"), header.get("Text3"), header.get("Combo2")),
                  (title, "About", "100"), f"header fields with --lang {lang}")


def group_usage():
    code, out, err = run("--help")
    expect(code == 0 and out.startswith(USAGE) and err == "", f"--help: {code} {out[:80]!r} {err!r}")
    write("a.vkl", ["A|a|F|f"])
    for args, message in [([], "no menu file given"), (["a.vkl", "a.vkl"], "one menu file at a time, not 2"),
                          (["--lang", "3", "a.vkl"], "--lang takes 1 (English) or 2 (German), not '3'"),
                          (["--lang", "2", "--lang", "1", "a.vkl"], "--lang given twice"),
                          (["a.vkl", "--resave"], "--resave needs a value"), (["--xml", "a.vkl"],
                          "unknown option '--xml'"), (["--resave", "", "a.vkl"], "--resave needs a file name")]:
        code, out, err = run(*args)
        expect_eq((code, out, err.splitlines()[:2]), (64, "", [f"vklcheck: {message}", USAGE]), f"usage {args}")
    write("-dash.vkl", ["A|a|F|f"])
    expect_eq(run("--", "-dash.vkl")[:2], (0, summary("-dash.vkl", 1, 0, 0, 0) + "\n"), "a file after --")


# ---- Random menus: the JSON against the menu generated, and a save read back ---------------

TITLE_CHARS = "abcdefghijkl XYZ019_.\u00e4\u00f6\u00fc\u00e9"


def bare(path):
    return path.rsplit("/", 1)[-1].rsplit("\\", 1)[-1]


def random_menu(rng):
    """Menu lines without blanks around fields, no empty submenu; and what reading gives."""
    lines, rows, bitmaps, serial = [], [], {}, [0]

    def level(depth):
        nodes = []
        for _ in range(rng.randint(1, 4)):
            title = rng.choice("ABCDEFGH") + "".join(
                rng.choice(TITLE_CHARS) for _ in range(rng.randint(0, 8))).strip()
            bitmap = rng.choice(["", "b.bmp", "dir/x.bmp", "C:\\img\\y.bmp", "a/b\\c.bmp"])
            if depth < 4 and rng.random() < 0.3:
                serial[0] += 1
                if bitmap:
                    bitmaps[str(serial[0])] = bitmap
                lines.append((" " * depth) + f"{title}|{bitmap}|{rng.choice('Ss')}|x")
                nodes.append({"key": f"Menu{serial[0]}", "text": title, "image": "folderclosed",
                              "children": level(depth + 1)})
                continue
            action = rng.choice(["D", "F", "P", "LOS", "LWM", "LMM", "los", "f"])
            param = rng.choice(["fn", "C:\\pkg\\a.pkg", "x/y\\z.pkg", "run_it"])
            lines.append((" " * depth) + f"{title}|{bitmap}|{action}|{param}")
            n = len(rows) + 1
            shown = bare(param) if action.upper() == "LOS" else param
            rows.append([str(n), title, bare(bitmap), action, shown, bitmap, param])
            nodes.append({"key": f"Child{n}", "text": title.upper(), "image": "", "children": []})
        return nodes

    tree = {"key": "Menu0", "text": "Top Menu", "image": "root", "children": level(0)}
    return lines, rows, tree, bitmaps


def saves_until_unreadable(pairs):
    """How often a file read with these SHORTCUT pairs can be saved before the next open ends."""
    for saves in range(1, 9):
        values = {key.lower(): value for key, value in pairs}  # the last pair of a key counts
        datadir, bmpdir = values.get("datadir", ""), values.get("bmpdir", "")
        written = [(k, v) for k, v in pairs if k and v] + ([(datadir, datadir)] if datadir else []) \
            + ([("", bmpdir)] if bmpdir else [])
        if len(written) > 2:
            return saves
        if written == pairs:
            return 0
        pairs = written
    return 0


def group_round_trip():
    rng = random.Random(2024)
    for i in range(25):
        lines, rows, tree, bitmaps = random_menu(rng)
        pair = rng.choice([None, ("datadir", "D:\\d"), ("BmpDir", "E:\\b"), ("key", "val")])
        header = [HEADER[0], f"About {i}", *HEADER[2:5], f"Menu {i} \u00e4", *HEADER[6:]]
        name, out = f"random{i}.vkl", f"random{i}.out.vkl"
        write(name, ([f"SHORTCUT|{pair[0]}|{pair[1]}"] if pair else []) + lines, header=header)
        code, first, _ = run_json(name)
        what = f"{name} ({len(lines)} lines)"
        trapped = int(saves_until_unreadable([pair] if pair else []) > 0)
        expect_eq((code, first.get("rows"), first.get("tree"), first.get("submenuBitmaps")),
                  (trapped, rows, tree, bitmaps), f"{what}: read as generated")

        code, _, err = run("--resave", out, name)
        expect_eq((code, err), (trapped, ""), f"{what}: saved without loss")
        code, second, _ = run_json(out)
        upper_rows = [[r[0], r[1].upper()] + r[2:] for r in rows]
        trapped = int(saves_until_unreadable([tuple(p) for p in second.get("shortcuts", [])]) > 0)
        h1 = first.get("header", {})
        extra = ([[h1["Datadir"], h1["Datadir"]]] if h1.get("Datadir") else []) + \
                ([["", h1["Imagedir"]]] if h1.get("Imagedir") else [])
        expect_eq((code, second.get("rows"), second.get("tree"), second.get("submenuBitmaps"),
                   second.get("header"), second.get("shortcuts")),
                  (trapped, upper_rows, tree, bitmaps,
                   dict(h1, Text3=h1.get("Text3", "") + " # 1. text in the [About] box"),
                   first.get("shortcuts", []) + extra), f"{what}: read back after the save")


GROUPS = {name[6:]: g for name, g in list(globals().items()) if name.startswith("group_")}


def main():
    global VKL, CLI_DATA, TMP
    if len(sys.argv) != 4 or sys.argv[1] not in GROUPS:
        sys.exit(f"usage: {sys.argv[0]} {{{'|'.join(GROUPS)}}} VKLCHECK DATA_DIR")
    VKL, CLI_DATA = os.path.abspath(sys.argv[2]), os.path.join(os.path.abspath(sys.argv[3]), "cli")
    TMP = tempfile.mkdtemp(prefix="vklcheck-")
    try:
        GROUPS[sys.argv[1]]()
    finally:
        shutil.rmtree(TMP, ignore_errors=True)
    print("".join(f"FAILED: {f}\n" for f in failures) + f"{sys.argv[1]}: {len(failures)} failure(s)")
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
