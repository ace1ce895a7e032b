#!/usr/bin/env python3
"""Runs queries with automatic attribute indices and without (--no-indices), in turns, and prints the ratio of the
times: what the indices cost where they do not help, and what they save where they do. Making an index counts.
A query runs several times in each process; of each of its runs the least over all processes is taken, so that a
busy machine disturbs little.

Use: benchmarks/both_ways.py [options] [-- arguments of orvane that open tables]
Without arguments the queries of examples/queries and docs/dialect.md run over examples/data, and the queries below
over a table that is made for it. With arguments the statements of --statements run over the tables they open.
The exit code is 1 when a query is slower by more than --bound and --slack."""
import argparse, os, random, re, subprocess, sys, tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
MADE = {
    "one number": "Select name From points Where id = 777",
    "one text": "Select id From points Where name = 'name 777'",
    "few texts": "Select Count(*) From points Where name In ('name 1', 'NAME 2', 'none')",
    "narrow range": "Select Count(*) From points Where price Between 100 And 101",
    "beginning of few texts": "Select Count(*) From points Where name Like 'name 777%'",
    "beginning of many texts": "Select Count(*) From points Where name Like 'name 1%'",
    "text within": "Select Count(*) From points Where name Like '%777'",
    "first rows by two columns": "Select name From points Order By size, price Desc Limit 20",
    "wide range": "Select Count(*) From points Where price > 10",
    "frequent text": "Select Count(*) From points Where kind = 'kind 3'",
    "two terms": "Select Count(*) From points Where kind = 'kind 3' And size = 12",
    "join on a unique number": "Select Count(*) From points a Join points b On b.id = a.id + 1 Where a.price < 5",
    "join on a number shared by 10": "Select Count(*) From points a Join points b On b.size = a.id Where a.price < 5",
    "join on a text shared by 1000": "Select Count(*) From kinds k Join points p On p.kind = k.kind",
    "join of few rows": "Select Count(*) From kinds k Join points p On p.id = k.id",
    "left join": "Select Count(p.id) From kinds k Left Join points p On p.id = k.id",
    "exists": "Select Count(*) From kinds k Where Exists (Select 1 From points p Where p.size = k.id)",
    "subquery per row": "Select Sum((Select Max(price) From points p Where p.kind = k.kind)) From kinds k",
    "in a subquery": "Select Count(*) From points Where size In (Select id From kinds)",
}


def make_tables(directory, rows):
    """`points` with unique, shared and frequent values in no order, and `kinds` with 20 rows."""
    numbers = random.Random(1)
    order = list(range(rows))
    numbers.shuffle(order)
    with open(directory / "points.csv", "w") as file:
        file.write("id,name,kind,size,price\n")
        for i in order:
            file.write(f"{i},name {i},kind {i % (rows // 1000)},{i // 10},{numbers.random() * 1000:.3f}\n")
    with open(directory / "kinds.csv", "w") as file:
        file.write("id,kind\n" + "".join(f"{i * 7},kind {i}\n" for i in range(20)))
    subprocess.run(["ogr2ogr", "-f", "GPKG", directory / "points.gpkg", directory / "points.csv",
                    "-oo", "AUTODETECT_TYPE=YES"], check=True)
    return [directory / "points.gpkg", directory / "kinds.csv"]


def statements_of(text):
    return [s.strip() for s in re.split(r";\s*(?:\n|$)", text) if s.strip()]


def documented():
    data = ROOT / "examples" / "data"
    tables = [data / "cities.shp", data / "countries.gpkg", data / "indicators.csv"]
    queries = {path.stem: path.read_text() for path in sorted((ROOT / "examples" / "queries").glob("*.sql"))}
    blocks = re.findall(r"^```sql\n(.*?)^```", (ROOT / "docs" / "dialect.md").read_text(), re.M | re.S)
    queries.update({f"dialect.md, example {i}": block for i, block in enumerate(blocks, 1)
                    if " Into " not in block})  # makes a table, which is there the next time
    return tables, queries


def run(options, tables, query, *more):
    """The milliseconds of each statement of a process that answers the query so many times, and the answer."""
    with (tempfile.NamedTemporaryFile("w", suffix=".sql") as script, tempfile.TemporaryFile("w+") as answer,
          tempfile.TemporaryFile("w+") as errors):
        script.write((query.strip().rstrip(";") + ";\n") * options.repetitions)
        script.flush()
        status = subprocess.call([options.orvane, "--timing", "-F", "csv", *more, *map(str, tables),
                                  "-f", script.name], stdin=subprocess.DEVNULL, stdout=answer, stderr=errors)
        answer.seek(0)
        errors.seek(0)
        said = errors.read()
        if status:
            sys.exit(f"{query}\n{said}")
        return [float(ms) for ms in re.findall(r"total_ms=([0-9.]+)", said)], sorted(answer)


def compare(options, tables, queries):
    good = True
    for name, query in queries.items():
        with_least, without_least = [], []
        for _ in range(options.turns):
            with_ms, answer = run(options, tables, query)
            without_ms, scanned = run(options, tables, query, "--no-indices")
            is_any_answer = re.search(r"\bLimit\b", query) and not re.search(r"\bOrder By\b", query)
            if len(answer) != len(scanned) if is_any_answer else answer != scanned:
                sys.exit(f"{query}\nThe answers differ.")
            with_least = list(map(min, with_least or with_ms, with_ms))
            without_least = list(map(min, without_least or without_ms, without_ms))
        with_ms, without_ms = sum(with_least), sum(without_least)
        slower = with_ms > without_ms * options.bound and with_ms > without_ms + options.slack
        good = good and not slower
        print(f"{name:44.44} {with_ms:10.1f} {without_ms:10.1f} {with_ms / without_ms:7.2f}"
              f"{'  slower' if slower else ''}", flush=True)
    return good


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--orvane", default=str(ROOT / "build" / "release" / "bin" / "orvane"))
    parser.add_argument("--rows", type=int, default=100_000, help="of the table that is made")
    parser.add_argument("--repetitions", type=int, default=5, help="of a query in one process")
    parser.add_argument("--turns", type=int, default=5, help="processes for each way")
    parser.add_argument("--bound", type=float, default=1.1)
    parser.add_argument("--slack", type=float, default=1, help="milliseconds that are not counted as slower")
    parser.add_argument("--statements", type=Path, help="a script to run instead, over the tables that follow --")
    parser.add_argument("tables", nargs="*")
    options = parser.parse_args()
    print(f"{'query, ' + str(options.repetitions) + ' times':44} {'with ms':>10} {'without ms':>10} {'ratio':>7}")
    if options.statements:
        queries = {query.replace("\n", " "): query for query in statements_of(options.statements.read_text())}
        return compare(options, options.tables, queries)
    with tempfile.TemporaryDirectory() as directory:
        made = compare(options, make_tables(Path(directory), options.rows), MADE)
    return compare(options, *documented()) and made


if __name__ == "__main__":
    sys.exit(0 if main() else 1)
