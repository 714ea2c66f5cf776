#!/usr/bin/env python3
"""run.py TREE LIST RESULTS [REGEX]: applies each fault of LIST to TREE alone, builds and runs the tests expected to
notice it (then, where none does, those of the named folders), writes caught/survived to RESULTS and restores.
A line: id ¦ file ¦ old ¦ new ¦ test regex ¦ folders."""
import re, subprocess, sys, time
tree, table, results = sys.argv[1:4]
only = re.compile(sys.argv[4] if len(sys.argv) > 4 else "")
build = tree + "/build/dev"

def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

def targets(regex):
    lines = subprocess.run(["ninja", "-C", build, "-t", "targets", "all"], capture_output=True, text=True).stdout
    return sorted({m for m in re.findall(r"^(tst_\w+): phony", lines, re.M) if re.fullmatch(regex, m)})

def ctest(folder, *more):
    return output_of("ctest", "--test-dir", f"{build}/tests/{folder}", "--timeout", "60", "--stop-on-failure", "-j2", *more)

def run(fault):
    name, path, old, new, tests, folders = fault
    full = f"{tree}/{path}"
    text = open(full).read()
    old, new = old.replace("\\n", "\n"), new.replace("\\n", "\n")
    if text.count(old) != 1:
        return f"stale ({text.count(old)})"
    try:
        open(full, "w").write(text.replace(old, new))
        steps = [(targets(tests), folders.split()[0], ["-R", f"^({tests})$"])] if tests and targets(tests) else []
        steps += [([f"tests/{f}/all"], f, []) for f in folders.split()]
        for goals, folder, more in steps:
            built = output_of("ninja", "-C", build, *goals)
            if built.returncode:
                return "doesn't build: " + " ".join(re.findall(r"error: .*", built.stdout)[:1])
            ran = ctest(folder, *more)
            if ran.returncode:
                failed = re.findall(r"\d+ - (\w+) \((\w+)", ran.stdout)
                return "caught " + " ".join(f"{t}({why})" for t, why in failed) if failed else "broken " + ran.stdout[-300:]
        return "survived"
    finally:
        open(full, "w").write(text)

for line in open(table):
    fault = [part.strip(" \n") for part in line.split("¦")]
    if len(fault) != 6 or not only.search(fault[0]):
        continue
    start = time.time()
    outcome = run(fault)
    with open(results, "a") as out:
        out.write(f"{fault[0]}\t{outcome}\t{time.time() - start:.0f}s\t{fault[1].split('/')[-1]}: {fault[3][:60]}\n")
