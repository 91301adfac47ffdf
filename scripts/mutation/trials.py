"""Runs the tests over a change: those that killed before come first, the module's own before those of the modules
that stand on it."""
import glob
import json
import os
import re
from collections import Counter

WIDER = ("formula", "settings", "refdata", "relations", "importfile", "liquidation", "app", "cli")


def depends(tree):
    """folder of src/ -> those it stands on, near and far; the modules inside a folder are one here."""
    direct, folder_of = {}, {}
    for lists in glob.glob(os.path.join(tree, "src", "*", "**", "CMakeLists.txt"), recursive=True):
        folder = os.path.relpath(lists, os.path.join(tree, "src")).split(os.sep)[0]
        with open(lists, encoding="utf-8") as f:
            for m in re.finditer(r"add_module\(([^)]*)\)", f.read()):
                words, on = m.group(1).split(), False
                folder_of[words[0]] = folder
                named = direct.setdefault(folder, set())
                for w in words[1:]:
                    if w in ("SOURCES", "DEPENDS", "LIBS"):
                        on = w == "DEPENDS"
                    elif on:
                        named.add(w)
    direct = {m: {folder_of[d] for d in named} - {m} for m, named in direct.items()}

    def reach(m, seen):
        for d in direct.get(m, ()):
            if d not in seen:
                seen.add(d)
                reach(d, seen)
        return seen

    return {m: reach(m, set()) for m in direct}


class Program:
    def __init__(self, name, tree):
        self.name, self.module = name, name.split("_", 1)[1]
        self.is_data = name.startswith("data_")
        self.seconds, self.left_out = 0.0, []
        self.cases = sorted(glob.glob(os.path.join(tree, "tests", "data", self.module, "*.test"))) if self.is_data else []

    def baseline(self, worker, slow):
        """Runs unchanged, to learn how long it takes and what fails or crawls without any change."""
        path = worker.link(self.name, changed=False)
        if path is None:
            raise RuntimeError(f"{self.name} does not link")
        if self.is_data:
            code, _, self.seconds = worker.run([path, *self.cases], 600, 300)
            if code != 0:
                good = [c for c in self.cases if worker.run([path, c], 120, 60)[0] == 0]
                self.left_out = [f"{os.path.basename(c)} (fails unchanged)" for c in self.cases if c not in good]
                self.cases = good
            return
        told = os.path.join(worker.folder, "cases.json")
        worker.run([path, f"--gtest_output=json:{told}"], 900, 600)
        with open(told, encoding="utf-8") as f:
            suites = json.load(f)["testsuites"]
        for suite in suites:
            for case in suite["testsuite"]:
                name, took = f"{suite['name']}.{case['name']}", float(case["time"].rstrip("s"))
                if case.get("failures"):
                    self.left_out.append(f"{name} (fails unchanged)")
                elif took > slow:
                    self.left_out.append(f"{name} ({took:.0f} s)")
                else:
                    self.cases.append(name)
                    self.seconds += took

    def command(self, path, cases):
        if self.is_data:
            return [path, *cases]
        return [path, "--gtest_filter=" + ":".join(cases), "--gtest_fail_fast", "--gtest_brief=1"]

    def killer(self, text):
        if self.is_data:
            m = re.search(r"^(\S+\.test):\d+: ", text, re.M)
            return os.path.basename(m.group(1)) if m else ""
        m = re.search(r"^\[  FAILED  \] ([\w/.]+)", text, re.M)
        return m.group(1) if m else ""


class Trials:
    def __init__(self, scratch, modules, narrow, slow, say):
        self.scratch, self.say = scratch, say
        self.narrow, self.slow = narrow, slow  # seconds; a single case above it runs for no change
        self.reach = depends(scratch.tree)
        self.programs = {}
        self.kills = {}  # source file -> Counter of (program, case)
        self.modules = modules

    def prepare(self, worker):
        names = [f"{kind}_{m}" for m in WIDER for kind in ("data", "test")
                 if m in self.modules or not self.narrow and any(x in self.reach.get(m, ()) for x in self.modules)]
        for name in self.scratch.make(names):
            p = Program(name, self.scratch.tree)
            p.baseline(worker, self.slow)
            self.programs[name] = p
            self.say(f"{name}: {len(p.cases)} cases in {p.seconds:.1f} s"
                     + (f", left out: {', '.join(p.left_out)}" if p.left_out else ""))

    def order(self, module):
        own = [p for p in self.programs.values() if p.module == module]
        wider = [p for p in self.programs.values() if module in self.reach.get(p.module, ())]
        return own + sorted(wider, key=lambda p: (WIDER.index(p.module), p.seconds))

    def learn(self, name, by):
        if ":" in by:
            self.kills.setdefault(name, Counter())[tuple(by.split(":", 1))] += 1

    def run(self, worker, name, text, original):
        """(status, who killed it) of one changed text of a file."""
        worker.begin(name)
        if not worker.compile(text):
            return "invalid", ""
        module = name.split("/")[1]
        past = self.kills.get(name, Counter())
        linked = {}
        order = self.order(module)
        # Every program's proven killers first, most kills first; then the whole programs.
        heads = []
        for p in order[:2] + [q for q in order[2:] if any(k[0] == q.name for k in past)]:
            best = [case for (prog, case), _ in past.most_common(12) if prog == p.name][:3]
            cases = [c for c in p.cases if (os.path.basename(c) if p.is_data else c) in best]
            if cases:
                heads.append((sum(past[p.name, b] for b in best), p, cases))
        heads.sort(key=lambda h: -h[0])
        for _, p, cases in heads[:3]:
            status = self.once(worker, linked, p, cases)
            if status:
                return self.told(name, status)
        for p in order:
            if p.module != module and worker.same_code(text, original):
                return "same", ""
            if p.cases:
                status = self.once(worker, linked, p, p.cases)
                if status:
                    return self.told(name, status)
        return ("same" if worker.same_code(text, original) else "survived"), ""

    def told(self, name, status):
        self.learn(name, status[1])
        return status

    def once(self, worker, linked, p, cases):
        if p.name not in linked:
            linked[p.name] = worker.link(p.name)
        if linked[p.name] is None:
            return "invalid", "link"
        allowed = max(4, int(10 * p.seconds) + 2)
        code, text, _ = worker.run(p.command(linked[p.name], cases), 4 * allowed, allowed)
        if code is None:
            return "timeout", p.name
        if code != 0:
            return "killed", f"{p.name}:{p.killer(text)}"
        return None
