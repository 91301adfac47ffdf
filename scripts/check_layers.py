#!/usr/bin/env python3
"""Holds every include of src/ to the DEPENDS of its module's add_module(), both ways: what a module includes it
names there, and what it names there it includes. Modules form no circle."""
import os
import re
import sys

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "src")
faults = []


def read(path):
    with open(path, encoding="utf-8") as f:
        return f.read()


def declared():
    """{module: modules that it names}; the module of the folder a/b is called a_b."""
    modules = {}
    for folder, folders, names in os.walk(ROOT):
        folders.sort()
        if "CMakeLists.txt" not in names:
            continue
        text = re.sub(r"#.*", "", read(os.path.join(folder, "CMakeLists.txt")))
        for call in re.finditer(r"add_module\(([^)]*)\)", text):
            name, *words = call.group(1).split()
            where = os.path.relpath(folder, ROOT)
            if name != where.replace(os.sep, "_"):
                faults.append(f"{where}/CMakeLists.txt: the module of this folder is not {name}")
            section, named = "", []
            for word in words:
                if word in ("SOURCES", "DEPENDS", "LIBS"):
                    section = word
                elif section == "DEPENDS":
                    named.append(word)
            modules[name] = named
    return modules


def reached(module, seen=None):
    seen = set() if seen is None else seen
    for other in modules.get(module, []):
        if other not in seen:
            seen.add(other)
            reached(other, seen)
    return seen


def owner(path):
    """The module of a file below src/: the one of the deepest folder that is a module."""
    folder = os.path.dirname(path)
    while folder and folder.replace("/", "_") not in modules:
        folder = os.path.dirname(folder)
    return folder.replace("/", "_")


modules = declared()
if not modules:
    faults.append("no module found")
included = {m: set() for m in modules}
own_files = {m: 0 for m in modules}
for folder, folders, names in os.walk(ROOT):
    folders.sort()
    for name in sorted(names):
        if not name.endswith((".h", ".cpp")):
            continue
        path = os.path.relpath(os.path.join(folder, name), ROOT).replace(os.sep, "/")
        module = owner(path)
        if not module:
            faults.append(f"{path}: belongs to no module")
            continue
        own_files[module] += 1
        for number, line in enumerate(read(os.path.join(ROOT, path)).splitlines(), 1):
            where = f"{path}:{number}"
            include = re.match(r'\s*#\s*include\s*"([^"]+)"', line)
            if include:
                header = include.group(1)
                other = owner(header)
                if not other or not os.path.isfile(os.path.join(ROOT, header)):
                    faults.append(f"{where}: {header} is no file of src/")
                elif other != module:
                    included[module].add(other)
                    if other not in modules[module]:
                        faults.append(f"{where}: {module} does not name {other} in its DEPENDS")
                    if header.endswith("_internal.h") and header.split("/")[0] != path.split("/")[0]:
                        faults.append(f"{where}: {header} is private to {header.split('/')[0]}/")
            elif re.match(r"\s*#\s*include\s*<Q[A-Z]", line) and module != "gui":
                faults.append(f"{where}: Qt belongs to gui/ alone")
for module, named in modules.items():
    for other in named:
        if other not in modules:
            faults.append(f"{module}: there is no module {other}")
        elif own_files[module] and other not in included[module]:  # one without files only gathers others
            faults.append(f"{module}: names {other} and includes nothing of it")
    if module in reached(module):
        faults.append(f"{module}: stands on itself")
print("\n".join(faults) if faults else f"layers: {len(modules)} modules hold to what they declare")
sys.exit(1 if faults else 0)
