"""A small reader of C++: tokens, their brackets, and which braces hold statements. It leans on the checked format
(blanks around binary operators, none around template brackets), and a change that it misreads does not compile."""
import re
from dataclasses import dataclass

SCAN = re.compile(
    r"""(?P<skip>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\\n|\\.)*)
      |(?P<raw>(?:u8|u|U|L)?R"(?P<mark>[^()\s\\]{0,16})\(.*?\)(?P=mark)")
      |(?P<str>(?:u8|u|U|L)?"(?:[^"\\\n]|\\.)*")
      |(?P<chr>(?:u8|u|U|L)?'(?:[^'\\\n]|\\.)+')
      |(?P<num>(?:0[xX][0-9a-fA-F']+|\.?[0-9](?:[0-9a-zA-Z_.']|(?<=[eE])[+-])*)[uUlLzZfF]*)
      |(?P<id>[A-Za-z_]\w*)
      |(?P<op>->\*|<=>|<<=|>>=|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)""",
    re.S | re.M | re.X)
CLOSING = {"(": ")", "[": "]", "{": "}"}


@dataclass
class Token:
    kind: str
    text: str
    start: int
    end: int
    pair: int = -1  # index of the bracket's other end
    code: bool = False  # a "{" that opens statements


class Source:
    def __init__(self, text):
        self.text = text
        self.tokens = []
        for m in SCAN.finditer(text):
            if m.lastgroup != "skip" and m.group("skip") is None:
                kind = next(k for k in ("raw", "str", "chr", "num", "id", "op") if m.group(k) is not None)
                self.tokens.append(Token(kind, m.group(), m.start(), m.end()))
        self._pair()
        for i, t in enumerate(self.tokens):
            if t.text == "{" and t.kind == "op":
                t.code = self._opens_statements(i)
        starts = [0] + [m.end() for m in re.finditer("\n", text)]
        self.line_starts = starts

    def _pair(self):
        open_ = []
        for i, t in enumerate(self.tokens):
            if t.kind != "op":
                continue
            if t.text in CLOSING:
                open_.append(i)
            elif t.text in CLOSING.values() and open_ and CLOSING[self.tokens[open_[-1]].text] == t.text:
                j = open_.pop()
                t.pair, self.tokens[j].pair = j, i

    def at(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def spaced(self, i):
        """Whether blanks stand on both sides, as the format puts them around a binary operator."""
        t = self.tokens[i]
        return t.start > 0 and self.text[t.start - 1].isspace() and self.text[t.end:t.end + 1].isspace()

    def _opens_statements(self, i):
        if i == 0 or not self.text[self.tokens[i].start - 1].isspace():
            return False
        before = self.at(i - 1)
        if before in ("(", ",", "{", "=", "return", "&&", "||", "?", ":", "+", "<<"):
            # "{" and ":" also stand before a bare block or a labelled one; the format of ours has neither
            return False
        j = i - 1  # back to where the statement or declaration began
        while j >= 0 and self.at(j) not in (";", "{", "}"):
            t = self.tokens[j]
            j = t.pair - 1 if t.text in (")", "]") and t.pair >= 0 else j - 1
        words = [self.at(k) for k in range(j + 1, min(i, j + 40))]
        if words[:1] == ["template"]:
            depth = 0
            for n, w in enumerate(words[1:], 1):
                depth += (w == "<") - (w == ">") - 2 * (w == ">>")
                if depth <= 0:
                    words = words[n + 1:]
                    break
        for w in words:
            if w in ("namespace", "struct", "class", "union", "enum"):
                return False
            if w not in ("inline", "static", "export", "typedef", "extern", "const"):
                break
        return True

    def line_of(self, position):
        low, high = 0, len(self.line_starts) - 1
        while low < high:
            middle = (low + high + 1) // 2
            if self.line_starts[middle] <= position:
                low = middle
            else:
                high = middle - 1
        return low + 1

    def line_text(self, line):
        start = self.line_starts[line - 1]
        end = self.text.find("\n", start)
        return self.text[start:end if end >= 0 else len(self.text)].strip()

    def of(self, first, last):
        """The text from a token to another, both included."""
        return self.text[self.tokens[first].start:self.tokens[last].end]
