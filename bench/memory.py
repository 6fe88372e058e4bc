#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures whether memory stays what it was: while items are read one after the other, and over a day of updates.

usage: memory.py PROGRAM DAY_OF_UPDATES PAGES

PAGES is the folder of home.htm and its companions. Memory is the PSS of the program and of all processes that it started,
on the X display at hand; no other program of the same libraries must come or go meanwhile. The greatest value counts and
not the last one, since the engine lets pages pile up and clears them away. Exit status 1 when a limit is passed.
"""

import http.server
import os
import shutil
import subprocess
import sys
import threading
import time

import start

READ = 400          # items
MORE = 10           # in the feed
PACE = 0.25         # seconds an item: faster than anybody reads
LOOK_EVERY = 10     # items
FEEDS = 50          # that are due each hour
FEED_ITEMS = 20
NEW_AN_HOUR = 2
LIMIT = 1.1
FIRST_FEED = (205, 205)  # where the window of the settings template has the first feed of the tree, and the first item
FIRST_ITEM = (450, 187)


def feed_text(feed, first, items):
    """A feed with its newest item in front: the items number first + items - 1 down to first."""
    paragraph = ("&lt;p&gt;" + "Le pont restera fermé jusqu'à la fin du mois. " * 5 +
                 "&lt;a href=\"http://127.0.0.1:9/\"&gt;La suite&lt;/a&gt;&lt;/p&gt;")
    rows = "".join(f"<item><title>Article {i} du flux {feed}</title><link>http://127.0.0.1:9/{i}</link>"
                   f"<description>{paragraph * 5}</description></item>\n" for i in reversed(range(first, first + items)))
    return ('<?xml version="1.0" encoding="UTF-8"?>\n<rss version="2.0"><channel>'
            f"<title>Flux {feed}</title>\n{rows}</channel></rss>\n")


def write_feed(folder, feed, items):
    with open(os.path.join(folder, "feeds", f"{feed}.xml"), "w", encoding="utf-8") as file:
        file.write(feed_text(feed, 0, items))


def memory(process):
    """PSS of the program and of those that it started, in MB."""
    return sum(start.shares_of(process.pid))


class Peak:
    def __init__(self, process):
        self.process = process
        self.first = self.most = memory(process)

    def look(self):
        self.last = memory(self.process)
        self.most = max(self.most, self.last)

    def text(self):
        return f"{self.first:.0f} MB at first, {self.most:.0f} at the most, {self.last:.0f} in the end"


def click(place):
    subprocess.run(["xdotool", "mousemove", str(place[0]), str(place[1]), "click", "1"], check=True)
    time.sleep(5)


def while_reading(program, pages):
    """The program with a feed and its first item on show, against what it takes while the next ones are read."""
    folder = start.data_folder(pages, 500, "Plein écran")
    write_feed(folder, 1, READ + MORE)
    process = start.start(program, folder)
    time.sleep(8)
    click(FIRST_FEED)
    click(FIRST_ITEM)
    peak = Peak(process)
    for i in range(READ):
        subprocess.run(["xdotool", "key", "Down"], check=True)
        time.sleep(PACE)
        if i % LOOK_EVERY == 0:
            peak.look()
    time.sleep(10)
    peak.look()
    with open(os.path.join(folder, "tmp.htm"), "rb") as file:
        page = file.read().replace(b"\0", b"")
    start.end(process)
    shutil.rmtree(folder)
    if f"Article {MORE - 1} ".encode() not in page:
        sys.exit("memory.py: the items weren't read")
    return peak


class FeedServer(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    asked = {}

    def do_GET(self):
        feed = self.path.strip("/").removesuffix(".rss")
        times = self.asked[feed] = self.asked.get(feed, 0) + 1
        body = feed_text(feed, NEW_AN_HOUR * times, FEED_ITEMS).encode()
        self.send_response(200)
        self.send_header("Content-Type", "application/rss+xml")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


def over_a_day(program, day, pages):
    """The same with the hours of a day, and how many updates there were in it."""
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), FeedServer)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    folder = start.data_folder(pages, FEEDS, "Plein écran")
    catalogue = os.path.join(folder, "feeds.xml")
    with open(catalogue, encoding="utf-8") as file:
        text = file.read().replace("127.0.0.1:9", f"127.0.0.1:{server.server_port}")
    with open(catalogue, "w", encoding="utf-8") as file:
        file.write(text)
    for feed in range(FEEDS):
        write_feed(folder, feed + 1, FEED_ITEMS)
    environment = dict(os.environ, QUILLWIRE_MODULES=os.path.dirname(program), XDG_CONFIG_HOME=folder)
    process = subprocess.Popen([day, folder], env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL, text=True)
    updates = int(process.stdout.readline())
    peak = Peak(process)
    for _ in range(24):
        process.stdin.write("\n")
        process.stdin.flush()
        updates = int(process.stdout.readline())
        peak.look()
    process.communicate("\n")
    server.shutdown()
    shutil.rmtree(folder)
    return peak, updates


def main():
    program, day, pages = sys.argv[1:4]
    reading = while_reading(program, pages)
    updating, updates = over_a_day(program, day, pages)
    print(f"{READ} items read: {reading.text()}")
    print(f"a day of {FEEDS} feeds, {updates} updates with new items: {updating.text()}")
    results = [
        start.report(f"{READ} items read, at the most / the first item", reading.most / reading.first, LIMIT),
        start.report("a day of updates, at the most / its begin", updating.most / updating.first, LIMIT),
    ]
    sys.exit(0 if all(results) else 1)


if __name__ == "__main__":
    main()
