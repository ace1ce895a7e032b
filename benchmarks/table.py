#!/usr/bin/env python3
"""table.py RESULT DIRECTORY [BASE]: gathers the files that the benchmark programs wrote into DIRECTORY as RESULT, and
prints the median time of each benchmark, with its ratio to that in BASE, an earlier RESULT: above 1 where it became
faster."""
import json, re, sys
from pathlib import Path

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def shown(nanoseconds):
    unit = max((unit for unit in NANOSECONDS if NANOSECONDS[unit] <= max(nanoseconds, 1)), key=NANOSECONDS.get)
    return f"{nanoseconds / NANOSECONDS[unit]:.4g} {unit}"


def main():
    result, directory, *base = sys.argv[1:]
    times = {}
    for path in sorted(Path(directory).glob("*.json")):
        program = path.stem.removeprefix("orvane_").removesuffix("_benchmark")
        for run in json.loads(path.read_text())["benchmarks"]:
            if run.get("error_occurred"):
                sys.exit(f"{run['name']}: {run['error_message']}")
            if run.get("aggregate_name") == "median":
                name = f"{program}: {re.sub('/(real_time|min_time:[^/]*)', '', run['run_name'])}"
                times[name] = run["real_time"] * NANOSECONDS[run["time_unit"]]
    Path(result).write_text(json.dumps(times, indent=1, ensure_ascii=False))
    before = json.loads(Path(base[0]).read_text()) if base else {}
    print(f"{'benchmark':64} {'time':>10} {'before':>10} {'ratio':>6}")
    for name, time in times.items():
        old = before.get(name)
        print(f"{name:64.64} {shown(time):>10} {shown(old) if old else '-':>10} {f'{old / time:.2f}' if old else '-':>6}")
    for name in before.keys() - times.keys():
        print(f"{name:64.64} {'gone':>10} {shown(before[name]):>10}")


if __name__ == "__main__":
    main()
