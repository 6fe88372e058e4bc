#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Compares the results of the benchmark program with their limits: limits.py RESULTS.json. Exit status 1 when one is passed."""

import json
import sys

# Ratios against a floor measured in the same run.
COUNTERS = {
    "load_to_parse": 1.25,    # CachedFeed::Load / the library's own tree parse of the same bytes
    "peak_to_parse": 1.3,     # peak memory of both
    "fields_to_parse": 0.5,   # every field of every item once / the parse
    "save_to_parse": 1.5,     # CachedFeed::Save, which reads back what it wrote / the parse
    "merge_to_load": 1.2,     # the merge / loading the two files
    "fill_to_load": 1.0,      # filling the list with 32,767 rows / loading them
}
# What mustn't depend on the number of items: 32,767 of them / 100 of them.
PAIRS = [("ShownList/scrollAPage/32767", "ShownList/scrollAPage/100", 1.5),
         ("ShownList/markARow/32767", "ShownList/markARow/100", 2.0)]


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        results = json.load(file)["benchmarks"]
    passed = True

    def report(text, value, limit):
        nonlocal passed
        passed = passed and value <= limit
        print(f"{text:<72}{value:7.2f}   limit {limit:<5g}{'ok' if value <= limit else 'TOO MUCH'}")

    for result in results:
        for counter, limit in COUNTERS.items():
            if counter in result:
                report(f"{result['name'].removesuffix('/manual_time')} {counter}", result[counter], limit)
    times = {result["name"]: result["cpu_time"] for result in results}
    for many, few, limit in PAIRS:
        if many in times and few in times:
            report(f"{many} / {few.rsplit('/', 1)[1]}", times[many] / times[few], limit)
    sys.exit(0 if passed else 1)


if __name__ == "__main__":
    main()
