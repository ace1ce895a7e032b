#!/usr/bin/env python3
"""Compares distances, positions and buffers of the shell with GeographicLib.

Needs python3-pyproj, whose geodesics are GeographicLib's, and the program:

    scripts/compare_geodesics.py build/release/bin/orvane

Prints a table of the largest deviations and ends with status 1 when one is beyond its bound.
"""

import csv
import io
import math
import random
import subprocess
import sys

from pyproj import Geod

EARTH = Geod(ellps="WGS84")
SEED = 1
BATCH = 200


def rows_of(program, selects):
    """One row of numbers for each Select."""
    rows = []
    for first in range(0, len(selects), BATCH):
        query = " Union All ".join(selects[first:first + BATCH])
        run = subprocess.run([program, "--no-header", "-F", "csv", "-c", query],
                             capture_output=True, text=True, check=True)
        rows += [[float(value) for value in row] for row in csv.reader(io.StringIO(run.stdout))]
    return rows


def point(longitude, latitude):
    return f"MakePoint({longitude!r}, {latitude!r}, 4326)"


def somewhere(latitude, spread=0.5):
    """Near a latitude, often near the 180th meridian."""
    longitude = random.choice([random.uniform(-180, 180), random.uniform(179, 181)])
    longitude = math.remainder(longitude, 360)
    return longitude, max(-90.0, min(90.0, latitude + random.uniform(-spread, spread)))


def point_distances(program, latitude):
    pairs = [(somewhere(latitude), somewhere(random.choice([latitude, -latitude, 0]))) for _ in range(400)]
    rows = rows_of(program, [f"Select Distance({point(*a)}, {point(*b)})" for a, b in pairs])
    worst = 0.0
    for ((a, b), (distance,)) in zip(pairs, rows):
        expected = EARTH.inv(*a, *b)[2]
        worst = max(worst, abs(distance - expected) / expected)
    return worst


def projections(program, latitude):
    """Metres between where Project leads and where it should; the azimuth back is taken along."""
    cases = [(somewhere(latitude), random.uniform(0, 360), 10 ** random.uniform(0, 7)) for _ in range(200)]
    rows = rows_of(program, [
        f"Select X(p), Y(p), Degrees(Azimuth({point(*start)}, p)) From (Select Project({point(*start)}, "
        f"{distance!r}, {math.radians(azimuth)!r}) As p)" for start, azimuth, distance in cases])
    worst = 0.0
    for (start, azimuth, distance), (longitude, latitude, back) in zip(cases, rows):
        expected = EARTH.fwd(*start, azimuth, distance)[:2]
        turned = math.radians(math.remainder(back - EARTH.inv(*start, longitude, latitude)[0], 360))
        worst = max(worst, EARTH.inv(*expected, longitude, latitude)[2], abs(turned))
    return worst


def line_distances(program, latitude):
    """Of a point to a geodesic: its foot by the angle, which GeographicLib gives."""
    cases = [(somewhere(latitude, 0.9), somewhere(latitude, 0.9), somewhere(latitude, 0.9)) for _ in range(100)]
    rows = rows_of(program, [
        f"Select Distance({point(*p)}, GeomFromText('LINESTRING({a[0]!r} {a[1]!r},{b[0]!r} {b[1]!r})', 4326))"
        for a, b, p in cases])
    worst = 0.0
    for (a, b, p), (distance,) in zip(cases, rows):
        azimuth, _, length = EARTH.inv(*a, *b)

        def at(along):
            longitude, latitude_, back = EARTH.fwd(*a, azimuth, along)
            towards, _, apart = EARTH.inv(longitude, latitude_, *p)
            return apart, math.cos(math.radians(towards - back - 180))

        best = min(at(0)[0], at(length)[0])
        steps = 64
        for i in range(steps):
            low, high = length * i / steps, length * (i + 1) / steps
            if at(low)[1] > 0 >= at(high)[1]:
                for _ in range(60):
                    middle = (low + high) / 2
                    low, high = (middle, high) if at(middle)[1] > 0 else (low, middle)
                best = min(best, at(low)[0])
        worst = max(worst, abs(distance - best) / max(best, 1.0))
    return worst


def circle_area(centre, radius):
    ring = [EARTH.fwd(*centre, -0.1 * i, radius)[:2] for i in range(3600)]
    return EARTH.polygon_area_perimeter([p[0] for p in ring], [p[1] for p in ring])[0]


def buffer_areas(program, latitude):
    cases = [(centre, radius) for centre in [(0.0, latitude), (179.95, latitude), (-180.0, -latitude)]
             for radius in (10.0, 1e3, 1e5, 1e6, 5e6)]
    rows = rows_of(program, [f"Select ObjectArea(Buffer({point(*centre)}, {radius!r}))" for centre, radius in cases])
    return max(abs(area / circle_area(centre, radius) - 1) for (centre, radius), (area,) in zip(cases, rows))


def buffer_of_lines(program, latitude):
    """The border of a buffer is as far away as was asked for: the largest deviation of its positions."""
    cases = [(somewhere(latitude, 0.9), somewhere(latitude, 0.9), radius) for radius in (1e4, 3e5) for _ in range(4)]
    worst = 0.0
    for a, b, radius in cases:
        line = f"GeomFromText('LINESTRING({a[0]!r} {a[1]!r},{b[0]!r} {b[1]!r})', 4326)"
        rows = rows_of(program, [
            "With Recursive made(line, border) As (Select {0}, ExteriorRing(GeometryN(Buffer({0}, {1}), 1))), "
            "numbers(n) As (Select 1 Union All Select n + 1 From numbers, made Where n < NumPoints(border)) "
            "Select X(p), Y(p), Distance(p, line) From (Select PointN(border, n) As p, line From made, numbers)"
            .format(line, radius)])
        for longitude, latitude_, distance in rows:
            if abs(longitude) < 180 and abs(latitude_) < 90:  # no border of the map
                worst = max(worst, abs(distance / radius - 1))
    return worst


CHECKS = [
    ("distance of points, relative", point_distances, 1e-9),
    ("distance of a point and a line, relative", line_distances, 1e-9),
    ("position of Project in metres, angle of Azimuth", projections, 1e-6),
    ("area of a buffer and a geodesic circle, relative", buffer_areas, 1e-3),
    ("distance of a buffer's border from its line, relative", buffer_of_lines, 1e-3),
]


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    random.seed(SEED)
    isGood = True
    latitudes = (0.0, 60.0, 89.0)
    print(f"{'largest deviation at latitude':55}" + "".join(f"{latitude:>12g}" for latitude in latitudes) + "       bound")
    for name, check, bound in CHECKS:
        found = [check(sys.argv[1], latitude) for latitude in latitudes]
        isGood = isGood and max(found) <= bound
        print(f"{name:55}" + "".join(f"{value:12.2e}" for value in found) + f"{bound:12.0e}")
    sys.exit(0 if isGood else 1)


if __name__ == "__main__":
    main()
