"""The survivors that somebody looked at: tests/mutants/explained.txt.

An entry names a file and the text of a line, then one or more changes of it (and of further lines), then why
nobody can notice them:

    src/module/file.cpp
    line: if (a < b) swap(a, b);
    change: operator: < -> <=
    why: equal ones change places unseen

"*" as a change stands for every change of the line."""
import os


class Explained:
    def __init__(self, path):
        self.entries = {}  # (file, line text) -> labels
        if not os.path.isfile(path):
            return
        with open(path, encoding="utf-8") as f:
            name, line, pending = "", "", []  # the lines that wait for their reason, each with its changes
            for n, raw in enumerate(f, 1):
                text = raw.strip()
                if not text or text.startswith("#"):
                    continue
                if text.startswith("line: "):
                    pending.append((text[6:], []))
                elif text.startswith("change: ") and (pending or line):
                    pending = pending or [(line, [])]  # one more of the line that was explained last
                    pending[-1][1].append(text[8:])
                elif text.startswith("why: "):
                    if not (name and pending and all(changes for _, changes in pending) and text[5:]):
                        raise SystemExit(f"{path}:{n}: a reason without file, line or change")
                    for line, changes in pending:
                        self.entries.setdefault((name, line), set()).update(changes)
                    pending = []
                elif text.startswith("src/"):
                    if pending:
                        raise SystemExit(f"{path}:{n}: a line without a reason before it")
                    name, line = text, ""
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
