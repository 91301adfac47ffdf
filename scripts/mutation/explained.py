"""The survivors that somebody looked at: tests/mutants/explained.txt.

An entry names a file and the text of a line, then one or more changes of it, then why nobody can notice them:

    src/module/file.cpp
    line: if (a < b) swap(a, b);
    change: operator: < -> <=
    why: equal ones change places unseen

"*" as a change stands for every change of the line; several lines may share a reason."""
import os


class Explained:
    def __init__(self, path):
        self.entries = {}  # (file, line text) -> labels
        if not os.path.isfile(path):
            return
        with open(path, encoding="utf-8") as f:
            name, lines = "", []  # those that wait for their reason: (line, changes)
            for n, raw in enumerate(f, 1):
                text = raw.strip()
                if not text or text.startswith("#"):
                    continue
                if text.startswith("line: "):
                    lines.append((text[6:], []))
                elif text.startswith("change: ") and lines:
                    lines[-1][1].append(text[8:])
                elif text.startswith("why: "):
                    if not (name and lines and all(line and changes for line, changes in lines) and text[5:]):
                        raise SystemExit(f"{path}:{n}: a reason without file, line or change")
                    for line, changes in lines:
                        self.entries.setdefault((name, line), set()).update(changes)
                    lines = []
                elif text.startswith("src/"):
                    if lines:
                        raise SystemExit(f"{path}:{n}: a line without a reason before it")
                    name = text
                else:
                    raise SystemExit(f"{path}:{n}: not understood: {text}")

    def has(self, name, line, label):
        labels = self.entries.get((name, line), ())
        return label in labels or "*" in labels

    def stale(self, tree):
        """Entries whose file or line is there no more."""
        gone, lines = [], {}
        for name, line in self.entries:
            if name not in lines:
                path = os.path.join(tree, name)
                with open(path, encoding="utf-8") if os.path.isfile(path) else open(os.devnull) as f:
                    lines[name] = {x.strip() for x in f}
            if line not in lines[name]:
                gone.append(f"{name}: {line}")
        return gone
