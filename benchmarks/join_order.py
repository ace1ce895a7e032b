#!/usr/bin/env python3
"""Thirty joins in which the wrong order of the tables costs many times the right one. Each runs as it is written, in
every order of its tables, and then with each order forced, so that the best and the worst are known. Prints a line
for each join: the order chosen, its time against the best forced one, what the worst one costs, and the estimates
that were off by more than ten times. Times are those of later runs in one process, when all indices are made, and the
first one beside them.

Use: benchmarks/join_order.py --orvane build/release/bin/orvane [--rows N] [--only NAME] [--data DIRECTORY]
The tables are made in the directory (a temporary one unless named), in some ten seconds for a million rows.
The exit code is 1 when an order was chosen that costs more than --bound times the best, when the written order
makes that difference, or when more than one estimate in twenty is off."""
import argparse, itertools, math, os, random, re, subprocess, sys, tempfile, time
from pathlib import Path

# Name: tables with their aliases, condition.
JOINS = {
    # Attributes: sizes.
    "tiny, huge": ("five f, million m", "m.id = f.id"),
    "tiny, huge by a group": ("five f, million m", "m.town = f.town"),
    "keys, huge": ("keys k, million m", "m.id = k.id"),
    "keys, huge by a text": ("keys k, million m", "m.code = k.code"),
    "chain of three": ("five f, keys k, million m", "k.nr = f.id And m.id = k.id"),
    "star": ("five f, towns t, million m", "m.town = t.name And t.nr = f.id"),
    # Attributes: skewed values, and conditions that leave little.
    "rare value of the huge one": ("keys k, million m", "m.id = k.id And m.kind = 'rare'"),
    "frequent value of the huge one": ("keys k, million m", "m.id = k.id And m.kind = 'common' And k.nr < 50"),
    "rare value against a large one": ("lines l, million m", "m.id = l.id And m.kind = 'rare'"),
    "narrow range": ("lines l, million m", "m.id = l.id And m.price Between 500 And 500.01"),
    "range beyond all values": ("lines l, million m", "m.id = l.id And m.price > 5000"),
    "two ranges": ("lines l, million m", "m.id = l.id And m.price > 999.9 And l.width > 1"),
    "both with conditions": ("lines l, million m", "m.id = l.id And l.class = 'motorway' And m.kind = 'common'"),
    "beginning of a text": ("lines l, million m", "m.id = l.id And m.code Like 'M000123%'"),
    "value that is nowhere": ("lines l, million m", "m.id = l.id And m.kind = 'none'"),
    "mostly NULL": ("lines l, million m", "m.id = l.id And m.note Is Not Null"),
    "skewed group": ("towns t, million m", "m.town = t.name And t.name = 'town 999'"),
    # Space.
    "few lines, many places": ("lines l, million m", "m.obj Within Buffer(l.obj, 1, 8) And l.class = 'motorway'"),
    "few lines, many areas": ("lines l, areas a", "a.obj Intersects l.obj And l.class = 'motorway'"),
    "few areas, many lines": ("lines l, areas a", "l.obj Intersects a.obj And a.id < 5"),
    "districts, places": ("districts d, million m", "m.obj Within d.obj And d.id = 3"),
    "places of one kind, areas": ("areas a, million m", "a.obj Contains m.obj And m.kind = 'rare'"),
    "places of one kind, lines": ("lines l, million m", "l.obj Intersects m.obj And m.kind = 'rare'"),
    "few spots, places": ("spots s, million m", "m.obj Within s.obj"),
    "other system": ("spots_metres s, areas a", "s.obj Intersects a.obj"),
    "other system, turned": ("spots_metres s, areas a", "a.obj Intersects s.obj"),
    # Both.
    "key, then place": ("five f, million m, areas a", "m.id = f.id And a.obj Contains m.obj"),
    "place, then key": ("spots s, million m, lines l", "m.obj Within s.obj And l.id = m.id"),
    "rare line, areas, keys": ("lines l, areas a, million m",
                               "l.class = 'motorway' And a.obj Intersects l.obj And m.id = a.id"),
    "district, areas, rare places": ("districts d, areas a, million m",
                                     "d.id = 3 And a.obj Within d.obj And m.id = a.id And m.kind = 'rare'"),
}


def make_tables(directory, rows, orvane):
    """Everything lies in a square of 1000 by 1000, most of it in its towns."""
    numbers = random.Random(5)
    towns = 1000
    centres = [(numbers.uniform(0, 1000), numbers.uniform(0, 1000)) for _ in range(towns)]
    order = list(range(rows))
    numbers.shuffle(order)

    def write(name, header, lines):
        with open(directory / f"{name}.csv", "w") as file:
            file.write(header + "\n")
            file.writelines(line + "\n" for line in lines)

    def point(i):
        town = min(int(towns * numbers.random() ** 3), towns - 1)
        x, y = centres[town]
        kind = "rare" if i % 20000 == 7 else "common" if i % 10 else "frequent"
        note = "a note" if i % 10007 == 3 else ""
        return (f"{i},M{i:07},town {town},{kind},{note},{numbers.random() * 1000:.4f},"
                f"{x + numbers.gauss(0, 3):.5f},{y + numbers.gauss(0, 3):.5f}")

    def line(i):
        x, y = numbers.uniform(0, 1000), numbers.uniform(0, 1000)
        name = "motorway" if i % (rows // 100) == 11 else "street" if i % 5 else "path"
        length = 20 if name == "motorway" else 0.3
        return (f"{i},{name},{numbers.uniform(1, 20):.3f},{x:.5f},{y:.5f},"
                f"{x + numbers.uniform(-length, length):.5f},{y + numbers.uniform(-length, length):.5f}")

    side = max(10, int(math.sqrt(rows * 3 / 10)))
    cell = 1000 / side
    write("million", "id,code,town,kind,note,price,x,y", map(point, order))
    write("lines", "id,class,width,x,y,x2,y2", map(line, range(rows // 5)))
    write("areas", "id,x,y,x2,y2", (f"{i},{i % side * cell},{i // side * cell},{i % side * cell + cell * 0.9},"
                                    f"{i // side * cell + cell * 0.9}" for i in range(side * side)))
    write("districts", "id,x,y,x2,y2", (f"{i},{i % 10 * 100},{i // 10 * 100},{i % 10 * 100 + 100},{i // 10 * 100 + 100}"
                                        for i in range(100)))
    write("spots", "id,x,y,x2,y2", (f"{i},{x},{y},{x + 1},{y + 1}" for i, (x, y) in enumerate(centres[:50])))
    write("five", "id,town", (f"{i * 1001},town {999 - i}" for i in range(5)))
    write("keys", "id,code,nr", (f"{i * 97},M{i * 97:07},{i}" for i in range(rows // 100)))
    write("towns", "nr,name", (f"{i},town {i}" for i in range(towns)))
    box = "BuildMbr(x, y, x2, y2, 32637)"
    texts = {
        "million": "Select id, code, town, kind, note, price, MakePoint(x, y, 32637) As obj From million",
        "lines": "Select id, class, width, MakeLine(MakePoint(x, y, 32637), MakePoint(x2, y2, 32637)) As obj From lines",
        "areas": f"Select id, {box} As obj From areas",
        "districts": f"Select id, {box} As obj From districts",
        "spots": f"Select id, {box} As obj From spots",
        "spots_metres": f"Select id, Transform({box}, 3857) As obj From spots",
    }
    for name, text in texts.items():
        source = name.replace("_metres", "")
        subprocess.run([orvane, directory / f"{source}.csv", "-c", text, "-o", directory / f"{name}.gpkg"], check=True)


def tables_of(directory):
    files = {name: f"{name}.gpkg" for name in ["million", "lines", "areas", "districts", "spots", "spots_metres"]}
    files |= {name: f"{name}.csv" for name in ["five", "keys", "towns"]}
    return [word for name, file in files.items() for word in ("-t", f"{name}={directory / file}")]


class Runner:
    def __init__(self, orvane, tables):
        self.command = [orvane, *tables, "-F", "csv", "--no-header"]

    def run(self, text, seconds, *options):
        """Seconds of the first and of the last run, the count, what --explain says; None where it took too long."""
        try:
            result = subprocess.run([*self.command, "--timing", "--explain", *options, *["-c", text] * 6],
                                    capture_output=True, text=True, timeout=seconds)
        except subprocess.TimeoutExpired:
            return None
        if result.returncode != 0:
            raise RuntimeError(f"{text}: {result.stderr}")
        times = [float(time) / 1000 for time in re.findall(r"total_ms=([\d.]+)", result.stderr)]
        return times[0], min(times[1:]), result.stdout.split()[-1], result.stderr

    def translate(self, text):
        return subprocess.run([*self.command, "--translate", "-c", text], capture_output=True, text=True,
                              check=True).stdout.strip().rstrip(";")


def chosen_order(explanation, aliases):
    first = re.split(r"translate_ms", explanation)[0]
    return [alias for alias in re.findall(r"^\w+ (\w+): ", first, re.M) if alias in aliases]


def estimates(explanation):
    """Pairs of rows expected and found, of each table, each time. Rows that SQLite leaves out itself count as found."""
    last = explanation[explanation.rfind("translate_ms", 0, explanation.rfind("translate_ms")):]
    pairs = []
    for head, found, expected in re.findall(r"^(\S.*)\n  (\d+) rows?, (\d+) expected", last, re.M):
        times = sum(int(number) for number in re.findall(r"(\d+) times", head))
        pairs.append((head.split(":")[0], int(expected), int(found) / max(times, 1)))
    return pairs


def is_off(expected, found):
    return max(expected, 1) > 10 * max(found, 1) or max(found, 1) > 10 * max(expected, 1)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--orvane", default="build/release/bin/orvane")
    parser.add_argument("--rows", type=int, default=1_000_000)
    parser.add_argument("--data", type=Path)
    parser.add_argument("--only", default="")
    parser.add_argument("--bound", type=float, default=3)
    parser.add_argument("--seconds", type=float, default=20, help="after which a forced order is given up")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as temporary:
        directory = arguments.data or Path(temporary)
        if not (directory / "spots_metres.gpkg").exists():
            directory.mkdir(parents=True, exist_ok=True)
            make_tables(directory, arguments.rows, arguments.orvane)
        runner = Runner(arguments.orvane, tables_of(directory))
        return 1 if report(runner, arguments) else 0


def report(runner, arguments):
    wrong = checked = off = 0
    print(f"{'join':34} {'order':8} {'first s':>8} {'then s':>8} {'best':>6} {'worst':>7}  estimates off")
    for name, (tables, condition) in JOINS.items():
        if arguments.only not in name:
            continue
        parts = tables.split(", ")
        aliases = [part.split()[-1] for part in parts]
        runs = {}
        orders = list(itertools.permutations(parts))
        for order in orders:
            text = f"Select Count(*) From {', '.join(order)} Where {condition}"
            runs[order] = runner.run(text, 600)
        forced = {}
        for order in orders:
            sql = runner.translate(f"Select Count(*) From {', '.join(order)} Where {condition}")
            sql = sql.replace(", ".join(order), " Cross Join ".join(order))
            run = runner.run(sql, arguments.seconds, "--sqlite")
            forced[order] = run[1] if run else arguments.seconds
        counts = {run[2] for run in runs.values()}
        slowest = max(runs.values(), key=lambda run: run[1])
        best, worst = min(forced.values()), max(forced.values())
        chosen = " ".join(chosen_order(slowest[3], aliases))
        pairs = estimates(slowest[3])
        bad = [f"{table}: {expected} for {found:.0f}" for table, expected, found in pairs if is_off(expected, found)]
        checked += len(pairs)
        off += len(bad)
        slack = 0.002
        isWrong = slowest[1] > arguments.bound * best + slack or len(counts) > 1
        wrong += isWrong
        print(f"{name:34} {chosen:8} {slowest[0]:8.3f} {slowest[1]:8.4f} {slowest[1] / best:5.1f}x {worst / best:6.0f}x  "
              f"{'; '.join(bad)}{'  WRONG' if isWrong else ''}", flush=True)
    print(f"{wrong} wrong; {off} of {checked} estimates off by more than ten times")
    return wrong or off * 20 > checked


if __name__ == "__main__":
    sys.exit(main())
