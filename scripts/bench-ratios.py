#!/usr/bin/env python3
"""Prints the quillon/openssl CPU-time ratio of every benchmark pair in Google Benchmark JSON.

usage: bench-ratios.py RESULT.json...

Two benchmarks form a pair when their names differ only in "quillon" and "openssl" (in any
letter case). Ratios below 1 mean the library is faster than the peer on the same bytes in the
same run. Repeated runs are reduced to their median when Google Benchmark reports one.
"""
import json
import re
import sys

PEER = re.compile("openssl", re.IGNORECASE)


def cpu_times(paths):
    times = {}
    for path in paths:
        with open(path) as f:
            report = json.load(f)
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
    by_key = {name.lower(): t for name, t in times.items()}  # "OpenSSL" pairs with "Quillon"
    for name, peer_time in sorted(times.items()):
        if not PEER.search(name):
            continue
        ours = PEER.sub("quillon", name).lower()
        if ours in by_key and peer_time > 0:
            yield PEER.sub("*", name), by_key[ours], peer_time


def main(paths):
    if not paths:
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    rows = list(pairs(cpu_times(paths)))
    if not rows:
        print("no quillon/openssl pairs found")
        return 0
    width = max(len(r[0]) for r in rows)
    print(f"{'benchmark':<{width}}  {'quillon/openssl':>15}")
    for name, ours, peer in rows:
        print(f"{name:<{width}}  {ours / peer:>15.2f}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
