#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the program tulo3d on files made here: ProgramTest.py PROGRAM [TEST...]

Every format in and out, bad and cut input, exit statuses, and what goes to which stream.
"""
import gzip
import importlib.util
import json
import os
import pty
import random
import re
import resource
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROGRAM = sys.argv.pop(1)
MESHIO_TOOL = Path(__file__).parent.parent / "tools" / "read_with_meshio.py"

random.seed(3)
POINTS = [(random.gauss(0, 1), random.random() / 3, random.uniform(-2e6, 2e6)) for _ in range(40)]
RASTER = [tuple(0.01 * k + 2e6 for k in random.sample(range(-5000, 5000), 3)) for _ in range(40)]
STEPS = [(i, y, z) for i, (_, y, z) in enumerate(POINTS)]
FACES = [(0, 1, 2), (3, 4, 15)]


def lines(points, sep=" ", end="\n", head="", numbered=None, tail=""):
    rows = (sep.join(map(repr, p)) + tail + end for p in points)
    return head + "".join(row if numbered is None else f"{numbered + i} {row}" for i, row in enumerate(rows))


def ply(kind, order=None):
    head = (f"ply\nformat {kind} 1.0\ncomment x y z\nelement vertex {len(POINTS)}\nproperty uchar red\n"
            "property double x\nproperty list uchar short extra\nproperty double y\nproperty float64 z\n"
            f"element face {len(FACES)}\nproperty list uchar int vertex_indices\nend_header\n").encode()
    if order is None:
        return (head.decode() + "".join(f"7 {x!r} 2 8 9 {y!r} {z!r}\n" for x, y, z in POINTS)
                + "".join("3 %d %d %d\n" % face for face in FACES)).encode()
    return (head + b"".join(struct.pack(order + "BdBhhdd", 7, x, 2, 8, 9, y, z) for x, y, z in POINTS)
            + b"".join(struct.pack(order + "Biii", 3, *face) for face in FACES))


def las(minor=2, compressed=0):
    size = 375 if minor == 4 else 227
    head = bytearray(size)
    head[:4] = b"LASF"
    struct.pack_into("<BB", head, 24, 1, minor)
    legacy = 0 if minor == 4 else len(RASTER)
    struct.pack_into("<HIIBHI", head, 94, size, size + 5, 0, compressed, 20, legacy)
    struct.pack_into("<6d", head, 131, *[0.01] * 3, *[2e6] * 3)
    if minor == 4:
        struct.pack_into("<Q", head, 247, len(RASTER))
    return bytes(head) + b"extra" + b"".join(
        struct.pack("<iii8x", *(round((c - 2e6) * 100) for c in p)) for p in RASTER)


def german(points, sep):
    return lines(points, sep).replace(".", ",")


CSV = "".join(f"{i},{z!r}, {x!r} ,+{abs(y)!r}\n" for i, (x, y, z) in enumerate(POINTS))
OFF = "# a comment\n{} {} 0\n" + lines(POINTS, tail=" 0.5 0.5 0.5") + "\n3 0 1 2\n3 3 4 15\n"
SWAPPED = [(z, x, y) for x, y, z in POINTS]
FORMATS = {  # name: content; all hold POINTS, the LAS files RASTER, two of them STEPS
    "comment.xyz": "# x y z where z is height\n# some scan of y by x and z\n#  z x y\n" + lines(SWAPPED, tail=" 7"),
    "survey.csv": ('Point,"Elevation [m]",Easting (m),NORTHING,X-Axis\n'
                   + lines(SWAPPED, ",", head="P1,", end=",5\nP1,")[:-3]),
    "view.csv": '"Points:2","Points:0","Points:1"\n' + lines(SWAPPED, ","),
    "units.txt": "Z [m] X [m] Y [m]\n" + lines(SWAPPED),
    "comma.csv": "Name;X;Y;Z\n" + "".join(f"a, b. c;{row}\n" for row in german(POINTS, ";").splitlines()),
    "time.txt": "\tX\tY\tZ\ttime\n7\t" + lines(POINTS, "\t", tail="\t2026-11-22 12:00:00", end="\n7\t")[:-2],
    "point id.tsv": "Point ID\tX\tY\tZ\tCode\n\t" + lines(POINTS, "\t", end="\t\n\t")[:-1],
    "aligned.txt": "X\t\tY\tZ\tScan Angle\n" + lines(POINTS, "\t\t", tail="\t\t5\t7"),
    "words.txt": "X Y Z Description\n" + lines(POINTS, tail=" Iron pipe found"),
    "comma.txt": german(POINTS, "\t"), "nameless.csv": german(POINTS, ";"),
    "zipped": gzip.compress(lines(POINTS[:9]).encode()) + gzip.compress(lines(POINTS[9:]).encode()),
    "zipped.OFF.gz": gzip.compress(b"OFF 40 0 0\n" + lines(POINTS).encode()) + bytes(9),
    "piped": "# more than a few comments\n" * 2000 + "40 3 1 0\n" + lines(POINTS, numbered=7, tail=" 0.5"),
    "blanks.TSV": lines(POINTS, "\t  ", head="\ufeff# made here\n// also a comment\n\n", tail=" 255 # end"),
    "quoted.csv": 'name,"X [m, local]",Y,Z\n' + lines(POINTS, '","', head='"Lee, ""J""","', end='"\n"Lee, ""J""","')[:-14],
    "marks.csv": "name,x,y,z\n" + lines(POINTS, ",", end='\n"Lot #5; b",', head='"a; b",')[:-len('"Lot #5; b",')],
    "comma at the end.csv": "x,y,z\n" + lines(POINTS, ",", tail=",,"),
    "semicolons.txt": lines(POINTS, " ; ", "\r\n"), "counted.pts": lines(POINTS, head="40\n", tail=" 9"),
    "scan.pts": lines(STEPS, head="40\n", tail=" 9"), "steps.xyz": lines(STEPS, head="# E N H\n", tail=" 9"),
    "columns.CSV": 'id,"Z",X,y\n' + CSV, "bare": lines(POINTS)[:-1],
    "ascii.ply": ply("ascii"), "little.ply": ply("binary_little_endian", "<"),
    "big.ply": ply("binary_big_endian", ">"), "magic.dat": ply("binary_big_endian", ">"),
    "v.obj": "mtllib a.mtl\n" + lines(POINTS, head="v ", end="\nvn 0 0 1\nv ")[:-2] + "f 1//1 2//1 3//1\n",
    "n.off": "COFF\n" + OFF.format(40, 2), "oneline.dat": "OFF " + OFF[12:].format(40, 2),
    "zero.node": "40 3 1 1\n" + lines(POINTS, numbered=0, tail=" 0.5 17"),
    "one.node": "# c\n40  3  0  1\n" + lines(POINTS, numbered=1, tail="  17") + "# end\n",
    "v12.las": las(), "v14.las": las(4),
}
FOUR = "0 0 0\n1 0 0\n0 1 0\n"
BAD = [  # name, content, exit status, what standard error says
    ("a.xyz", FOUR + "0 0 1.5\n0 1,5 1\n", 3, "a.xyz:5: '1,5': some numbers have a decimal point and"),
    ("a.txt", "1,5 2,5 3,5\n1 1 1.5\n", 3, "a.txt:2: '1.5': some numbers have a decimal point and"),
    ("a.csv", FOUR.replace(" ", ";") + "0;0;1.234,5\n", 3, "a.csv:4: '1.234,5' is not a number"),
    ("a.xyz", lines(POINTS, numbered=100), 3, "the first column has whole numbers that only rise, from 100 to 139:"),
    ("a.xyz", lines(POINTS, numbered=2**60), 3, f"whole numbers that only rise, from {2**60} to {2**60 + 39}:"),
    ("a.xyz", "".join(f"{99 - 2 * i}.0 {row}" for i, row in enumerate(lines(POINTS[:8]).splitlines(True))), 3,
     "whole numbers that only fall, from 99 to 85:"),
    ("a.csv", "x,y,z\n" + FOUR.replace(" ", ",") + "1,5,2,5\n", 3, "a.csv:5: more fields than the header has names, which are 3"),
    ("a.xyz", "Code x y z t\n5 0 0 0 1\n0 0 1 1\n", 3, "a.xyz:3: fewer fields than the header has names, which are 5"),
    ("a.xyz", "x y z t\n0 0 0 1\n9 0 0 1 Iron pipe\n", 3, "a.xyz:3: more fields than the header has names, which are 4"),
    ("a.csv", FOUR.replace(" ", ",") + '0,0,"1"5\n', 3, "a.csv:4: '\"1\"5' is not a number"),
    ("a.csv", "Z,X\n1,2\n", 3, "a.csv:1: these names do not say which columns are x, y and z"),
    ("a.csv", "X,East,North,Height,Elevation\n", 3, "a.csv:1: both 'X' and 'East' may be meant"),
    ("a.xyz", "# z x y in metres\n" + FOUR, 3, "a.xyz:2: a comment before may name the columns"),
    ("a.gz", FORMATS["zipped"][:-5], 3, "a.gz: the file is cut short"),
    ("a.gz", gzip.compress(FOUR.encode()) + gzip.compress(FOUR.encode())[1:], 3, "a.gz: what follows the compressed data"),
    ("a.gz", FORMATS["zipped"][:60] + b"x" + FORMATS["zipped"][61:], 3, "a.gz: the compressed data are damaged"),
    ("a.csv", FOUR.replace(" ", ",") + "0,x7,1\n", 3, "a.csv:4: 'x7' is not a number"),
    ("a.csv", "easting,northing,up\n1,2,3\n", 3, "a.csv:1: these names do not say which columns are x, y and z"),
    ("a.xyz", FOUR + "\n# c\n0 0\n", 3, "a.xyz:6: z is missing"),
    ("a.xyz", FOUR.replace("\n", "\r"), 3, "a.xyz:1: lines end with carriage returns alone"),
    ("a.obj", "# made here\rv 1 2 3\r", 3, "a.obj:1: lines end with carriage returns alone"),
    ("a.csv", FOUR.encode("utf-16"), 3, "a.csv: a text in UTF-16"), ("a.txt", b"\xfe\xff\0001", 3, "a.txt: a text in UTF-16"),
    ("a.xyz", FOUR + "0 0 nan\n", 3, "a.xyz:4: a coordinate is not a finite number"),
    ("a.xyz", FOUR + "0 0 -1e61\n", 3, "a.xyz:4: a coordinate is larger than 1e60"),
    ("a.xyz", FOUR + "0 0 1e999\n", 3, "a.xyz:4: '1e999' is outside the range of a double"),
    ("a.pts", "3\n" + FOUR + "0 0 1\n", 3, "a.pts:5: more points than the 3 announced"),
    ("a.obj", "v 1 2\n", 3, "a.obj:1: z is missing"), ("a.stl", FOUR, 3, "extension .stl"),
    ("a.off", "OFF\n3 1 0\n" + FOUR + "3 0 1 3\n", 3, "a.off:6: a corner names no vertex"),
    ("a.off", "4OFF\n", 3, "a.off:1: only points of three coordinates"),
    ("a.node", "3 2 0 0\n", 3, "a.node:1: the dimension is not 3"),
    ("a.node", "2 3 0 0\n1 0 0 0\n3 0 0 1\n", 3, "a.node:3: the indices of the points are not consecutive"),
    ("node", "9 3 1 0\n" + lines(POINTS, numbered=1), 3, "node:2: an attribute or a boundary marker is missing"),
    ("node", "9 3 0 0\n" + lines(POINTS, numbered=5), 3, "node:11: more points than the 9 announced"),
    ("node", "5 3 0 0\n1 0 0 0\n2 1 0\n3 0 1 0\n4 0 0 1\n5 1 1 2\n", 3, "node:3: z is missing (read as .node; --format xyz"),
    ("node", "5 3 0 0\n2 0 0 0\n5 1 0 0\n8 0 1 0\n11 0 0 1\n14 1 1 2\n", 3, "node:3: the indices of the points are not"),
    ("a.ply", "plx\n", 3, "a.ply:1: this is not a PLY file"),
    ("a.ply", "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nend_header\n1\n", 3, "x, y and z"),
    ("a.ply", "ply\nformat ascii 1.0\nelement vertex 1\nproperty real x\n", 3, "a.ply:4: 'real' is not a type"),
    ("a.ply", ply("binary_little_endian", "<").replace(b"vertex 40", b"vertex 9999999999999999"), 3, "cut short"),
    ("a.ply", ply("binary_little_endian", "<").replace(b"end_", b"element z 1\nproperty list uint64 double l\nend_")
     + struct.pack("<Q", 1 << 61), 3, "cut short: z 1 of 1 is missing"),
    ("a.las", las(2, 131), 3, "compressed"), ("a.las", las()[:200], 3, "its header is not complete"),
    ("a.las", las()[:230], 3, "cut short: there are no points"),
    ("a.xyz", FOUR + FOUR, 4, "fewer than 4 distinct points (3)"), ("a.xyz", "", 4, "fewer than 4"),
    ("a.xyz", "".join(f"{x} {x * x} 0 7\n" for x in (1, 2, 3, 5, 4, 6, 7, 8)), 4, "all 8 distinct points lie in one plane"),
    ("a.xyz", FOUR + "3 7 0\n", 4, "all 4 distinct points lie in one plane"),
]


def run(*args, **options):
    return subprocess.run([PROGRAM, *map(str, args)], capture_output=True, timeout=60, **options)


def readNodes(path):
    return [tuple(map(float, row.split()[1:4])) for row in path.read_text().splitlines()[1:]]


class ProgramCase(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.mesh = self.folder / "mesh.node"

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path


class Program(ProgramCase):
    def testEveryFormatIsReadToTheLastBit(self):
        for name, content in FORMATS.items():
            with self.subTest(name):
                done = run(self.write(name, content), "-o", self.mesh, "-q")
                self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""))
                points = [(x, abs(y), z) for x, y, z in POINTS] if name == "columns.CSV" else POINTS
                points = STEPS if name in ("scan.pts", "steps.xyz") else points
                self.assertEqual(readNodes(self.mesh), RASTER if name.endswith("las") else points)

    def testTheUserSaysWhichColumnsAndLinesAreRead(self):
        numbered, named = lines(POINTS, numbered=1), "Nr,H,R,V\n" + lines(SWAPPED, ",", head="1,", end="\n1,")[:-2]
        for name, content, *args in (
                ("a.xyz", numbered, "--columns", "id,x,y,z"), ("a.xyz", numbered, "--columns", " 2, 3, 4"),
                ("a.csv", named, "--columns", "r,v,h"), ("a.csv", named, "--columns", "id,z,x,y"),
                ("a.csv", "Z,Y,X\n" + lines([p[::-1] for p in POINTS], ","), "--columns", "x,y,z"),
                ("a.txt", "# R V H\n" + lines(POINTS), "--columns", "R,V,H"),
                ("a.txt", "1 2 3\n# x y z\n" + lines(POINTS), "--skip-lines", "2"),
                ("a.csv", "nan,0,0\n" + lines(POINTS[:9], ",") + "1,,n/a\n" + lines(POINTS[9:], ",") + "1e61,2,3\n",
                 "--skip-invalid"),
                ("a.off", "OFF 41 0 0\n0 nan 0\n" + lines(POINTS), "--skip-invalid")):
            with self.subTest(args, name=name):
                done = run(self.write(name, content), "--json", "-o", self.mesh, *args)
                self.assertEqual((done.returncode, done.stderr), (0, b""))
                self.assertEqual(readNodes(self.mesh), POINTS)
                leftOut = {"a.csv": 3, "a.off": 1}[name] if "invalid" in args[0] else 0
                self.assertEqual(json.loads(done.stdout)["invalidPoints"], leftOut)
        for columns, text in (("r,v", "names no x, y and z"), ("r,v,up", "no column is named 'up'"),
                              ("0,1,2", "counted from 1"), ("1,2,99999999999", "'99999999999' is none"), ("r,v,R", "twice"), ("x,y,z,X", "x twice")):
            self.assertIn(text, run(self.write("a.csv", named), "--columns", columns).stderr.decode())

    def testBadInputIsReportedWithItsPlaceAndStatus(self):
        for name, content, status, text in BAD:
            with self.subTest(text):
                done = run(self.write(name, content), "-o", self.mesh)
                self.assertEqual((done.returncode, done.stdout), (status, b""))
                self.assertIn(text, done.stderr.decode())
                self.assertFalse(self.mesh.exists())

    def testAFileCutAnywhereGivesAnErrorOrNoPointLess(self):
        for name in ("counted.pts", "ascii.ply", "little.ply", "big.ply", "n.off", "one.node", "v12.las", "v14.las"):
            whole = FORMATS[name] if isinstance(FORMATS[name], bytes) else FORMATS[name].encode()
            for length in [*range(8, len(whole), len(whole) // 40), *range(len(whole) - 9, len(whole))]:
                done = run(self.write(name, whole[:length]), "-o", self.mesh, "--no-check")
                with self.subTest(name, length=length, stderr=done.stderr):
                    if done.returncode == 0 and "las" not in name:
                        self.assertEqual(readNodes(self.mesh), POINTS)
                    else:
                        self.assertEqual(done.returncode, 3)

    def testACommandLineThatCannotWorkIsRefusedBeforeTheWork(self):
        points = self.write("a.off", FORMATS["n.off"])
        for args, text in ((["--nonsense"], "--nonsense"), ([points, "-o", "m.st"], "m.st: no output format"),
                           ([points, "-o", "-"], "(--to)"), ([points, "--to", "stl"], "-o -"),
                           ([points, "-o", "-", "--to", "tetgen"], "--to"), ([points, "--columns", "1,2,3"], "are for text"),
                           ([points, "--columns", "1,2,3,"], "'1,2,3,' has an empty name"), ([points, "--columns", ",1,2,3"], "empty name"),
                           ([points, "--skip-lines", "-1"], "'-1' is no number of lines"),
                           ([points, "-o", points], "would replace the input"), ([points, "-q", "-v"], "--quiet"),
                           ([points, "--hull", "--alpha", "3"], "does not go with --hull"),
                           ([points, "--alpha", "all"], "'all' is no positive number, nor auto"),
                           ([points, "--max-edge", "-1"], "'-1' is no positive number"), ([points, "--alpha", ""], "''"),
                           ([points, "--hull", "-o", "m.vtu"], "m.vtu: --hull makes a surface"),
                           ([points, "--voronoi", "-o", "-", "--to", "vtk"], "-o -: --voronoi makes polyhedra"),
                           ([points, "--quality", "-o", "m.stl", "-o", "m.ele"], "no room for values of tetrahedra"),
                           ([points, "--compact", "-o", "m.vtu"], "--compact is for the files of TetGen"),
                           ([points, "--quality", "--voronoi"], "--quality measures tetrahedra"),
                           ([points, "-f", "stl"], "stl"), ([points, "--check", "--no-check"], "--check")):
            with self.subTest(text):
                done = run(*args, cwd=self.folder)
                self.assertEqual((done.returncode, done.stdout, done.stderr[:8]), (2, b"", b"tulo3d: "))
                self.assertIn(text, done.stderr.decode())

    def testShapesHaveTheirAreaVolumeAndParts(self):
        cubes = lines([(x + far, y, z) for far in (0, 10) for x in (0, 1) for y in (0, 1) for z in (0, 1)]).encode()
        for args, expected in (
                (["--hull"], {"shape": "hull", "area": 46, "volume": 11}),
                (["--alpha", "auto"], {"alphaRadius": 0.75**0.5, "components": 2, "triangles": 24, "area": 12, "volume": 2}),
                (["--alpha", "99"], {"alphaRadius": 99, "components": 1, "area": 46, "volume": 11}),
                (["--max-edge", "1.74"], {"maxEdge": 1.74, "components": 2, "area": 12, "volume": 2}),
                (["--voronoi"], {"cells": 16, "unboundedCells": 16, "volume": 11})):
            with self.subTest(args):
                facts = json.loads(run("--json", *args, input=cubes).stdout)
                for name, value in expected.items():
                    (self.assertEqual if name == "shape" else self.assertAlmostEqual)(facts[name], value)
                text = run(*args, input=cubes).stdout.decode()
                self.assertRegex(text, rf"\nvolume +{expected['volume']}\n")
        none = run("--max-edge", "0.9", "-o", self.mesh, input=cubes)
        self.assertEqual((none.returncode, self.mesh.exists()), (4, False))
        self.assertIn(b"no tetrahedron is left; the shortest of their longest edges is 1.", none.stderr)

    def testARegularTetrahedronIsOfTheBestQuality(self):
        points = b"1 1 1\n1 -1 -1\n-1 1 -1\n-1 -1 1\n"
        measures = json.loads(run("--json", "--quality", input=points).stdout)["quality"]
        for name, value in (("volume", 8 / 3), ("minDihedralAngle", 70.528779), ("maxDihedralAngle", 70.528779),
                            ("radiusRatio", 1), ("shortestEdge", 8**0.5), ("longestEdge", 8**0.5)):
            for number in "min", "mean", "max":
                self.assertAlmostEqual(measures[name][number], value, 6)
        counts = [measures[name]["histogram"]["counts"] for name in ("minDihedralAngle", "maxDihedralAngle", "radiusRatio")]
        self.assertEqual(counts, [[0] * 7 + [1], [1] + [0] * 10, [0] * 9 + [1]])
        self.assertIn(b"\n  70 to 80 degrees      1\n", run("--quality", input=points).stdout)

    def testEveryOptionIsCompletedAndDescribed(self):
        text = run("--help").stdout.decode()
        options = re.findall(r"(?<![\w-])--?([a-z][a-z-]*)", text.split("Options:")[1])
        values = [word for group in re.findall(r"{(.*?)}", text) for word in group.split(",")]
        self.assertGreater(len(options), 18), self.assertGreater(len(values), 13)
        apps = MESHIO_TOOL.parent.parent / "apps"
        files = [f"completions/{name}" for name in ("tulo3d.bash", "_tulo3d", "tulo3d.fish")]
        for name in *files, "tulo3d.1.in", "../docs/program.md":
            described = re.findall(r"\w[\w-]*", (apps / name).read_text().replace("\\-", "-").replace("\\fB", ""))
            self.assertEqual([word for word in options + values if word not in described], [], name)
        if shutil.which("bash"):
            script = "source $0; COMP_WORDS=(tulo3d --to v); COMP_CWORD=2; _tulo3d; echo ${COMPREPLY[@]}"
            self.assertEqual(subprocess.check_output(["bash", "-c", script, apps / files[0]]), b"vtu vtk\n")

    def testTheCommandsOfTheDocumentationWork(self):
        tree = MESHIO_TOOL.parent.parent
        (self.folder / "data").symlink_to(tree / "data"), (self.folder / "tulo3d").symlink_to(PROGRAM)
        commands, = re.findall("```sh\n(.*?)```", (tree / "docs" / "program.md").read_text(), re.S)
        done = subprocess.run(["bash", "-e"], input=commands.encode(), capture_output=True, cwd=self.folder,
                              env={**os.environ, "PATH": f"{self.folder}:{os.environ['PATH']}"})
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn(b"tulo3d: numbered.txt: the first column", done.stderr)
        self.assertEqual(re.findall(r"\ndistinct vertices +([\d,]+)", done.stdout.decode()),
                         ["21,932", "4", "4", "4", "4", "21,932", "4", "4"] + 2 * ["21,932"] + ["4", "4"] + 6 * ["21,932"])

    def testResultsGoToStandardOutputAndEverythingElseDoesNot(self):
        points = lines(POINTS + POINTS[:3]).encode()
        done = run("-", "--json", "-v", "--check", input=points)
        facts = json.loads(done.stdout)
        self.assertIn(b"numPoints=43", done.stderr)
        self.assertEqual([facts[k] for k in ("file", "points", "distinctVertices", "duplicatePoints", "valid")],
                         ["-", 43, 40, 3, True])
        text = run("--stats", input=points)
        rows = {row[:36].strip(): row[37:] for row in text.stdout.decode().splitlines()}
        self.assertAlmostEqual(float(rows["mean tetrahedra incident to a vertex"]), 4 * facts["tetrahedra"] / 40, 4)
        self.assertLess(facts["readSeconds"] + facts["insertSeconds"] + facts["writeSeconds"], facts["totalSeconds"])
        self.assertEqual(int(rows["tetrahedra"].replace(",", "")), facts["tetrahedra"])
        self.assertEqual((rows["points"], rows["valid"], text.stderr), ("43", "yes", b""))
        self.assertIsNone(json.loads(run("--json", "--no-check", input=points).stdout)["valid"])
        self.assertIn(b"cut short", run(input=points[:-1]).stderr)
        odd = json.loads(run("--json", self.write("\xe4\udcff\x01\"", points)).stdout)["file"]
        self.assertEqual(odd[-4:], "\xe4\ufffd\x01\"")
        self.assertRegex(run("--version").stdout, rb"^tulo3d \d+\.\d+\.\d+\n$")
        for args in [], ["-q", "-o", "-", "--to", "off"]:
            for stdout in ">/dev/full", ">&-":
                done = subprocess.run(["sh", "-c", f'"$0" "$@" {stdout}', PROGRAM, *args], input=points, capture_output=True)
                self.assertEqual((done.returncode, done.stderr[:23]), (5, b"tulo3d: standard output"))

    def testThreadsMakeTheSameMeshInAnOrderThatDoesNotDependOnThem(self):
        raster = [(i % 25, i // 25 % 25, i // 625) for i in range(15625)]
        random.shuffle(raster)
        points = self.write("a.xyz", lines(raster + raster[:9]))

        def results(*args):
            done = run(points, "--check", "--json", "-o", self.mesh, *args)
            facts = json.loads(done.stdout)
            self.assertEqual((done.returncode, done.stderr, facts["valid"]), (0, b"", True))
            tets = [sorted(map(int, row.split()[1:])) for row in self.mesh.with_suffix(".ele").read_text().splitlines()[1:]]
            return facts, tets, [self.mesh.with_suffix(s).read_bytes() for s in (".node", ".ele", ".neigh")]

        facts, tets, files = results()
        self.assertNotIn("threads", facts)
        self.assertTrue(results("--threads", "1")[2] == files)
        two = results("--threads", "2")
        self.assertTrue(sorted(two[1]) == sorted(tets) and two[2][0] == files[0])
        self.assertEqual({**two[0], "threads": 0, **{k: v for k, v in facts.items() if "econd" in k or "emory" in k}},
                         {**facts, "threads": 0, "hullVolume": two[0]["hullVolume"]})
        for number in "3", "0":
            other = results("--threads", number)
            self.assertTrue(other[2] == two[2])
            self.assertEqual(other[0]["threads"], int(number) or os.cpu_count())
        plane = run("--threads", "2", self.write("b.xyz", FOUR + "1 1 0\n"))
        self.assertEqual(plane.returncode, 4)
        self.assertIn(b"all 4 distinct points lie in one plane", plane.stderr)

    def testProgressIsShownOnATerminalOnly(self):
        points = self.write("a.xyz", lines([(random.random(), random.random(), random.random()) for _ in range(2000)]))
        for quiet, shown in ([], True), (["--threads", "2"], True), (["-q"], False):
            master, slave = pty.openpty()
            subprocess.run([PROGRAM, points, *quiet], stdout=subprocess.DEVNULL, stderr=slave, check=True)
            os.write(slave, b"|")
            text = os.read(master, 4096)
            self.assertEqual(re.search(rb"inserting 2000 points \d+ %, \d+ s left", text) is not None, shown, text)
            self.assertTrue(shown or text == b"|", text)
            os.close(master), os.close(slave)

    def testErrorsAreInColourOnATerminalOnly(self):
        for variables, start in ({}, b"\033[1;31mtulo3d:\033[0m "), ({"NO_COLOR": "1"}, b"tulo3d: "):
            master, slave = pty.openpty()
            subprocess.run([PROGRAM, "none.xyz"], stderr=slave, env={**os.environ, **variables}, check=False)
            self.assertTrue(os.read(master, 4096).split(b"\r\033[K")[-1].startswith(start))
            os.close(master), os.close(slave)

    def testOutputIsCompleteOrNotThereAtAll(self):
        points = self.write("a.xyz", lines(POINTS))
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))
        for name in ("m.VTU", "m.ele", "m.off", "m.list", "m.vtk", "m.msh", "m.ply", "m.stl", "m.obj"):
            with self.subTest(name):
                target = self.write(name, "old")
                done = run(points, "-o", target, preexec_fn=limit, restore_signals=False)
                self.assertEqual((done.returncode, target.read_text()), (5, "old"), done.stderr)
                self.assertEqual(run(points, "-o", target).returncode, 0)
                self.assertNotEqual(target.read_text("latin-1"), "old")
        self.assertEqual(run(points, "-o", self.folder / "none" / "m.vtu").returncode, 5)
        small = [(1e7, 0, 0), (1e7 + 0.5, 0, 0), (1e7, 0.5, 0), (1e7, 0, 0.5)]  # of floats near 1e7, every one is whole
        for part in *([[scale * c for c in p] for p in CORNERS] for scale in (1e-160, 1e59)), [*small, (0, 0, 0)]:
            edge = ["--max-edge", "1"] if part[:1] == small[:1] else []
            done = run("-o", self.folder / "far.stl", *edge, input=lines(part).encode())
            self.assertEqual((done.returncode, (self.folder / "far.stl").exists()), (5, False), done.stderr)
            self.assertIn(b"no number beyond 3e38", done.stderr)
        hull, link, other, hard = (self.folder / name for name in ("m.off", "link.off", "new.off", "hard.off"))
        link.symlink_to("m.off"), (self.folder / "dangling.off").symlink_to("new.off"), hard.write_text("old")
        hull.chmod(0o640), os.link(hard, self.folder / "hard.2")
        run(points, "-o", link, "-o", self.folder / "dangling.off", "-o", hard)
        self.assertTrue(link.is_symlink())
        self.assertEqual((hull.stat().st_mode & 0o777, other.read_bytes(), (self.folder / "hard.2").read_bytes()),
                         (0o640, hull.read_bytes(), hull.read_bytes()))
        self.assertEqual([p.name for p in self.folder.glob(".*")], [])

    def testASignalLeavesNothingUnfinishedBehind(self):
        points = self.write("a.xyz", lines([(random.random(), random.random(), random.random()) for _ in range(2000)]))
        outputs = [a for i in range(50) for a in ("-o", self.folder / f"m{i}.list")]  # long enough to be caught
        for number in signal.SIGINT, signal.SIGTERM, signal.SIGHUP:
            with self.subTest(number), subprocess.Popen([PROGRAM, points, *outputs], stdout=subprocess.DEVNULL) as program:
                caught = False
                while not caught and program.poll() is None:
                    program.send_signal(signal.SIGSTOP)
                    os.waitid(os.P_PID, program.pid, os.WSTOPPED | os.WEXITED | os.WNOWAIT)
                    caught = any(self.folder.glob(".*.part"))
                    program.send_signal(number if caught else signal.SIGCONT)
                program.send_signal(signal.SIGCONT)
                self.assertEqual((caught, program.wait()), (True, -number))
                self.assertEqual([p.name for p in self.folder.glob(".*")], [])

    def testTheWrittenNeighboursAndSurfaceFitTogether(self):
        for args, volume in (([], "hullVolume"), (["--threads", "2"], "hullVolume"), (["--max-edge", "1e6"], "volume"),
                             (["--alpha", "auto", "--threads", "2"], "volume"), (["--alpha", "auto"], "volume")):
            with self.subTest(args):
                facts = json.loads(run("--json", *args, "-o", self.mesh, "-o", self.folder / "hull.off",
                                       "-o", self.folder / "m.list", input=lines(POINTS).encode()).stdout)
                self.expectNeighboursAndSurface(
                    facts.get("tetrahedraLeft", facts["tetrahedra"]), facts.get("triangles", facts["hullFacets"]), facts[volume])

    def expectNeighboursAndSurface(self, numTets, numTriangles, expectedVolume):
        tets, neighbours = ([tuple(map(int, row.split()[1:])) for row in self.mesh.with_suffix(s).read_text()
                             .splitlines()[1:]] for s in (".ele", ".neigh"))
        for t, row in enumerate(neighbours):
            for i, n in enumerate(row):
                facet = set(tets[t]) - {tets[t][i]}
                self.assertTrue(n < 0 or (t in neighbours[n] and facet < set(tets[n])))
        self.assertEqual((len(tets), sum(row.count(-1) for row in neighbours)), (numTets, numTriangles))
        counts, *hull = [row.split() for row in (self.folder / "hull.off").read_text().splitlines()[1:]]
        corners = [tuple(map(float, row)) for row in hull[:int(counts[0])]]
        volume = 0
        for _, *facet in hull[len(corners):]:
            a, b, c = (corners[int(i)] for i in facet)
            volume += sum(a[i] * (b[i - 2] * c[i - 1] - b[i - 1] * c[i - 2]) for i in range(3)) / 6
        self.assertAlmostEqual(volume / expectedVolume, 1)  # outward, and closed
        drawing = (self.folder / "m.list").read_text()
        self.assertEqual(len(re.findall("^3 .*\\.5$", drawing, re.M)), 4 * numTets)

    def testStandardOutputGetsWhatAFileWouldGet(self):
        points = self.write("a.xyz", lines(POINTS))
        for name in "vtu", "vtk", "msh", "ply", "stl", "obj", "off", "list":
            file = self.folder / ("m." + name)
            done = run(points, "-o", file, "-o", "-", "--to", name)
            self.assertEqual((done.stdout, done.stderr.split()[:1]), (file.read_bytes(), [b"file"]))

    def testTetgenFilesKeepTheNumbersOfTheInputOrHaveAMap(self):
        doubled = [*POINTS[:3], *POINTS]
        points = self.write("a.node", "43 3 1 1\n" + lines(doubled, numbered=1, tail=" 0.5 7"))
        def corners():
            return {int(n) for row in self.mesh.with_suffix(".ele").read_text().splitlines()[1:] for n in row.split()[1:]}
        run(points, "-q", "-o", self.mesh)
        self.assertEqual(self.mesh.read_text(), points.read_text())
        self.assertEqual(corners(), {1, 2, 3, *range(7, 44)})
        if shutil.which("tetgen"):
            said = subprocess.check_output(["tetgen", "-r", self.mesh.with_suffix("")]).decode()
            numTets = self.mesh.with_suffix(".ele").read_text().split()[0]
            self.assertIn(f"Mesh tetrahedra: {numTets}\n", said)
        run(points, "-q", "-o", self.mesh, "--compact")
        self.assertEqual((len(readNodes(self.mesh)), corners()), (40, {*range(1, 41)}))
        rows = [tuple(map(int, row.split())) for row in self.mesh.with_suffix(".map").read_text().splitlines()[1:]]
        self.assertEqual(rows, [(i + 1, i % 3 + 1 if i < 6 else i - 2) for i in range(43)])

    def testGeomviewDrawsMoreTetrahedraThanItsStackHolds(self):
        points = self.write("a.xyz", lines([[random.random() for _ in range(3)] for _ in range(1000)]))
        run(points, "-o", self.folder / "m.list")
        tool = MESHIO_TOOL.parent / "render_list.sh"
        drawn = subprocess.run([tool, self.folder / "m.list", self.folder / "m.png"], capture_output=True)
        if drawn.returncode == 77:
            self.skipTest(drawn.stderr.decode())
        self.assertEqual((drawn.returncode, drawn.stderr), (0, b""))


def readPly(path):
    """The types, names and values of a vertex's properties in a binary file with x, y, z in front."""
    head, body = path.read_bytes().split(b"end_header\n", 1)
    num = int(re.search(rb"vertex (\d+)", head)[1])
    types, names = zip(*re.findall(r"^property (\w+) (\w+)$", head.decode(), re.M))
    codes = "".join("bBhHiIfd"["char uchar short ushort int uint float double".split().index(t)] for t in types)
    rows = struct.iter_unpack("<" + codes, body[:num * struct.calcsize("<" + codes)])
    return {n: (t, list(column)) for t, n, column in zip(types, names, zip(*rows))}


CORNERS = [(1, 0, 0), (-1, 0, 0), (0, 1, 0), (0, -1, 0), (0, 0, 1), (0, 0, -1), (1, 0, 0)]  # all on the hull, the last twice
VALUES = {  # type in PLY, code, values
    "int8": ("char", "b", [-128, 127, 0, 1, 2, 3, 9]), "red": ("uchar", "B", [0, 255, 7, 1, 2, 3, 9]),
    "int16": ("short", "h", [-32768, 32767, 0, 1, 2, 3, 9]), "uint16": ("ushort", "H", [0, 65535, 0, 1, 2, 3, 9]),
    "int32": ("int", "i", [-2**31, 2**31 - 1, 0, 1, 2, 3, 9]), "uint32": ("uint", "I", [0, 2**32 - 1, 0, 1, 2, 3, 9]),
    "float": ("float", "f", [0.5, -2.0**99, 0, 1, 2, 3, 9]), "double": ("double", "d", [0.1, 1e300, 0, 1, 2, 3, 9])}


def plyOfValues(kind):
    names = [f"{VALUES[n][0]} {n}" for n in VALUES] + ["double x", "double y", "double z"]
    head = "".join(f"property {name}\n" for name in names)
    rows = list(zip(*(values for _, _, values in VALUES.values()), *zip(*CORNERS)))
    codes = "".join(code for _, code, _ in VALUES.values()) + "ddd"
    body = {"ascii": "".join(" ".join(map(str, row)) + "\n" for row in rows).encode(),
            "binary_big_endian": b"".join(struct.pack(">" + codes, *row) for row in rows)}[kind]
    return f"ply\nformat {kind} 1.0\nelement vertex 7\n{head}end_header\n".encode() + body


def lasOfValues(kind, length, fields):
    body = b""
    for i, corner in enumerate(CORNERS):
        record = bytearray(length)
        struct.pack_into("<3i", record, 0, *corner)
        for offset, code, value in fields:
            struct.pack_into("<" + code, record, offset, value + i)
        body += record
    head = bytearray(las(2)[:227])
    struct.pack_into("<IIBHI", head, 96, 227, 0, kind, length, 7)
    struct.pack_into("<6d", head, 131, *[1.0] * 3, *[0.0] * 3)
    return bytes(head) + body


def cornerLines(start, end):
    """A line for each corner, with the index i of the corner in the texts before and behind it."""
    return "".join(start(i) + "%d %d %d " % corner + end(i) + "\n" for i, corner in enumerate(CORNERS))


SMALL = "\n".join(f"{10**10 + i},{y},{x},{z},{250 + i % 6},{i - 3},{i / 8},P{i}" for i, (x, y, z) in enumerate(CORNERS))
TEXTS = {
    "a.csv": "id,Y,X,Z,red,class,t,name\n" + SMALL + "\n",
    "a.pts": "7\n" + cornerLines(lambda i: "", lambda i: f"{-i} {i} 2 3"),
    "a.obj": cornerLines(lambda i: "v ", lambda i: f"{i / 8} 1 0"),
    "a.off": "COFF 7 0 0\n" + cornerLines(lambda i: "", lambda i: f"{i / 8} 1 0 1"),
    "a.node": "7 3 1 1\n" + cornerLines(lambda i: f"{i} ", lambda i: f"{i / 8} {i - 2}"),
}
FIRST = {n: (t, values[:6]) for n, (t, _, values) in VALUES.items()}
LAS3 = [(12, "H", 60000), (15, "B", 224 + 6), (20, "d", 1.5e8), (28, "H", 1), (30, "H", 65000), (32, "H", 3)]
LAS7 = [(12, "H", 60000), (16, "B", 200), (22, "d", 1.5e8), (30, "H", 1), (32, "H", 65000), (34, "H", 3)]


def counting(kind, start, step=1):
    return kind, [start + i * step for i in range(6)]


LAS = {"intensity": counting("ushort", 60000), "classification": counting("uchar", 6), "gps_time": counting("double", 1.5e8),
       "red": counting("ushort", 1), "green": counting("ushort", 65000), "blue": counting("ushort", 3)}


COLOURS = {"red": counting("double", 0, 1 / 8), "green": counting("double", 1, 0), "blue": counting("double", 0, 0)}


class Attributes(ProgramCase):
    def testAttributesComeThroughInTheirTypes(self):
        hull = self.folder / "hull.ply"
        for name, content, expected in (
                ("a.ply", plyOfValues("ascii"), FIRST), ("a.ply", plyOfValues("binary_big_endian"), FIRST),
                ("a.csv", TEXTS["a.csv"], {"id": counting("double", 1e10), "red": counting("uchar", 250),
                                           "class": counting("int", -3), "t": counting("double", 0, 1 / 8)}),
                ("a.pts", TEXTS["a.pts"], {"intensity": counting("int", 0, -1), "red": counting("uchar", 0),
                                           "green": counting("uchar", 2, 0), "blue": counting("uchar", 3, 0)}),
                ("a.obj", TEXTS["a.obj"], COLOURS), ("a.off", TEXTS["a.off"], COLOURS),
                ("a.node", TEXTS["a.node"], {"attribute1": counting("double", 0, 1 / 8), "marker": counting("int", -2)}),
                ("a.las", lasOfValues(3, 34, LAS3), LAS),
                ("a.las", lasOfValues(7, 36, LAS7), {**LAS, "classification": counting("uchar", 200)}),
                ("a.las", lasOfValues(3, 29, LAS3[:3]), {n: LAS[n] for n in list(LAS)[:3]})):
            with self.subTest(name, content=content):
                done = run(self.write(name, content), "-o", hull, "-o", self.mesh)
                read = readPly(hull)
                self.assertEqual(read.pop("inputIndex"), ("int", [*range(6)]))
                self.assertEqual({n: v for n, v in read.items() if n not in "xyz"}, expected)
                self.assertIn(" ".join(expected) + " (of duplicate points, those of the first one)", done.stdout.decode())
                self.assertEqual(done.stderr.decode(), "tulo3d: warning: " + str(self.folder / name) +
                                 ": the column 'name' is text and is not written\n" if name == "a.csv" else "")
        tooLarge = run(self.write("a.ply", plyOfValues("ascii").replace(b"65535", b"65536")), "-o", hull)
        self.assertIn(b"'65536' is no ushort (uint16)", tooLarge.stderr)

    def testNamesAreDistinctAndColoursHaveOneType(self):
        head = b"x,p,q,s,R,g,B,volume,RGB,h\xf6,h\xe4\n"
        rows = "".join("7,%d,%d,%d,%d,%d,3,4,5,6,8\n" % (*c, 1 + i, 65000 + i) for i, c in enumerate(CORNERS))
        hull, grid, mesh = (self.folder / name for name in ("hull.ply", "m.vtu", "m.msh"))
        done = run(self.write("a.csv", head + rows.encode()), "--columns", "p,q,s", "--quality", "-o", hull, "-o", grid, "-o", mesh)
        read = {n: t for n, (t, _) in readPly(hull).items()}
        self.assertEqual(read, {**dict.fromkeys("xyz", "double"), "x_2": "int", "red": "ushort", "green": "ushort", "blue": "ushort",
                                "volume_2": "int", "RGB_2": "int", "h___": "int", "h____2": "int", "inputIndex": "int"})
        self.assertEqual(done.stderr.count(b"warning"), 4)
        row = "%d %d %d 1 2 300\n"
        for colours, types in (("Red[8bit] GREEN Blue", {"red": "ushort", "green": "ushort", "blue": "ushort"}),
                               ("RED red blue", {"RED": "uchar", "red": "uchar", "blue": "ushort"}),
                               ("r R b", {"r": "int", "R": "int", "b": "int"})):
            run(self.write("b.txt", f"x y z {colours}\n" + "".join(row % c for c in CORNERS)), "-o", hull)
            self.assertEqual({n: t for n, (t, _) in list(readPly(hull).items())[3:-1]}, types)
        self.assertIn(b"the attribute 'volume' is written as 'volume_2'", done.stderr)
        names = re.findall(rb' Name="(.*?)"', grid.read_bytes())
        self.assertEqual(len(set(names)), len(names)), self.assertIn(b"RGB", names)
        self.assertIn('"h\ufffd_2"'.encode(), mesh.read_bytes())

    def testAPointThatIsLeftOutTakesItsAttributesWithIt(self):
        hull = self.folder / "hull.ply"
        corners = "".join("%d,%d,%d,%d\n" % (*c, i) for i, c in enumerate(CORNERS[:6]))
        table = plyOfValues("ascii").replace(b"vertex 7", b"vertex 8")
        for name, content, attribute, expected in (
                ("a.csv", "x,y,z,w\nnan,0,0,7.5\n" + corners, "w", [*range(6)]),
                ("a.ply", table.replace(b"-128 ", b"5 5 5 5 5 5 5 5 nan 0 0\n-128 ", 1), "red", FIRST["red"][1])):
            with self.subTest(name):
                run(self.write(name, content), "-o", hull, "--skip-invalid", "-q")
                read = readPly(hull)
                self.assertEqual((read["inputIndex"][1], read[attribute][1]), ([*range(1, 7)], expected))


class Shrinker(ProgramCase):
    def testOnlyTheLinesThatMakeACommandFailAreLeft(self):
        points, shrunk = self.write("a.xyz", lines(POINTS)), self.folder / "shrunk.xyz"
        needed = [lines(POINTS[i:i + 1]) for i in (3, 4, 17, 39)]
        culprit = f"import sys; sys.exit(6 * all(p in open(sys.argv[1]).read() for p in {needed}))"
        tool = [sys.executable, MESHIO_TOOL.parent / "shrink_points.py", points, shrunk]
        subprocess.run([*tool, sys.executable, "-c", culprit], check=True, stdout=subprocess.DEVNULL)
        self.assertEqual(shrunk.read_text(), "".join(needed))
        refused = subprocess.run([*tool, PROGRAM, "--check"], capture_output=True)
        self.assertIn(b"does not fail", refused.stderr)


class CommaLocale(ProgramCase):
    def testACommaLocaleChangesNothing(self):
        if shutil.which("localedef") is None or subprocess.run(
                ["localedef", "-i", "de_DE", "-f", "UTF-8", self.folder / "de_DE.UTF-8"], capture_output=True).returncode:
            self.skipTest("no German locale can be made here (Debian package locales)")
        german = dict(os.environ, LC_ALL="de_DE.UTF-8", LOCPATH=str(self.folder))
        done = run("--json", "-o", self.mesh, input=lines(POINTS).encode(), env=german)
        self.assertEqual((json.loads(done.stdout)["points"], readNodes(self.mesh)), (40, POINTS))


class OtherPrograms(ProgramCase):
    def testMeshioReadsWhatIsWritten(self):
        if importlib.util.find_spec("meshio") is None:
            self.skipTest(f"{sys.executable} has no meshio (tools/packages.sh)")
        files = [self.folder / ("m" + s) for s in (".vtu", ".vtk", ".msh", ".ele", ".off", ".ply", ".stl", ".obj")]
        rows = lines(POINTS[:1] + POINTS).splitlines()
        points = "".join(f"{row} {i} {i / 8}\n" for i, row in enumerate(rows))
        facts = json.loads(run("--json", "--columns", "x,y,z,n,w & \"v\"", *(a for f in files for a in ("-o", f)),
                               input=points.encode()).stdout)
        read = subprocess.run([sys.executable, MESHIO_TOOL, *files], capture_output=True, check=True)
        *grids, tetgen, off, hull, stl, obj = json.loads(read.stdout)
        for mesh in *grids, tetgen:
            self.assertEqual(mesh["points"][-40:], [list(p) for p in POINTS])
            self.assertEqual(mesh["cells"], {"tetra": facts["tetrahedra"]})
            self.assertAlmostEqual(mesh["volume"] / facts["hullVolume"], 1)
        first = [0, *range(2, 41)]
        for mesh, name in zip(grids, ('w & "v"', "w_&_\"v\"", "w & 'v'")):
            self.assertEqual(mesh["pointData"]["inputIndex"], first)
            self.assertEqual((mesh["pointData"]["n"], mesh["pointData"][name]), (first, [i / 8 for i in first]))
        for mesh in off, hull, stl, obj:
            self.assertEqual(mesh["cells"], {"triangle": facts["hullFacets"]})
            self.assertEqual(len(mesh["points"]), facts["hullVertices"])
            self.assertAlmostEqual(mesh["volume"] / facts["hullVolume"], 1, 3 if mesh is stl else 7)

    def testMeshioReadsShapesOfTheVolumeThatTheSummarySays(self):
        if importlib.util.find_spec("meshio") is None:
            self.skipTest(f"{sys.executable} has no meshio (tools/packages.sh)")
        files = [self.folder / ("m" + s) for s in (".vtu", ".vtk", ".msh", ".ele", ".off", ".ply", ".stl", ".obj")]
        points = lines([[random.random() for _ in range(3)] for _ in range(200)]).encode()
        for args in ["--alpha", "0.2"], ["--alpha", "auto"], ["--max-edge", "0.4"]:
            with self.subTest(args):
                facts = json.loads(run("--json", "--quality", *args, *(a for f in files for a in ("-o", f)), input=points).stdout)
                read = json.loads(subprocess.check_output([sys.executable, MESHIO_TOOL, *files], stderr=subprocess.DEVNULL))
                self.assertLess(facts["tetrahedraLeft"], facts["tetrahedra"])
                for i, mesh in enumerate(read):
                    kind = {"tetra": facts["tetrahedraLeft"]} if i < 4 else {"triangle": facts["triangles"]}
                    self.assertEqual(mesh["cells"], kind)
                    self.assertAlmostEqual(mesh["volume"] / facts["volume"], 1, 5)
                for mesh in read[:3]:
                    values = mesh["cellData"]
                    self.assertAlmostEqual(sum(values["volume"]), facts["volume"])
                    self.assertEqual(len(set(values["component"])), facts["components"])
                    for name, measure in facts["quality"].items():
                        self.assertEqual([min(values[name]), max(values[name])], [measure["min"], measure["max"]])

    def testVtkReadsVoronoiCellsThatFillTheHull(self):
        if importlib.util.find_spec("vtk") is None:
            self.skipTest(f"{sys.executable} has no vtk")
        program = """import json, sys, vtk
reader = vtk.vtkXMLUnstructuredGridReader()
reader.SetFileName(sys.argv[1])
reader.Update()
grid, data = reader.GetOutput(), reader.GetOutput().GetCellData()
cells = []
for i in range(grid.GetNumberOfCells()):
    faces = (grid.GetCell(i).GetFace(k) for k in range(grid.GetCell(i).GetNumberOfFaces()))
    cells.append({"faces": [[f.GetPointId(k) for k in range(f.GetNumberOfPoints())] for f in faces]})
    for k in range(data.GetNumberOfArrays()):
        cells[-1][data.GetArrayName(k)] = data.GetArray(k).GetTuple(i)
json.dump([[grid.GetPoint(i) for i in range(grid.GetNumberOfPoints())], cells], sys.stdout)"""
        raster = [(x, y, z) for x in range(4) for y in range(4) for z in range(4)]
        points = [raster[0]] + raster + [[3 * random.random() for _ in range(3)] for _ in range(100)]
        rows = [f"{row},{i},7,8\n" for i, row in enumerate(lines(points, ",").split())]
        file = self.folder / "cells.vtu"
        facts = json.loads(run("--json", "--voronoi", "-o", file, self.write("a.csv", "x,y,z,red,green,blue\n" + "".join(rows))).stdout)
        corners, cells = json.loads(subprocess.check_output([sys.executable, "-c", program, file]))
        self.assertEqual([c["inputIndex"] for c in cells], [[i] for i in range(len(points)) if i != 1])
        self.assertEqual([c["RGB"] for c in cells], [[i, 7, 8] for i in range(len(points)) if i != 1])
        self.assertEqual(sum(c["unbounded"][0] for c in cells), facts["unboundedCells"])
        for cell in cells:
            origin, volume = corners[cell["faces"][0][0]], 0
            for a, *others in ([[u - o for u, o in zip(corners[i], origin)] for i in face] for face in cell["faces"]):
                for b, c in zip(others, others[1:]):
                    volume += sum(a[i] * (b[i - 2] * c[i - 1] - b[i - 1] * c[i - 2]) for i in range(3)) / 6
            self.assertAlmostEqual(volume, cell["volume"][0])
        self.assertAlmostEqual(sum(c["volume"][0] for c in cells), 27)

    def testVtkReadsWhatIsWritten(self):
        if importlib.util.find_spec("vtk") is None:
            self.skipTest(f"{sys.executable} has no vtk")
        program = """import sys, vtk
for reader, file in (vtk.vtkXMLUnstructuredGridReader(), sys.argv[1]), (vtk.vtkUnstructuredGridReader(), sys.argv[2]):
    reader.SetFileName(file)
    if file.endswith("k"): reader.ReadAllScalarsOn()
    reader.Update()
    grid, data = reader.GetOutput(), reader.GetOutput().GetPointData()
    arrays = [data.GetArray(i) for i in range(data.GetNumberOfArrays())]
    print(grid.GetNumberOfCells(), *(f"{a.GetName()}:{a.GetDataTypeAsString()}:{a.GetRange()[1]:g}" for a in arrays))"""
        files = [self.folder / name for name in ("m.vtu", "m.vtk")]
        rows = [f"{row},{i},{i / 8}\n" for i, row in enumerate(lines(POINTS, ",").split())]
        points = self.write("a.csv", "x,y,z,blue,w\n" + "".join(rows))
        facts = json.loads(run("--json", points, "-o", files[0], "-o", files[1]).stdout)
        expected = f"{facts['tetrahedra']} inputIndex:int:39 blue:unsigned char:39 w:double:4.875\n"
        self.assertEqual(subprocess.check_output([sys.executable, "-c", program, *files]).decode(), 2 * expected)

    def testGmshReadsWhatIsWritten(self):
        if subprocess.run([sys.executable, "-c", "import gmsh"], capture_output=True).returncode:  # or not its libraries
            self.skipTest(f"{sys.executable} has no gmsh (tools/packages.sh)")
        mesh = self.folder / "m.msh"
        points = lines(POINTS[:1] + POINTS, tail=" 7").encode()
        facts = json.loads(run("--json", "-o", mesh, "--columns", "x,y,z,w", input=points).stdout)
        tool = MESHIO_TOOL.parent / "read_with_gmsh.py"
        read = json.loads(subprocess.check_output([sys.executable, tool, mesh]))
        self.assertEqual((read["nodes"], read["tets"]), ([*range(1, 41)], facts["tetrahedra"]))
        self.assertEqual(read["nodeData"], {"inputIndex": [0, *range(2, 41)], "w": [7] * 40})
        self.assertAlmostEqual(read["volume"] / facts["hullVolume"], 1)


if __name__ == "__main__":
    unittest.main()
