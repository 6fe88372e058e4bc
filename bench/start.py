#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures starts of the program on the X display at hand: time to the first window, and memory when started to the tray.

usage: start.py PROGRAM EMPTY_PROGRAM PAGES

PAGES is the folder of home.htm and its companions. Times are medians of several starts in one run, the programs taking
turns; each ratio stands beside its limit, and the exit status is 1 when one is passed.
"""

import ctypes
import os
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time

STARTS = 9
IS_VIEWABLE = 2
SMALLEST_WINDOW = 200  # pixels; helper windows are smaller


class WindowAttributes(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int) for name in ("x", "y", "width", "height", "border_width", "depth")] + [
        ("visual", ctypes.c_void_p), ("root", ctypes.c_ulong), ("window_class", ctypes.c_int),
        ("bit_gravity", ctypes.c_int), ("win_gravity", ctypes.c_int), ("backing_store", ctypes.c_int),
        ("backing_planes", ctypes.c_ulong), ("backing_pixel", ctypes.c_ulong), ("save_under", ctypes.c_int),
        ("colormap", ctypes.c_ulong), ("map_installed", ctypes.c_int), ("map_state", ctypes.c_int),
        ("all_event_masks", ctypes.c_long), ("your_event_mask", ctypes.c_long),
        ("do_not_propagate_mask", ctypes.c_long), ("override_redirect", ctypes.c_int), ("screen", ctypes.c_void_p)]


class Display:
    """The windows that are on the screen."""

    def __init__(self):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        # A window may vanish between two calls; that is no reason to end.
        self.handler = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)(lambda *_: 0)
        self.x11.XSetErrorHandler(self.handler)
        self.display = self.x11.XOpenDisplay(None)
        if not self.display:
            sys.exit("start.py: no X display")
        self.root = self.x11.XDefaultRootWindow(self.display)

    def shows_a_window(self):
        display, root = ctypes.c_void_p(self.display), ctypes.c_ulong(self.root)
        parent, root_return, count = ctypes.c_ulong(), ctypes.c_ulong(), ctypes.c_uint()
        children = ctypes.POINTER(ctypes.c_ulong)()
        self.x11.XQueryTree(display, root, ctypes.byref(root_return), ctypes.byref(parent), ctypes.byref(children),
                            ctypes.byref(count))
        found = False
        for i in range(count.value):
            attributes = WindowAttributes()
            if self.x11.XGetWindowAttributes(display, ctypes.c_ulong(children[i]), ctypes.byref(attributes)):
                found = found or (attributes.map_state == IS_VIEWABLE and attributes.width >= SMALLEST_WINDOW
                                  and attributes.height >= SMALLEST_WINDOW)
        if children:
            self.x11.XFree(children)
        return found


def data_folder(pages, feeds, mode):
    folder = tempfile.mkdtemp(prefix="quillwire-bench-")
    os.mkdir(os.path.join(folder, "feeds"))
    for name in ("home.htm", "style.css", "slien.gif"):
        shutil.copy(os.path.join(pages, name), folder)
    with open(os.path.join(folder, "feeds.xml"), "w", encoding="utf-8") as file:
        file.write('<?xml version="1.0"?>\n<favoris>')
        for i in range(feeds):
            if i % 10 == 0:
                file.write(f'<dir name="Dossier {i // 10}" key="{20000 + i}" visible="1">')
            file.write(f'<feed name="Flux {i}" url="http://127.0.0.1:9/{i}.rss" key="{i + 1}" ttl="60" cache="-7"/>')
            if i % 10 == 9:
                file.write("</dir>")
        file.write("</favoris>\n")
    settings = open(os.path.join(pages, "params.xml"), encoding="utf-8", newline="").read()
    settings = settings.replace("</params>", f'<start mode="{mode}" update="0"/></params>')
    with open(os.path.join(folder, "params.xml"), "w", encoding="utf-8", newline="") as file:
        file.write(settings)
    return folder


def start(program, folder):
    environment = dict(os.environ, QUILLWIRE_DATA=folder, QUILLWIRE_RUNTIME_DIR=folder, XDG_CONFIG_HOME=folder)
    return subprocess.Popen([program], env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def end(process):
    process.send_signal(signal.SIGTERM)
    try:
        process.wait(10)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


def milliseconds_to_window(display, program, folder):
    while display.shows_a_window():
        time.sleep(0.01)
    began = time.monotonic()
    process = start(program, folder)
    while not display.shows_a_window():
        if process.poll() is not None or time.monotonic() - began > 30:
            sys.exit(f"start.py: {program} showed no window")
        time.sleep(0.001)
    took = time.monotonic() - began
    end(process)
    return took * 1000


def descendants(pid):
    with open(f"/proc/{pid}/task/{pid}/children", encoding="ascii") as file:
        return file.read().split()


def family(pid):
    return [pid] + [one for child in descendants(pid) for one in family(int(child))]


def shares_of(pid):
    """PSS in MB of a process, and of each that it started."""
    shares = []
    for member in family(pid):
        with open(f"/proc/{member}/smaps_rollup", encoding="ascii") as file:
            shares.append(next(int(line.split()[1]) for line in file if line.startswith("Pss:")) / 1024)
    return shares


def memory_by_process(program, folder, seconds):
    """PSS in MB of the program, and of each process that it started, some seconds after the start."""
    process = start(program, folder)
    time.sleep(seconds)
    shares = shares_of(process.pid)
    end(process)
    return shares


def report(text, value, limit):
    verdict = "ok" if value <= limit else "TOO MUCH"
    print(f"{text:<62}{value:8.2f}   limit {limit:<6g}{verdict}")
    return value <= limit


def main():
    program, empty_program, pages = sys.argv[1:4]
    display = Display()
    none = data_folder(pages, 0, "Plein écran")
    many = data_folder(pages, 1000, "Plein écran")
    tray = data_folder(pages, 1000, "Minimisé")
    times = {"empty": [], "none": [], "many": []}
    for _ in range(STARTS):
        times["empty"].append(milliseconds_to_window(display, empty_program, none))
        times["none"].append(milliseconds_to_window(display, program, none))
        times["many"].append(milliseconds_to_window(display, program, many))
    median = {name: statistics.median(values) for name, values in times.items()}
    in_tray = memory_by_process(program, tray, 4)
    page = data_folder(pages, 500, "Plein écran")
    with_page = memory_by_process(program, page, 8)
    for folder in (none, many, tray, page):
        shutil.rmtree(folder)

    print(f"first window, milliseconds: empty program {median['empty']:.0f}, no feeds {median['none']:.0f}, "
          f"1,000 feeds {median['many']:.0f}")
    print(f"500 feeds and the start page, PSS in MB: program {with_page[0]:.0f}, engine "
          + " + ".join(f"{share:.0f}" for share in with_page[1:]))
    results = [
        report("start with no feeds / start of an empty program", median["none"] / median["empty"], 1.3),
        report("start with 1,000 feeds / start with none", median["many"] / median["none"], 1.5),
        report("started to the tray with 1,000 feeds: PSS in MB", in_tray[0], 70),
        report("started to the tray: browser processes", len(in_tray) - 1, 0),
        report("500 feeds and the start page: PSS in MB of all processes", sum(with_page), 280),
    ]
    sys.exit(0 if all(results) else 1)


if __name__ == "__main__":
    main()
