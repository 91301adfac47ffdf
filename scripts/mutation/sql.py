"""Changes inside the text of a statement: its comparisons, links, numbers and orders."""
import re

WORDS = re.compile(r"\b(select|from|where|and|or|update|set|insert|order by|iif|union|inner|left|join|values|delete|on|not)\b", re.I)
MARKS = re.compile(r"[=<>]|\b(select|where|from|join)\b", re.I)
SWAPS = (
    (r"<>", "="), (r"<=", "<"), (r">=", ">"), (r"(?<![<>=])=(?!=)", "<>"), (r"<(?![=>])", "<="),
    (r"(?<![<=-])>(?!=)", ">="), (r"\band\b", "or"), (r"\bor\b", "and"), (r"\bnot\s+(?!null)", ""),
    (r"\binner(?=\s+join)", "left"), (r"\bleft(?=\s+join)", "inner"), (r"\bunion\s+all\b", "union"),
    (r"\bdistinct\b", ""), (r"\bmax(?=\()", "min"), (r"\bmin(?=\()", "max"), (r"\bsum(?=\()", "max"),
    (r"\btrue\b", "False"), (r"\bfalse\b", "True"), (r"\bisnull(?=\()", "not isnull"),
)


def text_changes(literal):
    """(start, end, new) within a string literal that is a piece of a statement; none when it is not one."""
    words = len(WORDS.findall(literal))
    if not words or not MARKS.search(literal) or (words < 2 and not re.search(r"\w=|=\w|\b\w+\.\w+", literal)):
        return
    for pattern, new in SWAPS:
        for m in re.finditer(pattern, literal, re.I):
            yield m.start(), m.end(), new
    for m in re.finditer(r"(?<![\w'.\\])\d+(?![\w'.])", literal):
        yield m.start(), m.end(), str(int(m.group()) + 1)
    # A condition that always holds: nothing times x is nothing.
    for m in re.finditer(r"(?<=\b(?:on|nd|re)\s)(\s*)([\w.]+)=(?=[\w\"]|$)", literal, re.I):
        yield m.start(2), m.end(), f"{m.group(2)}*0=0*"
    for m in re.finditer(r"\border by\s+[\w.]+(?![\w.(])", literal, re.I):
        if not re.match(r"\s+desc", literal[m.end():], re.I):
            yield m.end(), m.end(), " desc"
