#!/usr/bin/env python3
"""Compares what the shell answers about random geometries with GEOS itself, through Shapely.

    scripts/compare_shapes.py SHELL [--count 10000] [--seed 1]
    scripts/compare_shapes.py SHELL --cases FOLDER    GEOS's own cases: tests/xmltester/tests of its source

Needs Shapely 1.8 or later over the GEOS that the shell is linked with (Debian: python3-shapely). Coordinates are small whole
numbers, so that borders meet and vertices coincide, every third time with fractions. A curve is approximated by the shell first
(FromOrvGeo). An overlay counts as equal when the two have the same positions but for a billionth of an area or length."""

import argparse
import csv
import math
import os
import pathlib
import random
import subprocess
import sys
import tempfile
import warnings
import xml.etree.ElementTree

import shapely.geos
import shapely.ops
from shapely import wkb, wkt
from shapely.geometry import GeometryCollection, MultiLineString
from shapely.validation import make_valid

warnings.filterwarnings("ignore")

RELATIONS = {
    "Equals": "equals", "Disjoint": "disjoint", "Touches": "touches", "Crosses": "crosses", "Overlaps": "overlaps",
    "Covers": "covers", "CoveredBy": "covered_by", "ST_Intersects": "intersects", "ST_Contains": "contains",
    "ST_Within": "within",
}
OVERLAYS = {
    "Intersection": "intersection", "GUnion": "union", "Difference": "difference", "SymDifference": "symmetric_difference",
}
SHAPES = {
    "ConvexHull": lambda a: a.convex_hull,
    "Envelope": lambda a: a.envelope,
    "Boundary": lambda a: a.boundary,
    "ST_Centroid": lambda a: a.centroid,
    "UnaryUnion": shapely.ops.unary_union,
    "ST_MakeValid": make_valid,
    "Simplify:0.7": lambda a: a.simplify(0.7, preserve_topology=False),
    "Simplify:3": lambda a: a.simplify(3, preserve_topology=False),
    "SimplifyPreserveTopology:0.7": lambda a: a.simplify(0.7),
    "SimplifyPreserveTopology:3": lambda a: a.simplify(3),
    "LineMerge": lambda a: shapely.ops.linemerge(MultiLineString(list(parts(a, "LineString")))),
    "DelaunayTriangulation": lambda a: GeometryCollection(shapely.ops.triangulate(a)),
}


def parts(shape, kind):
    """The parts of one kind, through all levels."""
    if shape.geom_type == kind:
        yield shape
    for part in getattr(shape, "geoms", []):
        yield from parts(part, kind)


class Shapes:
    """Random well-known text."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.fraction = False

    def position(self):
        pick = (lambda: round(self.random.uniform(0, 10), 3)) if self.fraction else (lambda: self.random.randint(0, 10))
        return "%s %s" % (pick(), pick())

    def line(self):
        while True:
            positions = [self.position() for _ in range(self.random.randint(2, 6))]
            if len(set(positions)) > 1:
                return "(" + ",".join(positions) + ")"

    def polygon(self):
        """Around a middle, mostly valid; now and then positions as they come."""
        if self.random.random() < 0.15:
            ring = [self.position() for _ in range(self.random.randint(3, 6))]
        else:
            x, y = self.random.randint(2, 8), self.random.randint(2, 8)
            count = self.random.randint(3, 9)
            angles = sorted(self.random.uniform(0, 2 * math.pi) for _ in range(count))
            digits = 3 if self.fraction else 0
            places = [(x + self.random.uniform(1, 5) * math.cos(t), y + self.random.uniform(1, 5) * math.sin(t)) for t in angles]
            ring = ["%s %s" % (round(a, digits), round(b, digits)) for a, b in places]
        rings = ["(" + ",".join(ring + ring[:1]) + ")"]
        if self.random.random() < 0.2:
            x, y = self.random.randint(3, 6), self.random.randint(3, 6)
            rings.append("({0} {1},{2} {1},{2} {3},{0} {1})".format(x, y, x + 1, y + 1))
        return "(" + ",".join(rings) + ")"

    def curve(self):
        begin, middle, end = (self.position() for _ in range(3))
        if self.random.random() < 0.5:
            return "CIRCULARSTRING(%s,%s,%s)" % (begin, middle, end)
        return "CURVEPOLYGON(CIRCULARSTRING(%s,%s,%s))" % (begin, end, begin)

    def many(self, make, most=3):
        return "(" + ",".join(make() for _ in range(self.random.randint(1, most))) + ")"

    def simple(self):
        kind = self.random.randrange(7)
        if kind == 0:
            return "POINT(%s)" % self.position()
        if kind == 1:
            return "MULTIPOINT" + self.many(self.position, 4)
        if kind == 2:
            return "LINESTRING" + self.line()
        if kind == 3:
            return "MULTILINESTRING" + self.many(self.line)
        if kind == 4:
            return "MULTIPOLYGON" + self.many(self.polygon, 2)
        return "POLYGON" + self.polygon()

    def any(self):
        self.fraction = self.random.random() < 0.33
        pick = self.random.random()
        if pick < 0.1:
            return "GEOMETRYCOLLECTION" + self.many(self.simple)
        return self.curve() if pick < 0.15 else self.simple()


def ask(shell, table, expressions):
    """The values of expressions over the columns of a table of texts, a row each."""
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "shapes.csv")
        with open(path, "w", newline="") as file:
            writer = csv.writer(file)
            writer.writerow(["number", "a", "b"])
            writer.writerows([number, *row] for number, row in enumerate(table))
        columns = ", ".join("%s As v%d" % (text, i) for i, text in enumerate(expressions))
        query = "Select %s From shapes Order By number" % columns
        done = subprocess.run([shell, "-t", "shapes=" + path, "-F", "csv", "--no-header", "--null", "NULL", "-c", query],
                              capture_output=True, text=True, check=False)
        if done.returncode != 0:
            sys.exit(done.stderr)
        return [row or [""] for row in csv.reader(done.stdout.splitlines())]


def binary(expression):
    return "Hex(AsBinary(%s))" % expression


def shape(text):
    """Null for nothing, as the shell's forms without empty geometries have it."""
    return None if text in ("NULL", "") else wkb.loads(text, hex=True)


def is_same(ours, theirs):
    """None and what is empty are the same."""
    if ours is None or ours.is_empty or theirs.is_empty:
        return (ours is None or ours.is_empty) and theirs.is_empty
    if ours.equals_exact(theirs, 0):
        return True
    first, second = (shapely.ops.unary_union(list(not_empty(a))) for a in (ours, theirs))
    if first.normalize().equals_exact(second.normalize(), 1e-9):
        return True
    return all(
        sum(p.area + p.length * (p.area == 0) for p in getattr(rest, "geoms", [rest])) < 1e-9
        for rest in (difference(first, second), difference(second, first)))


def not_empty(a):
    """The parts, through all levels, that are not empty: GEOS's union of a point and an empty line is a crash."""
    if hasattr(a, "geoms"):
        for part in a.geoms:
            yield from not_empty(part)
    elif not a.is_empty:
        yield a


def difference(a, b):
    """Of collections, too, which GEOS does not take."""
    left = []
    for part in getattr(a, "geoms", [a]):
        for other in getattr(b, "geoms", [b]):
            part = part.difference(other.buffer(1e-9))
        left.append(part)
    return GeometryCollection(left)


class Report:
    def __init__(self):
        self.rows = {}
        self.examples = []

    def count(self, name, outcome, *example):
        row = self.rows.setdefault(name, {"same": 0, "different": 0, "not compared": 0})
        row[outcome] += 1
        if outcome == "different" and len(self.examples) < 40:
            self.examples.append((name, *example))

    def print(self):
        print("%-32s %9s %9s %9s" % ("function", "same", "different", "GEOS refuses"))
        for name, row in self.rows.items():
            print("%-32s %9d %9d %9d" % (name, row["same"], row["different"], row["not compared"]))
        for example in self.examples:
            print("\n".join(str(line)[:600] for line in example), end="\n\n")


def is_collection(a):
    return a.geom_type == "GeometryCollection"


def by_parts(method, a, b):
    """The overlay of collections, which GEOS refuses, from those of their parts."""
    def joined(shapes):
        return shapely.ops.unary_union([part for one in shapes for part in not_empty(one)])

    def rest(these, those):
        for part in these:
            for other in those:
                part = part.difference(other)
            yield part

    first, second = (list(not_empty(one)) for one in (a, b))
    if method == "union":
        return joined(first + second)
    if method == "intersection":
        return joined([x.intersection(y) for x in first for y in second])
    return joined(list(rest(first, second)) + (list(rest(second, first)) if method == "symmetric_difference" else []))


def is_curve(text):
    return text.startswith("C")


def linear(shell, texts):
    """Pairs of GEOS's geometries for pairs of texts."""
    rows = ask(shell, texts, [binary("FromOrvGeo(GeomFromText(%s))" % name) for name in "ab"])
    return [tuple(shape(value) if is_curve(text) else wkt.loads(text) for text, value in zip(*pair))
            for pair in zip(texts, rows)]


def is_taken(text):
    """Whether GEOS relates it, and always in the same way."""
    if is_curve(text):
        return True
    a = wkt.loads(text)
    return a.is_valid and not is_collection(a)


def compare_pairs(shell, count, seed, report):
    random_shapes = Shapes(seed)
    texts = []
    while len(texts) < count:
        pair = (random_shapes.any(), random_shapes.any())
        if all(map(is_taken, pair)) or random_shapes.random.random() < 0.1:
            texts.append(pair)
    pairs = linear(shell, texts)
    answers = ask(shell, texts, ["%s(GeomFromText(a), GeomFromText(b))" % name for name in RELATIONS] +
                  [binary("%s(GeomFromText(a), GeomFromText(b))" % name) for name in OVERLAYS])
    for text, (a, b), row in zip(texts, pairs, answers):
        valid = all(one.is_valid and not is_collection(one) for one in (a, b))
        for (name, method), value in zip(RELATIONS.items(), row):
            if not valid:
                report.count(name, "not compared")
                continue
            same = bool(getattr(a, method)(b)) == (value == "1")
            report.count(name, "same" if same else "different", *text, value)
        for (name, method), value in zip(OVERLAYS.items(), row[len(RELATIONS):]):
            if not valid and not all(part.is_valid for one in (a, b) for part in not_empty(one)):
                report.count(name, "not compared")
                continue
            ours, theirs = shape(value), getattr(a, method)(b) if valid else by_parts(method, a, b)
            report.count(name, "same" if is_same(ours, theirs) else "different", *text, ours, theirs)


def compare_shapes(shell, count, seed, report):
    random_shapes = Shapes(seed)
    texts = [(random_shapes.any(), "POINT(0 0)") for _ in range(count)]
    shapes = [pair[0] for pair in linear(shell, texts)]

    def call(name):
        function, _, argument = name.partition(":")
        # The box is that of the curve itself, and a curve that is valid stays one.
        taken = "FromOrvGeo(GeomFromText(a))" if function in ("Envelope", "ST_MakeValid") else "GeomFromText(a)"
        if function == "ST_MakeValid":  # which flattens collections besides
            taken = "IIf(Left(a, 1) = 'C', %s, GeomFromText(a))" % taken
        return "%s(%s%s)" % (function, taken, ", " + argument if argument else "")

    answers = ask(shell, texts, [binary(call(name)) for name in SHAPES])
    for (text, _), a, row in zip(texts, shapes, answers):
        for (name, make), value in zip(SHAPES.items(), row):
            if name == "Envelope" and not a.is_valid:  # of which GEOS leaves out holes outside the shell
                report.count(name, "not compared")
                continue
            try:
                theirs = make(a)
            except Exception:  # pylint: disable=broad-except
                report.count(name, "not compared")
                continue
            ours = shape(value)
            report.count(name, "same" if is_same(ours, theirs) else "different", text, ours, theirs)


CASES = {
    "union": "GUnion", "intersection": "Intersection", "difference": "Difference", "symdifference": "SymDifference",
    "convexhull": "ConvexHull", "getboundary": "Boundary", "getcentroid": "ST_Centroid", "buildarea": "BuildArea",
    "linemerge": "LineMerge", "makevalid": "ST_MakeValid", "equalstopo": "Equals", "relate": "Relate",
    "densify": "Segmentize", "contains": "ST_Contains", "within": "ST_Within", "intersects": "ST_Intersects",
    **{name: name for name in ("disjoint", "touches", "crosses", "overlaps", "covers", "coveredby")},
}


def read_shape(text):
    text = " ".join(text.split())
    return wkt.loads(text) if text[:1].isalpha() and " " in text else wkb.loads(text, hex=True)


def read_cases(folder):
    """Of every file the operations that are ours: file, function, geometries, further arguments, what is expected."""
    for path in sorted(pathlib.Path(folder).rglob("*.xml")):
        try:
            tree = xml.etree.ElementTree.parse(path)
        except xml.etree.ElementTree.ParseError:
            continue
        model = tree.find(".//precisionModel")
        is_floating = model is None or model.get("scale") is None
        for case in tree.iter("case"):
            texts = {name: case.findtext(name) for name in "ab"}
            for operation in case.iter("op"):
                name = operation.get("name").lower()
                name = CASES.get(name[:-2] if name.endswith("ng") else name)
                operands = [(operation.get("arg%d" % i) or "").strip() for i in (1, 2, 3)]
                shapes = [texts[operand.lower()] for operand in operands if operand.lower() in texts]
                if name is None or not shapes or None in shapes or (name in OVERLAYS and not is_floating):
                    continue
                further = [operand for operand in operands if operand and operand.lower() not in texts]
                yield path.name, name, shapes, further, " ".join((operation.text or "").split())


def compare_cases(shell, folder, report):
    asked = {}
    for file, name, texts, further, expected in read_cases(folder):
        try:
            shapes = [read_shape(text) for text in texts]
            result = None if expected.lower() in ("true", "false") else read_shape(expected)
        except Exception:  # pylint: disable=broad-except
            continue
        name = "UnaryUnion" if name == "GUnion" and len(shapes) == 1 else name
        arguments = ["GeomFromText(%s)" % column for column in "ab"[:len(shapes)]]
        arguments += [word if name == "Segmentize" else "'%s'" % word for word in further if name in ("Relate", "Segmentize")]
        call = "%s(%s)" % (name, ", ".join(arguments))
        row = [wkt.dumps(one, rounding_precision=-1, trim=True).replace("LINEARRING", "LINESTRING") for one in shapes]
        asked.setdefault((name, call, result is None), []).append((file, row + [""] * (2 - len(row)), expected, result))
    for (name, call, is_truth), rows in asked.items():
        answers = ask(shell, [row for _, row, _, _ in rows], [call if is_truth else binary(call)])
        for (file, row, expected, result), (value,) in zip(rows, answers):
            same = value == str(int(expected.lower() == "true")) if is_truth else is_same(shape(value), result)
            report.count(name, "same" if same else "different", file, call, *row, "GEOS: " + expected, "here: " + value)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("shell")
    parser.add_argument("--count", type=int, default=10000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--cases")
    arguments = parser.parse_args()
    print("GEOS %s" % shapely.geos.geos_version_string)
    report = Report()
    if arguments.cases:
        compare_cases(arguments.shell, arguments.cases, report)
    else:
        compare_pairs(arguments.shell, arguments.count, arguments.seed, report)
        compare_shapes(arguments.shell, arguments.count, arguments.seed + 1, report)
    report.print()
    return 1 if report.examples else 0


if __name__ == "__main__":
    sys.exit(main())
