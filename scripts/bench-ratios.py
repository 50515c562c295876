#!/usr/bin/env python3
"""Prints the time ratio of every quillon benchmark to its peers, from Google Benchmark JSON.

usage: bench-ratios.py RESULT.json...

A benchmark whose name contains "quillon" is paired with every benchmark whose name is the same
except for one other word in that place: "DecodeCertificate/quillon" with
"DecodeCertificate/openssl", "AllocFree_quillon/64" with "AllocFree_malloc/64". Ratios below 1
mean the library is faster than the peer on the same bytes in the same run; the speed-up column
is the inverse. CPU time is used;
repeated runs are reduced to their median when Google Benchmark reports one.
"""
import json
import re
import sys

OURS = re.compile("quillon", re.IGNORECASE)


def cpu_times(paths):
    times = {}
    for path in paths:
        # A program whose benchmarks a filter left out writes an empty file.
        with open(path) as f:
            text = f.read()
        if not text.strip():
            continue
        report = json.loads(text)
        for b in report.get("benchmarks", []):
            if b.get("error_occurred"):
                continue
            kind = b.get("run_type", "iteration")
            name = b.get("run_name", b["name"])
            if kind == "aggregate" and b.get("aggregate_name") != "median":
                continue
            # A median, when present, replaces the single runs of the same benchmark.
            if kind == "aggregate" or name not in times:
                times[name] = b["cpu_time"]
    return times


def pairs(times):
    for name, ours in times.items():
        m = OURS.search(name)
        if not m:
            continue
        peer_name = re.compile(re.escape(name[:m.start()]) + r"([A-Za-z0-9]+)" +
                               re.escape(name[m.end():]) + "$")
        for other, peer in times.items():
            found = peer_name.match(other)
            if found and not OURS.fullmatch(found.group(1)) and peer > 0:
                yield f"{name[:m.start()]}*{name[m.end():]}", found.group(1), ours / peer


def main(paths):
    if not paths:
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    rows = sorted(pairs(cpu_times(paths)))
    if not rows:
        print("no quillon/peer pairs found")
        return 0
    width = max(len(r[0]) for r in rows)
    # The speed-up column reads better than a ratio of 0.02 once we are many times faster.
    print(f"{'benchmark':<{width}}  {'peer':<10} {'quillon/peer':>12} {'speed-up':>9}")
    for name, peer, ratio in rows:
        print(f"{name:<{width}}  {peer:<10} {ratio:>12.4f} {1 / ratio:>8.1f}x")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
