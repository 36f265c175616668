#!/usr/bin/env python3
"""Usage: table.py RESULTS PYTHON MEMORY

Prints the tables of what scripts/bench measured: RESULTS is the benchmark program's JSON, PYTHON has a line
"corpus milliseconds" for each corpus that the Python script ran on, MEMORY a line "corpus calls bytes
first last" for each corpus that memory was measured on.
"""
import json
import sys

# For each corpus, how many times the bare reading a call may take: the limit, and the aim.
BOUNDS = {
    "small": (1.8, 1.4),
    "many": (2.2, 1.6),
    "large": (2.2, 1.6),
    "wide": (2.5, 1.7),
    "rotating": (1.8, 1.4),
    "deep": (3.0, 2.0),
}


def rows_of(path):
    with open(path, encoding="utf-8") as file:
        return [line.split() for line in file]


def milliseconds(value):
    return "-" if value is None else f"{float(value):.1f}"


def verdict(name, ratio):
    must, aim = BOUNDS[name]
    return "aim reached" if ratio <= aim else "reached" if ratio <= must else "NOT REACHED"


def main():
    results, python_file, memory_file = sys.argv[1:]
    with open(results, encoding="utf-8") as file:
        runs = {run["name"].split("/")[1]: run for run in json.load(file)["benchmarks"]}
    python = {row[0]: float(row[1]) for row in rows_of(python_file)}

    print(f"{'corpus':<10}{'call ms':>10}{'floor ms':>10}{'ratio':>8}{'must':>6}{'aim':>6}  {'':<13}"
          f"{'pugixml ms':>11}{'expat ms':>10}{'Python ms':>11}{'Python/call':>13}")
    for name, (must, aim) in BOUNDS.items():
        run = runs[name]
        slower = f"{python[name] / run['call_ms']:.1f}" if name in python else "-"
        print(f"{name:<10}{run['call_ms']:>10.1f}{run['floor_ms']:>10.1f}{run['ratio']:>8.2f}{must:>6}{aim:>6}  "
              f"{verdict(name, run['ratio']):<13}{milliseconds(run.get('pugixml_ms')):>11}"
              f"{milliseconds(run.get('expat_ms')):>10}{milliseconds(python.get(name)):>11}{slower:>13}")

    print(f"\n{'doubling':<16}{'first ms':>10}{'last ms':>10}{'exponent':>10}   (four times; 1 is linear)")
    for name in ("backups", "nodes", "configurations", "targets", "depth"):
        run = runs[name]
        print(f"{name:<16}{run['first_ms']:>10.1f}{run['last_ms']:>10.1f}{run['exponent']:>10.2f}")

    print(f"\n{'memory':<10}{'calls':>7}{'documents MB':>14}{'peak MB':>9}{'peak/document byte':>20}{'peak after last MB':>21}")
    for name, calls, size, first, last in rows_of(memory_file):
        size, first, last = int(size), int(first), int(last)
        print(f"{name:<10}{calls:>7}{size / 1e6:>14.1f}{first / 1e6:>9.1f}{first / size:>20.2f}{last / 1e6:>21.1f}")


main()
