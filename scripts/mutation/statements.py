"""Changes of branches and statements: conditions, dropped branches, deleted statements, results left empty."""
KEYWORDS_NO_STATEMENT = ("using", "namespace", "static_assert", "typedef", "template", "friend", "public", "private", "protected")
PLAIN_RESULTS = ("true", "false", "nullptr", "{}", '""', "{};", "npos")


def statement_changes(src):
    found = []
    done = set()
    for i, t in enumerate(src.tokens):
        if t.code and t.pair > 0 and i not in done and not _control(src, i):
            Reader(src, found, done).block(i)
    return found


def _control(src, i):
    return src.at(i - 1) in ("else", "do", "try")


class Reader:
    def __init__(self, src, found, done):
        self.src, self.found, self.done = src, found, done

    def add(self, first, last, new, rule):
        t = self.src.tokens
        self.found.append((t[first].start, t[last].end, new, rule))

    def block(self, i):
        """Statements between the brace at i and its pair; returns the index after it."""
        end = self.src.tokens[i].pair
        if i in self.done:
            return end + 1
        self.done.add(i)
        j = i + 1
        while j < end:
            j = self.statement(j, end, sole=False)
        return end + 1

    def statement(self, i, end, sole):
        """One statement; `sole`: it is all of a branch, whose condition is changed anyway."""
        src, word = self.src, self.src.at(i)
        if word == "{":
            return self.block(i) if src.tokens[i].code or src.at(i - 1) in (")", "else", "do", "try", ";", "}") else src.tokens[i].pair + 1
        if word == ";":
            return i + 1
        if word == "if":
            return self.branch(i, end)
        if word in ("while", "switch", "for") and src.at(i + 1) == "(":
            return self.loop(i, end, word)
        if word == "do":
            j = self.statement(i + 1, end, sole=True)
            if src.at(j) == "while":
                close = src.tokens[j + 1].pair
                self.add(j + 2, close - 1, "false", "branch")
                return close + 2
            return j
        if word == "try":
            j = self.block(i + 1)
            while src.at(j) == "catch":
                j = self.block(src.tokens[j + 1].pair + 1)
            return j
        if word == "case" or (word == "default" and src.at(i + 1) == ":"):
            j = i
            while j < end and src.at(j) != ":":
                j += 1
            return j + 1
        return self.simple(i, end, sole)

    def branch(self, i, end):
        src = self.src
        head = i + 1
        fixed = src.at(head) == "constexpr"
        head += fixed
        close = src.tokens[head].pair
        first, declares = self.condition(head, close)
        if not fixed:
            self.condition_changes(first, close - 1, declares)
        j = self.statement(close + 1, end, sole=True)
        if src.at(j) == "else":
            after = self.statement(j + 1, end, sole=True)
            self.add(j, after - 1, "", "branch")
            return after
        return j

    def condition(self, head, close):
        """The first token of the condition proper, and whether it declares a name."""
        first, declares, k = head + 1, False, head + 1
        while k < close:
            t = self.src.tokens[k]
            if t.text == ";":
                first, declares = k + 1, False
            elif t.text == "=":
                declares = True
            k = t.pair + 1 if t.text in ("(", "[", "{") and t.pair > 0 else k + 1
        return first, declares

    def condition_changes(self, first, last, declares):
        text = self.src.of(first, last)
        if declares:
            self.add(first, last, text + "; false", "branch")
            return
        self.add(first, last, "true", "branch")
        self.add(first, last, "false", "branch")

    def loop(self, i, end, word):
        src = self.src
        close = src.tokens[i + 1].pair
        if word == "while":
            self.add(i + 2, close - 1, "false", "branch")
        stops = [k for k in self.flat(i + 2, close) if src.at(k) == ";"]
        if word == "for" and len(stops) == 2 and stops[1] > stops[0] + 1:
            self.add(stops[0] + 1, stops[1] - 1, "false", "branch")
        j = self.statement(close + 1, end, sole=True)
        if word == "for" and len(stops) < 2:
            self.add(i, j - 1, ";", "statement")
        return j

    def flat(self, first, end):
        k = first
        while k < end:
            yield k
            t = self.src.tokens[k]
            k = t.pair + 1 if t.text in ("(", "[", "{") and t.pair > 0 else k + 1

    def simple(self, i, end, sole):
        """An expression, a declaration, a jump; lambdas in it are blocks of their own."""
        src = self.src
        j, assigned = i, -1
        while j < end and src.at(j) != ";":
            t = src.tokens[j]
            if t.text == "=" and assigned < 0:
                assigned = j
            if t.text == "{" and t.code:
                self.block(j)
                j = t.pair + 1
            elif t.text in ("(", "[", "{") and t.pair > 0:
                for k in range(j + 1, t.pair):
                    if src.tokens[k].code and k not in self.done:
                        self.block(k)
                j = t.pair + 1
            else:
                j += 1
        if j >= end:
            return end
        self.simple_changes(i, j, assigned, end, sole)
        return j + 1

    def simple_changes(self, i, stop, assigned, end, sole):
        src, word = self.src, self.src.at(i)
        text = src.of(i, stop)
        if word in KEYWORDS_NO_STATEMENT:
            return
        if word == "return":
            value = src.of(i + 1, stop - 1) if stop > i + 1 else ""
            if value and value not in PLAIN_RESULTS and not (stop == i + 2 and src.tokens[i + 1].kind in ("num", "str")):
                self.add(i, stop, "return {};", "result")
            if not sole and stop + 1 < end:
                self.add(i, stop, "", "statement")
            return
        if word in ("break", "continue", "throw", "goto", "co_return"):
            if not sole:
                self.add(i, stop, ";", "statement")
            return
        if self.declares(i, stop, assigned):
            if assigned > 0 and src.tokens[assigned + 1].kind not in ("num", "str") and word != "auto" and \
                    src.at(i + 1) != "auto" and src.of(assigned + 1, stop - 1) not in PLAIN_RESULTS and "&" not in src.of(i, assigned) \
                    and "constexpr" not in src.of(i, assigned):
                self.add(assigned, stop - 1, "{}", "result")
            return
        if ".reserve(" in text.split("[")[0]:
            return
        if not sole:
            self.add(i, stop, ";", "statement")

    def declares(self, i, stop, assigned):
        """Whether it is a declaration: two names (or a type's end and a name) side by side before "=", "(" or "{"."""
        src = self.src
        last = assigned if assigned > 0 else stop
        for k in range(i, last):
            t, n = src.tokens[k], src.tokens[k + 1]
            if t.text in ("(", "[") or (t.text == "{"):
                return t.text == "[" and k > i  # structured binding
            if n.kind == "id" and (t.kind == "id" and t.text not in ("delete", "new", "throw", "return", "case") or
                                   t.text in (">", "*", "&", "&&", ">>") and src.text[n.start - 1].isspace() and not src.text[t.start - 1].isspace()):
                return True
        return False
