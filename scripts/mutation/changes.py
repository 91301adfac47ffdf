"""Every single change of a source file: what is replaced by what."""
import re
from collections import Counter
from dataclasses import dataclass

from mutation import sql
from mutation.cpp import Source
from mutation.statements import statement_changes

SWAPS = {
    "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"), "==": ("!=",), "!=": ("==",),
    "&&": ("||",), "||": ("&&",), "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("*",),
    "&": ("|",), "|": ("&",),
}
ASSIGNING = {"+=": ("-=", "="), "-=": ("+=", "="), "*=": ("=",), "/=": ("=",), "|=": ("=",), "&=": ("=",)}
CALLS = {
    "front": "back", "back": "front", "upper_bound": "lower_bound", "lower_bound": "upper_bound",
    "find": "rfind", "rfind": "find", "find_first_of": "find_last_of", "find_last_of": "find_first_of",
    "find_first_not_of": "find_last_not_of", "find_last_not_of": "find_first_not_of", "min": "max",
    "max": "min", "any_of": "all_of", "all_of": "any_of", "none_of": "any_of", "floor": "ceil", "ceil": "floor",
    "begin": "rbegin", "rbegin": "begin", "end": "rend", "rend": "end", "UpperCase": "LowerCase",
}
# Left out by rule: nobody can notice how much is reserved, and the name of a noted step is for the log.
QUIET_CALLS = ("reserve", "shrink_to_fit", "static_assert", "alignas")
NOTED_STEPS = ("PassOverError", "AnyErrorNoted")


@dataclass(frozen=True)
class Change:
    line: int  # where it starts, from 1
    start: int
    end: int
    new: str
    label: str  # with line and text of the line, what names this change


def quiet_ranges(src):
    ranges = []
    for i, t in enumerate(src.tokens):
        if t.kind == "id" and t.text in QUIET_CALLS and src.at(i + 1) == "(" and src.tokens[i + 1].pair > 0:
            ranges.append((i, src.tokens[i + 1].pair))
        elif t.kind == "id" and t.text in NOTED_STEPS and src.at(i + 1) == "(":
            j = i + 2
            while j < len(src.tokens) and src.at(j) not in (",", ")"):
                j += 1
            ranges.append((i + 2, j))
        elif t.kind == "id" and t.text == "Error" and src.at(i + 1) == "(" and src.tokens[i + 1].pair > 0:
            ranges += [(k, k) for k in range(i + 2, src.tokens[i + 1].pair)
                       if src.tokens[k].kind == "num" and src.at(k - 1) == ","]  # numbers that nobody is told
        elif t.text == "[" and src.at(i + 1) == "[" and t.pair > 0:
            ranges.append((i, t.pair))
        elif t.kind == "id" and t.text == "array" and src.at(i + 1) == "<":  # its extent
            j = i + 2
            while j < len(src.tokens) and src.at(j) not in (";", "=", "{"):
                j += 1
            ranges.append((i, j))
    return ranges


def number_changes(text):
    m = re.fullmatch(r"(0[xX][0-9a-fA-F']+|[0-9][0-9']*)([uUlLzZ]*)", text)
    if m:
        n = int(m.group(1).replace("'", ""), 0) if m.group(1).lower().startswith("0x") else int(m.group(1).replace("'", ""))
        return [f"{n + 1}{m.group(2)}"] + ([f"{n - 1}{m.group(2)}"] if n > 0 else [])
    return [f"(1 + {text})"]


def token_changes(src):
    """(start, end, new, rule) of operators, constants and calls."""
    quiet = set()
    for a, b in quiet_ranges(src):
        quiet.update(range(a, b + 1))
    in_for = {}
    for i, t in enumerate(src.tokens):
        if t.text == "for" and t.kind == "id" and src.at(i + 1) == "(":
            for k in range(i + 1, src.tokens[i + 1].pair):
                in_for[k] = True
    for i, t in enumerate(src.tokens):
        if i in quiet or src.at(i - 1) == "operator":
            continue
        if t.kind == "op":
            yield from operator_changes(src, i, t, i in in_for)
        elif t.kind == "num":
            negative = src.at(i - 1) == "-" and not src.spaced(i - 1)
            for new in number_changes(t.text)[:1 if negative else 2]:
                yield t.start, t.end, new, "constant"
        elif t.kind in ("str", "raw"):
            yield from text_changes(src, i, t)
        elif t.kind == "chr":
            yield t.start, t.end, "'~'" if t.text != "'~'" else "'@'", "constant"
        elif t.text in ("true", "false"):
            yield t.start, t.end, "false" if t.text == "true" else "true", "constant"
        elif t.text in CALLS and src.at(i + 1) == "(" and not only_whether(src, i):
            yield t.start, t.end, CALLS[t.text], "order"


def only_whether(src, i):
    """Whether a search is only asked for having found anything: then its direction does not matter."""
    j = src.tokens[i + 1].pair + 1
    return src.at(j) in ("==", "!=") and "npos" in [src.at(k) for k in range(j + 1, j + 6)]


def operator_changes(src, i, t, in_for):
    near_text = src.tokens[i - 1].kind == "str" or (i + 1 < len(src.tokens) and src.tokens[i + 1].kind == "str")
    if t.text in SWAPS and src.spaced(i) and src.at(i - 1) not in ("template", ","):
        if t.text == "+" and near_text:
            return
        for new in SWAPS[t.text]:
            yield t.start, t.end, new, "operator"
    elif t.text in ASSIGNING:
        for new in ASSIGNING[t.text]:
            if not (near_text and new == "-="):
                yield t.start, t.end, new, "operator"
    elif t.text in ("++", "--") and not in_for:
        yield t.start, t.end, "--" if t.text == "++" else "++", "operator"
    elif t.text == "!":
        yield t.start, t.end, "", "operator"
    elif t.text == "-" and not src.spaced(i) and i + 1 < len(src.tokens) and src.tokens[i + 1].start == t.end:
        yield t.start, t.end, "", "operator"
    elif t.text == "?":
        yield from choice_changes(src, i, t)
    elif t.text == "," and i + 1 < len(src.tokens):
        yield from neighbours(src, i)


def choice_changes(src, i, t):
    j = i - 1  # back to where the condition begins
    while j >= 0 and src.at(j) not in ("=", "return", "(", "[", "{", ",", ";", ":", "?", "}", "+=", "-=", "<<"):
        pair = src.tokens[j].pair
        if src.at(j) == "]" and src.at(j + 1) == "(":  # a lambda's head
            break
        j = pair - 1 if src.at(j) in (")", "]") and pair >= 0 else j - 1
    first = src.tokens[j + 1]
    if first.start < t.start:
        end = src.tokens[i - 1].end
        yield first.start, end, "true", "choice"
        yield first.start, end, "false", "choice"


def neighbours(src, i):
    """Two neighbouring texts, or rows, of a table change places."""
    left, right = src.tokens[i - 1], src.tokens[i + 1]
    if left.kind == "str" and right.kind == "str" and src.at(i - 2) in (",", "{") and src.at(i + 2) in (",", "}"):
        yield left.start, right.end, f"{right.text}, {left.text}", "order"
    elif left.text == "}" and right.text == "{" and left.pair >= 0 and right.pair >= 0:
        a, b = src.of(left.pair, i - 1), src.of(i + 1, right.pair)
        if a != b and "[" not in a[:1]:
            yield src.tokens[left.pair].start, src.tokens[right.pair].end, f"{b}, {a}", "order"


def text_changes(src, i, t):
    if t.kind == "raw" or not t.text.startswith('"'):
        yield t.start, t.end, '""', "constant"
        return
    found = False
    for a, b, new in sql.text_changes(t.text):
        found = True
        yield t.start + a, t.start + b, new, "sql"
    if not found:
        yield t.start, t.end, '"~"' if t.text == '""' else '""', "constant"


def negations(src, conditions):
    """Where a change would only turn a whole condition round: it is made true and made false already."""
    whole = set()
    for start, end in conditions:
        inside = [i for i, t in enumerate(src.tokens) if start <= t.start and t.end <= end]
        flat, k = [], inside[0] if inside else 0
        while inside and k <= inside[-1]:
            flat.append(k)
            k = src.tokens[k].pair + 1 if src.at(k) in ("(", "[", "{") and src.tokens[k].pair > 0 else k + 1
        if any(src.at(k) in ("&&", "||") for k in flat):
            continue
        for k in flat:
            if src.at(k) in ("==", "!=", "<", ">", "<=", ">=") or (src.at(k) == "!" and k == inside[0]):
                whole.add(src.tokens[k].start)
    return whole


NEGATED = {"<": ">=", ">=": "<", ">": "<=", "<=": ">", "==": "!=", "!=": "==", "!": ""}


def short(text):
    flat = " ".join(text.split())
    return flat if len(flat) <= 70 else flat[:50] + " … " + flat[-17:]


def changes_of(text):
    """All changes of a file's text, in its order, each once."""
    src = Source(text)
    made = list(token_changes(src)) + list(statement_changes(src))
    turned = negations(src, {(a, b) for a, b, new, rule in made if rule in ("branch", "choice") and new in ("true", "false")})
    seen, found = set(), []
    for start, end, new, rule in made:
        if text[start:end] == new or (start, end, new) in seen:
            continue
        if rule == "operator" and start in turned and NEGATED.get(text[start:end]) == new:
            continue
        seen.add((start, end, new))
        found.append((start, end, new, rule))
    found.sort(key=lambda c: (c[0], c[1], c[2]))
    counts, out = Counter(), []
    for start, end, new, rule in found:
        line = src.line_of(start)
        label = f"{rule}: {short(text[start:end]) or 'nothing'} -> {short(new) or 'nothing'}"
        counts[line, label] += 1
        if counts[line, label] > 1:
            label += f" @{counts[line, label]}"
        out.append(Change(line, start, end, new, label))
    return src, out
