#!/usr/bin/env python3
"""What loading the library costs beside Qt Widgets alone, as a Markdown table: scripts/startup.py [LIBRARY]

LIBRARY is build/release/lib/libUniProgUtils.so unless given (scripts/build.sh release --target UniProgUtils). Load times
are medians over fresh processes; the library's is what it adds once Qt Widgets and Network are there.
"""
import re
import statistics
import subprocess
import sys

PROCESSES = 21
QT = "libQt6Widgets.so.6"
QT_NETWORK = "libQt6Network.so.6"

LOAD = """
import ctypes, os, sys, time
for library in sys.argv[1:]:
    start = time.perf_counter()
    ctypes.CDLL(library, os.RTLD_NOW | os.RTLD_GLOBAL)
    print((time.perf_counter() - start) * 1000)
"""


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def load_times(*libraries):
    """Milliseconds each of the libraries takes when they are loaded one after another."""
    runs = [[float(line) for line in run(sys.executable, "-c", LOAD, *libraries).split()] for _ in range(PROCESSES)]
    return [statistics.median(times) for times in zip(*runs)]


def path_of(library):
    cache = run("/sbin/ldconfig", "-p")
    return re.search(r"^\s*" + re.escape(library) + r" .*=> (\S+)$", cache, re.MULTILINE).group(1)


def counts(path):
    sections = run("readelf", "-SW", path)
    constructors = int(re.search(r"\.init_array\s+INIT_ARRAY\s+\S+ \S+ (\S+)", sections).group(1), 16) // 8
    relocations = sum(map(int, re.findall(r"contains (\d+) entr", run("readelf", "-rW", path))))
    exported = len(run("nm", "-D", "--defined-only", path).splitlines())
    return constructors, relocations, exported


def main():
    library = sys.argv[1] if len(sys.argv) > 1 else "build/release/lib/libUniProgUtils.so"
    qt_time, network_time, time = load_times(QT, QT_NETWORK, library)
    print("| library | load, ms | static constructors | relocations | exported symbols |")
    print("|---|---:|---:|---:|---:|")
    for name, path, milliseconds in (
        (QT, path_of(QT), qt_time),
        (QT_NETWORK, path_of(QT_NETWORK), network_time),
        (library.rsplit("/", 1)[-1], library, time),
    ):
        print("| {} | {:.2f} | {} | {} | {} |".format(name, milliseconds, *counts(path)))


main()
