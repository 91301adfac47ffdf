"""The copy of the tree in which changes are made, what is built in it once, and how a changed file gets into a
test program: compiled alone, its object before the libraries that hold the unchanged one."""
import hashlib
import json
import os
import re
import resource
import shlex
import shutil
import signal
import subprocess
import tempfile
import time

COPIED = ("CMakeLists.txt", "CMakePresets.json", "README.md", "CHANGELOG.md", "src", "tests", "cmake", "tools", "demo", "docs",
          "packaging", "scripts", "bench")


def run(command, **kw):
    done = subprocess.run(command, capture_output=True, text=True, errors="replace", **kw)
    if done.returncode != 0:
        raise RuntimeError(f"{command if isinstance(command, str) else ' '.join(command)}\n{done.stdout[-3000:]}{done.stderr[-3000:]}")
    return done.stdout


class Scratch:
    def __init__(self, tree, folder, jobs):
        self.original, self.folder, self.jobs = tree, folder, jobs
        self.tree = os.path.join(folder, "tree")
        self.build = os.path.join(self.tree, "build", "release")
        self.commands, self.links, self.prepared = {}, {}, {}
        self.world = ""

    def sync(self):
        """Brings the copy up to the tree as it stands, committed or not; `world` names that state."""
        listed = run(["git", "-C", self.original, "ls-files", "-co", "--exclude-standard", "-z"]).split("\0")
        wanted = {n for n in listed if n.split("/")[0] in COPIED and os.path.isfile(os.path.join(self.original, n))}
        digest = hashlib.sha256()
        for name in sorted(wanted):
            with open(os.path.join(self.original, name), "rb") as f:
                bytes_ = f.read()
            if name.split("/")[0] in ("src", "tests"):
                digest.update(name.encode() + b"\0" + bytes_)
            target = os.path.join(self.tree, name)
            if os.path.isfile(target):
                with open(target, "rb") as f:
                    if f.read() == bytes_:
                        continue
            os.makedirs(os.path.dirname(target), exist_ok=True)
            with open(target, "wb") as f:
                f.write(bytes_)
            shutil.copymode(os.path.join(self.original, name), target)
        for top in ("src", "tests"):
            for where, _, names in os.walk(os.path.join(self.tree, top)):
                for n in names:
                    path = os.path.join(where, n)
                    if os.path.relpath(path, self.tree) not in wanted:
                        os.remove(path)
        self.world = digest.hexdigest()[:12]

    def make(self, targets):
        run(["cmake", "--preset", "release", "-DIDM_GUI=OFF", "-DIDM_BENCH=OFF"], cwd=self.tree)
        known = run(["ninja", "-C", self.build, "-t", "targets", "all"])
        targets = [t for t in targets if re.search(rf"^{t}: ", known, re.M)]
        run(["cmake", "--build", self.build, "-j", str(self.jobs), "--target", *targets])
        with open(os.path.join(self.build, "compile_commands.json"), encoding="utf-8") as f:
            for entry in json.load(f):
                self.commands[os.path.relpath(entry["file"], self.tree)] = shlex.split(entry["command"])
        for t in targets:
            for line in run(["ninja", "-C", self.build, "-t", "commands", t]).splitlines():
                for part in line.split(" && "):
                    if f" -o {t} " in part:
                        self.links[t] = shlex.split(part)
        return [t for t in targets if t in self.links]

    def compile_flags(self, name):
        """The file's own command without what optimises, warns or names files."""
        words, out = self.commands[name], []
        words = [w for w in words if not w.endswith("ccache")]
        skip = False
        for w in words[1:]:
            if skip:
                skip = False
            elif w in ("-o", "-c", "-MF", "-MT"):
                skip = True
            elif not (re.match(r"-[OWM]", w) or w == "-g"):
                out.append(w)
        return words[0], out

    def worker(self, number):
        return Worker(self, number)


class Worker:
    """One changed file at a time, in a folder of its own."""

    def __init__(self, scratch, number):
        self.scratch = scratch
        self.folder = os.path.join(scratch.folder, f"worker{number}")
        shutil.rmtree(self.folder, ignore_errors=True)
        os.makedirs(os.path.join(self.folder, "tmp"))
        self.clang = shutil.which("clang++")
        self.linker = next((f"-fuse-ld={n}" for n, p in (("mold", "mold"), ("lld", "ld.lld"), ("gold", "ld.gold")) if shutil.which(p)), None)
        self.name = None
        self.object = os.path.join(self.folder, "changed.o")
        self.plain = self.asked = None  # the unchanged file's code; the last answer of same_code

    def begin(self, name):
        """Compiles the headers of a file once, for all its changes."""
        if self.name == name:
            return
        self.name, self.plain, self.asked = name, None, None
        self.source = os.path.join(self.folder, os.path.basename(name))
        compiler, flags = self.scratch.compile_flags(name)
        home = os.path.dirname(os.path.join(self.scratch.tree, name))
        self.flags = flags + ["-iquote", home]
        self.compiler = self.clang or compiler
        with open(os.path.join(self.scratch.tree, name), encoding="utf-8") as f:
            includes = "".join(line for line in f if re.match(r"\s*#\s*include", line))
        head = os.path.join(self.folder, "head.h")
        with open(head, "w", encoding="utf-8") as f:
            f.write(includes)
        # With the library's own checks: what reads or writes outside is seen at once.
        self.quick_flags = self.with_headers("-O0", "-D_GLIBCXX_ASSERTIONS")

    def with_headers(self, level, *more):
        """The flags of one level of optimising, with the headers compiled for it."""
        flags, head = [*self.flags, level, "-w", *more], os.path.join(self.folder, "head.h")
        ready = os.path.join(self.folder, f"head{level}.pch") if self.clang else os.path.join(head + ".gch", level)
        os.makedirs(os.path.dirname(ready), exist_ok=True)
        run([self.compiler, *flags, "-x", "c++-header", head, "-o", ready])
        return [*flags, *(["-include-pch", ready] if self.clang else ["-include", head])]

    def write(self, text):
        with open(self.source, "w", encoding="utf-8") as f:
            f.write(text)

    def compile(self, text):
        self.write(text)
        done = subprocess.run([self.compiler, *self.quick_flags, "-c", self.source, "-o", self.object], capture_output=True)
        return done.returncode == 0

    def same_code(self, text, original):
        """Whether the optimiser makes the same code of both: then nobody can ever notice the change."""
        if self.asked and self.asked[0] == text:
            return self.asked[1]
        self.asked = (text, self.compare(text, original))
        return self.asked[1]

    def compare(self, text, original):
        if self.plain is None:
            self.optimised_flags = self.with_headers("-O2")
            self.plain = self.optimised(original)
        code = self.optimised(text)
        return code is not None and code == self.plain

    def optimised(self, text):
        self.write(text)
        out = os.path.join(self.folder, "optimised.o")
        done = subprocess.run([self.compiler, *self.optimised_flags, "-c", self.source, "-o", out], capture_output=True)
        if done.returncode != 0:
            return None
        with open(out, "rb") as f:
            return f.read()

    def link(self, program, changed=True):
        words = list(self.scratch.links[program])
        out = os.path.join(self.folder, program)
        words[words.index("-o") + 1] = out
        words = [w for w in words if not re.match(r"-O\d", w)]
        if self.linker:
            words.insert(1, self.linker)
        if changed:
            words.insert(1, self.object)
        done = subprocess.run(words, cwd=self.scratch.build, capture_output=True, text=True, errors="replace")
        return out if done.returncode == 0 else None

    def run(self, command, seconds, cpu):
        """(exit code or None when it took too long, output, seconds taken)."""
        tmp = os.path.join(self.folder, "tmp")
        env = {k: v for k, v in os.environ.items() if k != "UPDATE_EXPECTED"}
        env["TMPDIR"] = tmp

        def limits():
            resource.setrlimit(resource.RLIMIT_CPU, (cpu, cpu + 1))
            resource.setrlimit(resource.RLIMIT_AS, (6 << 30, 6 << 30))
            resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 30, 1 << 30))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

        began = time.monotonic()
        with tempfile.TemporaryFile() as out:
            child = subprocess.Popen(command, cwd=self.scratch.build, env=env, stdin=subprocess.DEVNULL, stdout=out,
                                     stderr=subprocess.STDOUT, start_new_session=True, preexec_fn=limits)
            try:
                code = child.wait(seconds)
            except subprocess.TimeoutExpired:
                code = None
            try:
                os.killpg(child.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            child.wait()
            out.seek(0, 2)
            size = out.tell()
            out.seek(max(0, size - 2_000_000))
            text = out.read().decode("utf-8", "replace")
        if code is not None and code == -signal.SIGXCPU:
            code = None
        for n in os.listdir(tmp):
            path = os.path.join(tmp, n)
            shutil.rmtree(path, ignore_errors=True) if os.path.isdir(path) else os.remove(path)
        return code, text, time.monotonic() - began
