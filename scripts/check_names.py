#!/usr/bin/env python3
"""The payroll speaks Spanish, everything under it English: no identifier, file or folder of the English modules, of the
tools, the benchmarks and their tests holds a word of scripts/spanish_words.txt."""
import os
import re
import subprocess
import sys

ENGLISH = (
    "src/base/", "src/ports/", "src/db/", "src/jetsql/", "src/mdb/", "src/engine_", "tools/", "bench/", "scripts/", "cmake/",
    "tests/support/", "tests/base/", "tests/ports/", "tests/db/", "tests/jetsql/", "tests/mdb/", "tests/engine", "tests/conformance/",
)  # fmt: skip
ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
# What these show or ask by its own name belongs to the domain.
USERS = ("bench/", "tools/screenshots/", "tests/engine_odbc/qualifiers_test.cpp")
SYSTEM = {"ActuBarra"}  # a routine of the system whose port stands below the domain
# What is no identifier: comments, texts and numbers.
TOKEN = re.compile(
    r"""//[^\n]*|/\*.*?\*/|R"([^("\s]*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])*'|\d(?:'?[\w.])*|[A-Za-z_]\w*""", re.S
)


def words_of(identifier):
    return [w.lower() for w in re.findall(r"[A-Z]+(?![a-z])|[A-Z]?[a-z]+", identifier)]


def identifiers(path):
    """(identifier, line) of a file, each once."""
    with open(path, encoding="utf-8") as f:
        text = f.read()
    seen = set()
    for m in TOKEN.finditer(text):
        token = m.group(0)
        if token not in seen and (token[0].isalpha() or token[0] == "_") and not token.startswith('R"'):
            seen.add(token)
            yield token, text.count("\n", 0, m.start()) + 1


def main():
    os.chdir(ROOT)
    with open("scripts/spanish_words.txt", encoding="utf-8") as f:
        spanish = set(f.read().split())
    names = subprocess.run(["git", "ls-files", "-z"], capture_output=True, text=True, check=True).stdout.split("\0")
    sources = [n for n in names if n.endswith((".h", ".cpp")) and os.path.isfile(n)]
    domain = {i for n in sources if n.startswith("src/") and not n.startswith(ENGLISH) for i, _ in identifiers(n)}
    faults = []
    for path in names:
        if path.startswith(ENGLISH):
            found = [w for w in words_of(path.split("/", 1)[1]) if w in spanish and path != "scripts/spanish_words.txt"]
            if found:
                faults.append(f"{path}: {', '.join(found)}")
    for path in sources:
        if not path.startswith(ENGLISH):
            continue
        for identifier, line in identifiers(path):
            if identifier in SYSTEM or path.startswith(USERS) and identifier in domain:
                continue
            found = [w for w in words_of(identifier) if w in spanish]
            if found:
                faults.append(f"{path}:{line}: {identifier} ({', '.join(found)})")
    print("\n".join(faults) if faults else "names: the English modules speak English")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
