#!/usr/bin/env python3
"""Prints each benchmark beside its floor from the same run and fails when a ratio is over its limit."""
import json
import sys

# (benchmark, floor, limit): the benchmark may cost at most limit times its floor.
RATIOS = [
    ("BM_ReadMenuFile", "BM_RawLineScan", 6.0),
    ("BM_WriteMenuFile", "BM_RawLineWrite", 3.0),
    ("BM_OpenInWindow", "BM_ReadMenuFile", 2.0),
    ("BM_WindowRemoveItem", "BM_ReadMenuFile", 1.0),
    ("BM_WindowRemoveFolder", "BM_ReadMenuFile", 1.0),
    ("BM_WindowSwitchLanguage", "BM_ReadMenuFile", 1.0),
    ("BM_DeleteMarkedLines", "BM_ReadMenuFile", 1.0),
    ("BM_RemoveChildrenOnly", "BM_DeleteMarkedLines", 2.0),
]


def main(path):
    with open(path) as f:
        data = json.load(f)
    # With repetitions, each benchmark's median (one slow repetition on the shared machine
    # moves it little); a single run stands for itself.
    times, units, medians = {}, {}, {}
    for b in data["benchmarks"]:
        name = b.get("run_name", b["name"]).split("/")[0]
        if b.get("run_type", "iteration") == "iteration":
            times.setdefault(name, b["real_time"])
            units[name] = b.get("time_unit", "ns")
        elif b.get("aggregate_name") == "median":
            medians[name] = b["real_time"]
    times.update(medians)
    failed = False
    for name, floor, limit in RATIOS:
        if name not in times or floor not in times:
            continue
        ratio = times[name] / times[floor]
        ok = ratio <= limit
        failed |= not ok
        print(f"{name:24} {times[name]:9.3f} {units[name]:2}  / {floor:22} "
              f"{times[floor]:9.3f} {units[floor]:2}  = {ratio:5.2f}"
              f"  (limit {limit})  {'ok' if ok else 'OVER'}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
