#!/usr/bin/env python3
"""damage.py COUNT [SEED [FORMAT...]]: opens COUNT damaged files with the shell and asks each several statements.

The files are made of the example data by ogr2ogr: bytes are changed, cut out, put in and repeated, lengths are
overwritten, halves of two formats are joined. A crash, a statement of more than ten seconds, more memory than a gigabyte
and a report of a sanitizer fail; the file is kept in build/damage/findings then, with what the shell said. The same seed
makes the same files. The shell is that of the build which ORVANE_BUILD names, else of build/asan, else of build/dev;
ORVANE_JOBS run at a time.
"""
import concurrent.futures
import os
import pathlib
import pty
import random
import re
import resource
import select
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import fcntl
import termios

ROOT = pathlib.Path(__file__).resolve().parent.parent
EXAMPLES = ROOT / "examples" / "data"
FINDINGS = ROOT / "build" / "damage" / "findings"
MOST_SECONDS = 10  # of work in one statement
MOST_WAITING = 60  # on a machine that does other things, too
MOST_MEGABYTES = 1024

# Format: driver, what ogr2ogr makes of which layer, options.
FORMATS = {
    "shp": ("ESRI Shapefile", "cities"),
    "polygons.shp": ("ESRI Shapefile", "countries"),
    "gpkg": ("GPKG", "countries"),
    "rows.gpkg": ("GPKG", "cities"),  # of enough pages for a tree
    "sqlite": ("SQLite", "countries", "-dsco", "SPATIALITE=YES"),
    "geojson": ("GeoJSON", "countries"),
    "csv": ("CSV", "indicators"),
    "tab": ("MapInfo File", "countries"),
    "mif": ("MapInfo File", "countries"),
    "fgb": ("FlatGeobuf", "countries"),
    "gml": ("GML", "countries"),
    "kml": ("KML", "cities"),
    "gpx": ("GPX", "cities"),
    "dxf": ("DXF", "cities"),
    "xlsx": ("XLSX", "indicators"),
    "ods": ("ODS", "indicators"),
    "zip": (),  # of the Shapefile
}
LAYERS = {"cities": "cities.shp", "countries": "countries.gpkg", "indicators": "indicators.csv"}


def make_sources(directory):
    """A small file of each format: {format: {ending: bytes}}; the file to open is the first part."""
    sources = {}
    for form, (driver, layer, *options) in ((name, made) for name, made in FORMATS.items() if made):
        folder = directory / form
        folder.mkdir()
        path = folder / f"t.{form.split('.')[-1]}"
        if driver == "DXF" or driver == "GPX":
            options += ["-select", ""]
        query = f"SELECT * FROM {layer} LIMIT {2000 if 'rows' in form else 60}"
        # What a format cannot hold is said on standard error.
        subprocess.run(["ogr2ogr", "-q", "-f", driver, *options, path, EXAMPLES / LAYERS[layer], "-sql", query,
                        "-nln", "t"], check=True, stderr=subprocess.DEVNULL)
        parts = {part.suffix: part.read_bytes() for part in sorted(folder.iterdir())}
        sources[form] = {path.suffix: parts.pop(path.suffix), **parts}
    archive = directory / "zip" / "t"
    shutil.make_archive(archive, "zip", directory / "shp")
    sources["zip"] = {".zip": archive.with_suffix(".zip").read_bytes()}
    return sources


def change_bytes(data, rng, _):
    for _ in range(rng.choice((1, 2, 8, 64))):
        data[rng.randrange(len(data))] = rng.randrange(256)
    return data


def change_bits(data, rng, _):
    for _ in range(rng.choice((1, 3, 16))):
        data[rng.randrange(len(data))] ^= 1 << rng.randrange(8)
    return data


def cut_off(data, rng, _):
    return data[:rng.randrange(len(data))]


def cut_out(data, rng, _):
    start = rng.randrange(len(data))
    return data[:start] + data[start + rng.randrange(1, 4096):]


def put_in(data, rng, _):
    start = rng.randrange(len(data))
    return data[:start] + rng.randbytes(rng.randrange(1, 300)) + data[start:]


def overwrite_number(data, rng, _):
    """As a length, a count or an address would be."""
    size = rng.choice((2, 4, 4, 4, 8))
    for _ in range(rng.choice((1, 1, 4))):
        # Headers hold more numbers than rows do.
        start = rng.randrange(min(len(data), rng.choice((100, 2000, 1 << 30))))
        number = rng.choice((0, 1, 0x7F, 0x7FFFFFFF, 0x80000000, (1 << 8 * size) - 1, (1 << 8 * size) - 16, len(data),
                             rng.randrange(1 << 32))) % (1 << 8 * size)
        data[start:start + size] = number.to_bytes(size, rng.choice(("little", "big")))
    return data


def repeat_block(data, rng, _):
    start = rng.randrange(len(data))
    block = data[start:start + rng.choice((1, 16, 512, 4096))]
    return data[:start] + block * rng.choice((2, 10, 100)) + data[start:]


def copy_block(data, rng, _):
    """Keeps the length: an index that points to itself, a page that stands twice."""
    size = rng.choice((4, 8, 40, 512, 4096))
    start, target = (rng.randrange(len(data)) // size * size for _ in range(2))
    block = data[start:start + size]
    data[target:target + len(block)] = block
    return data


def change_digits(data, rng, _):
    """Numbers of text formats."""
    numbers = list(re.finditer(rb"\d+", data))
    for found in rng.sample(numbers, min(len(numbers), rng.choice((1, 3)))):
        number = rng.choice((b"-1", b"1e999", b"9" * 30, b"4294967295", b"nan", b""))
        data = data[:found.start()] + number + data[found.end():]
        break
    return data


def join_halves(data, rng, other):
    return data[:rng.randrange(len(data))] + other[rng.randrange(len(other)):]


DAMAGES = (change_bytes, change_bits, cut_off, cut_out, put_in, overwrite_number, overwrite_number, repeat_block,
           copy_block, change_digits, join_halves)


def damaged(sources, number, seed):
    """What is wrong with the file of a number, and its parts."""
    rng = random.Random(f"{seed}/{number}")
    form = list(sources)[number % len(sources)]
    parts = dict(sources[form])
    ending = rng.choice(list(parts))
    damage = rng.choice(DAMAGES)
    other = rng.choice(list(rng.choice(list(sources.values())).values()))
    parts[ending] = bytes(damage(bytearray(parts[ending]), rng, other))
    if len(parts) > 1 and rng.random() < 0.1:
        lost = rng.choice(list(parts)[1:])
        del parts[lost]
    return f"{number}-{form}{ending}-{damage.__name__}", parts


class Failure(Exception):
    pass


class Shell:
    """The prompt of the shell on a terminal of its own."""
    PROMPT = b"orvane> "

    def __init__(self, program, home):
        environment = dict(os.environ, LC_ALL="C.UTF-8", TERM="dumb", PAGER="", XDG_DATA_HOME=str(home))
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            os.execve(program, [str(program), "-F", "csv"], environment)
        fcntl.ioctl(self.terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 4000, 0, 0))
        self.said = b""
        self.answer()

    def seconds(self):
        """What it has worked so far."""
        fields = pathlib.Path(f"/proc/{self.process}/stat").read_text().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def check_memory(self):
        status = pathlib.Path(f"/proc/{self.process}/status").read_text()
        megabytes = int(re.search(r"VmHWM:\s*(\d+)", status)[1]) // 1024
        if megabytes > MOST_MEGABYTES:
            raise Failure(f"{megabytes} MB of memory")

    def answer(self):
        """What it says up to its next question."""
        begin, worked, start = time.monotonic(), self.seconds(), len(self.said)
        while not self.said.endswith(self.PROMPT) or len(self.said) == start:
            if select.select([self.terminal], [], [], 1)[0]:
                try:
                    self.said += os.read(self.terminal, 1 << 16)  # the progress, for instance
                except OSError:  # the other end is closed
                    raise Failure("the shell has ended") from None
            waited = time.monotonic() - begin
            if waited > MOST_WAITING or (waited > MOST_SECONDS and self.seconds() - worked > MOST_SECONDS):
                raise Failure(f"no answer after {waited:.0f} s, {self.seconds() - worked:.0f} s of work")
        return self.said[start:].decode(errors="replace")

    def ask(self, line):
        os.write(self.terminal, line.encode() + b"\n")
        return self.answer()

    def leave(self):
        os.write(self.terminal, b".quit\n")
        self.wait(20)

    def wait(self, seconds):
        """Reads to the end, and fails for a report or another status than 0."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            try:
                if select.select([self.terminal], [], [], 0.1)[0]:
                    self.said += os.read(self.terminal, 1 << 16)
            except OSError:
                break
        done, status = os.waitpid(self.process, os.WNOHANG if time.monotonic() >= end else 0)
        if done == 0:
            raise Failure("the shell does not end")
        self.process = 0
        if status != 0:
            raise Failure(f"status {os.waitstatus_to_exitcode(status)}")

    def close(self):
        if self.process:
            os.kill(self.process, signal.SIGKILL)
            os.waitpid(self.process, 0)
        os.close(self.terminal)


def statements(table, columns):
    first = columns[0] if columns else "obj"
    yield f"Select * From {table};"
    yield f"Select Count(*) From {table};"
    yield f"Select Count({first}), Max({first}) From {table} Where {first} > 'm' Or {first} < 100;"
    if "obj" in columns:
        yield f"Select Count(*), Sum(Area(obj)) From {table} Where obj Intersects Buffer(MakePoint(10, 50), 20);"
    yield f"Select {first}, Count(*) From {table} Group By {first} Order By 2 Desc;"
    yield f"Select Count(*) From {table} a, {table} b Where a.{first} = b.{first};"
    yield f"Update {table} Set {first} = Null Where rowid < 2;"
    yield f"Insert Into {table} ({first}) Values ('7');"
    yield f"Delete From {table} Where rowid = 3;"
    yield f"Select Count(*) From {table};"


def ask_everything(shell, path):
    shell.ask(f".open {path}")
    shell.check_memory()
    tables = re.findall(r"^(\S.*?)  +\d*\s*$", shell.ask(".tables"), re.M)
    for name in tables[:2]:
        table = '"' + name.replace('"', '""') + '"'
        schema = re.findall(r"^  (\S+)  ", shell.ask(f".schema {name}"), re.M)
        columns = [column if column == "obj" else '"' + column.replace('"', '""') + '"' for column in schema]
        for statement in statements(table, columns):
            shell.ask(statement)
            shell.check_memory()
    shell.leave()


def examine(program, sources, number, seed, directory):
    """Why the file of that number fails, or None."""
    name, parts = damaged(sources, number, seed)
    folder = pathlib.Path(tempfile.mkdtemp(dir=directory))
    for ending, data in parts.items():
        (folder / f"t{ending}").write_bytes(data)
    shell = Shell(program, folder)
    failure = None
    try:
        ask_everything(shell, folder / f"t{next(iter(parts))}")
    except (Failure, FileNotFoundError) as failed:
        failure = failed
        try:
            if str(failed) == "the shell has ended":
                shell.wait(5)
        except Failure as ended:
            failure = ended
    finally:
        shell.close()
    if re.search(rb"runtime error:|Sanitizer", shell.said):
        failure = failure or "report of a sanitizer"
    if failure:
        kept = FINDINGS / name
        shutil.rmtree(kept, ignore_errors=True)
        kept.mkdir(parents=True)
        for ending, data in parts.items():
            (kept / f"t{ending}").write_bytes(data)
        (kept / "said").write_bytes(shell.said)
    shutil.rmtree(folder)
    return failure and f"{name}: {failure}"


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    count, seed = int(sys.argv[1]), sys.argv[2] if len(sys.argv) > 2 else "1"
    builds = [ROOT / "build" / name for name in (os.environ.get("ORVANE_BUILD", "asan"), "asan", "dev")]
    build = next((build for build in builds if (build / "bin" / "orvane").exists()), None)
    if not build:
        sys.exit("damage: build the shell first")
    os.environ["QT_PLUGIN_PATH"] = str(build / "plugins")
    os.environ["LSAN_OPTIONS"] = f"suppressions={ROOT}/tests/lsan.supp:print_suppressions=0"
    # As a machine without that much memory would.
    os.environ["ASAN_OPTIONS"] = "allocator_may_return_null=1:max_allocation_size_mb=2048:quarantine_size_mb=16"
    os.environ["UBSAN_OPTIONS"] = "print_stacktrace=1"
    failures = []
    with tempfile.TemporaryDirectory() as directory, \
            concurrent.futures.ThreadPoolExecutor(int(os.environ.get("ORVANE_JOBS", os.cpu_count()))) as pool:
        directory = pathlib.Path(directory)
        sources = make_sources(directory)
        sources = {form: sources[form] for form in sys.argv[3:] or sources}
        numbers = range(count)
        work = [pool.submit(examine, build / "bin" / "orvane", sources, number, seed, directory) for number in numbers]
        for done in concurrent.futures.as_completed(work):
            if failure := done.result():
                failures.append(failure)
                print(failure, flush=True)
    print(f"damage: {count} files of {len(sources)} formats, {len(failures)} findings" +
          (f" in {FINDINGS.relative_to(ROOT)}" if failures else ""))
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
