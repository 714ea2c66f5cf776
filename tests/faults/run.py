#!/usr/bin/env python3
"""run.py TREE RESULTS [REGEX]: applies each fault of faults.txt, whose id matches, to the checkout TREE alone, builds and
runs the tests that are expected to notice it, then, where none does, those of the named folders; adds caught or
survived to RESULTS, what failing tests printed to RESULTS.log, and restores the source. A fault that RESULTS names is
passed over, so a run goes on where it ended. Status 1 where a fault survived or fits no longer.
run.py TREE: only says which no longer fit.
A line of the list: id ¦ file ¦ old ¦ new ¦ regex of tests ¦ folders."""
import os, re, subprocess, sys, time
tree, results = (sys.argv[1:3] + [""])[:2]
only = re.compile(sys.argv[3] if len(sys.argv) > 3 else "")
build = tree + "/build/dev"

def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

def configure():  # quick to link, and nothing is linked again for a library that it only loads
    subprocess.run(["cmake", "--preset", "dev", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON", "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache",
        *(f"-DCMAKE_{kind}_LINKER_FLAGS=-fuse-ld=lld" for kind in ("EXE", "SHARED", "MODULE"))], cwd=tree, check=True)
    subprocess.run(["ninja", "-C", build], check=True)

def programs(regex):
    lines = output_of("ninja", "-C", build, "-t", "targets", "all").stdout
    return sorted({m for m in re.findall(r"^(tst_\w+): phony", lines, re.M) if re.fullmatch(regex, m)})

def survives(tests, folder):
    goals = tests and programs(tests) or [f"tests/{folder}/all"]
    built = output_of("ninja", "-j1", "-C", build, *goals)
    if built.returncode:
        return "doesn't build: " + " ".join(re.findall(r"error: .*", built.stdout)[:1])
    ran = output_of("ctest", "--test-dir", f"{build}/tests/{folder}", "--timeout", "60", "--stop-on-failure", "-LE", "build",
        "--output-on-failure", *(["-R", f"^({tests})$"] if tests else []))
    if ran.returncode:
        with open(results + ".log", "a") as log:
            log.write(f"==== {fault[0]} {fault[2]!r}\n{ran.stdout}")
        failed = re.findall(r"\d+ - (\w+) \((\w+)", ran.stdout)
        return "caught " + " ".join(f"{test}({why})" for test, why in failed) if failed else "broken " + ran.stdout[-300:]

def outcome(path, old, new, tests, folders):
    with open(f"{tree}/{path}") as file:
        text = file.read()
    if text.count(old) != 1 or not results:
        return "stale" if text.count(old) != 1 else "caught: fits"
    try:
        with open(f"{tree}/{path}", "w") as file:
            file.write(text.replace(old, new))
        steps = [(tests, folders.split()[0])] * bool(tests) + [("", folder) for folder in folders.split()]
        return next(filter(None, (survives(*step) for step in steps)), "survived")
    finally:
        with open(f"{tree}/{path}", "w") as file:
            file.write(text)

os.nice(5)
if results:
    configure()
told_before = set(re.findall(r"^\w+", open(results).read(), re.M)) if os.path.exists(results) else set()
bad = 0
for line in open(os.path.dirname(os.path.abspath(__file__)) + "/faults.txt").readlines():
    name, *fault = (part.strip(" \n").replace("\\n", "\n") for part in line.split("¦"))
    if only.search(name) and name not in told_before:
        start, told = time.time(), outcome(*fault)
        bad += not told.startswith("caught")
        if told == "stale":
            print(name, "fits no longer")
        with open(results or os.devnull, "a") as out:
            out.write(f"{name}\t{told}\t{time.time() - start:.0f}s\t{fault[0].split('/')[-1]}: {fault[2][:60]!r}\n")
sys.exit(bad > 0)
