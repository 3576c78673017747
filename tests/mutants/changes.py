# SPDX-License-Identifier: MIT
"""The small ways in which a source can be broken.

Works on the text, in the layout that clang-format gives it: binary operators have spaces around
them, brackets of templates have none, and a function begins in the first column or, in a class, in
the fifth. What does not compile is left out later.
"""

import collections
import re

TOKEN = re.compile(r"""
    (?P<blank>//[^\n]*|/\*.*?\*/|\bR"(?P<end>\w*)\(.*?\)(?P=end)"|"(?:\\.|[^"\\\n])*"
        |'(?:\\.|[^'\\\n])+')|\d[\w']*|\w+""", re.VERBOSE | re.DOTALL)
NOT_CODE = re.compile(r"""
    ^[ \t]*(?:\#|using\b|namespace\b|template\b|friend\b|static_assert\b|Q_(?:ASSERT|UNREACHABLE)
        |q(?:Debug|Info|Warning|Critical|Fatal)\b).*$
    |\boperator[^\s(]+|\[\[nodiscard\]\]|(?<=rray<)[^<>]*(?:<[^<>]*>)?[^<>]*(?=>)
    |(?:(?<=\)\s=\s)|(?<=const\s=\s)|(?<=override\s=\s)|(?<=noexcept\s=\s))(?:0|default|delete);
    """, re.VERBOSE | re.MULTILINE)
SWAPS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&",
         "+": "-", "-": "+", "+=": "-=", "-=": "+="}
KEYWORDS = {"if", "for", "while", "switch", "return", "throw", "catch", "else", "delete", "case"}
FUNCTION = re.compile(r"^(?:    )?(?:\[\[nodiscard\]\] |static |constexpr |inline |virtual )*"
                      r"(?P<type>[A-Za-z][\w:<>*&, ]*?)[ *&]+(?P<name>[\w:~]+)\(", re.MULTILINE)

BEFORE_TERNARY = re.compile(r"[,;{}]|\b(?:return|throw)\b|(?<![=!<>])[=?:]\s")

Mutant = collections.namedtuple("Mutant", "path line identity text")


def blanked(text):
    """The text with spaces for whatever is not code, each character in its place."""
    blank = lambda match: re.sub(r"[^\n]", " ", match.group())
    code = TOKEN.sub(lambda match: blank(match) if match["blank"] else match.group(), text)
    return NOT_CODE.sub(blank, code)


def closing(code, start):
    """The place of the bracket that closes the one at start."""
    depth = 0
    for place in range(start, len(code)):
        depth += (code[place] in "([{") - (code[place] in ")]}")
        if depth == 0:
            return place
    return len(code) - 1


def says_less_when_negated(condition):
    """Another operator makes the same mutant of it: a lone comparison, or one with a "!"."""
    if re.search(r"&&|\|\|", condition):
        return False
    return condition.startswith("!") or len(re.findall(r" [!=]= ", condition)) == 1


def conditions(code):
    """Where the condition of each if, while and ternary begins and ends."""
    for match in re.finditer(r"\b(?:if|while) \(", code):
        start, end = match.end(), closing(code, match.end() - 1)
        start = max(start, code.rfind(";", start, end) + 1)
        if not re.search(r"[^=!<>]=[^=]", code[start:end]):
            yield start, end
    for match in re.finditer(r"\s\?\s", code):
        depth, start = 0, match.start()
        while start > 0 and depth >= 0:
            start -= 1
            depth += (code[start] in ")]}") - (code[start] in "([{")
            if depth == 0 and BEFORE_TERNARY.match(code, start):
                break
        word = BEFORE_TERNARY.match(code, start)
        yield (word.end() if word else start + 1), match.start()


def statements(code, is_header):
    """Where each statement begins and ends that only calls, or only sets a member."""
    beginning = r"^ {8,}" if is_header else r"^ +"
    for match in re.finditer(beginning + r"(?=(?:Q_EMIT )?[A-Za-z_])", code, re.MULTILINE):
        start = match.end()
        before = code[:start].rstrip()
        if not before.endswith((";", "{", "}", ")", "else")):
            continue
        call = re.compile(r"(?:Q_EMIT )?(\w[\w:.>-]*)(?:<[\w:<> ,]*>)?\(").match(code, start)
        member = re.compile(r"m_\w+(?:\.\w+)? [|&]?= ").match(code, start)
        if call and call[1] not in KEYWORDS and not call[1].endswith(".reserve"):
            end = closing(code, call.end() - 1) + 1
            while chained := re.compile(r"\s*(?:\.|->)\w+\(").match(code, end):
                end = closing(code, chained.end() - 1) + 1
            if code[end:end + 1] == ";":
                yield start, end
        elif member:
            end = member.end()
            while code[end] != ";":
                end = closing(code, end) + 1 if code[end] in "([{" else end + 1
            yield start, end


def gives_bool(code, place):
    """Whether the function around a place does, as far as its first line tells."""
    found = None
    for match in FUNCTION.finditer(code, 0, place):
        body = re.compile(r"[^;{]*\{").match(code, closing(code, match.end() - 1) + 1)
        if match["type"].split()[0] not in KEYWORDS and body:
            found = match
    return bool(found) and found["type"] == "bool"


def changes(text, is_header):
    """Every change of a source: the place of its begin and end, and what stands there instead."""
    code = blanked(text)
    for match in re.finditer(r"(?<= )([=!<>]=|[<>+-]|&&|\|\||[+-]=)(?=\s)", code):
        yield *match.span(), SWAPS[match[1]]
    for match in re.finditer(r"\b(?:true|false)\b", code):
        yield *match.span(), "false" if match.group() == "true" else "true"
    for match in re.finditer(r"(?<![\w.'])(0x[\da-fA-F']+|\d[\d']*)(?![\d.'])", code):
        digits = match[1].replace("'", "")
        more = int(digits, 0 if "x" in digits else 10) + 1
        yield *match.span(), hex(more) if "x" in digits else str(more)
    for match in re.finditer(r"(?<![\w)])!(?=[\w(])", code):
        yield *match.span(), ""
    for match in re.finditer(r"\b(?:break|continue)(?=;)", code):
        yield *match.span(), ""
    for match in re.finditer(r"\bstd::exchange\(", code):
        end = closing(code, match.end() - 1)
        yield match.start(), end + 1, text[match.end():code.index(",", match.end(), end)]
    for start, end in statements(code, is_header):
        yield start, end, ""
    for start, end in conditions(code):
        start += len(code[start:end]) - len(code[start:end].lstrip())
        if not says_less_when_negated(code[start:end]):
            yield start, end, f"!({text[start:end]})"
    for match in re.finditer(r"\breturn (?!true;|false;)[^;{}]*(?=;)", code):
        start = match.start() + len("return ")
        if gives_bool(code, match.start()) and not says_less_when_negated(code[start:match.end()]):
            yield start, match.end(), f"!({text[start:match.end()]})"


def mutants_of(root, path):
    """Every mutant of a source. Its identity does not tell the line, which changes too often."""
    text = (root / path).read_text()
    for start, end, instead in sorted(set(changes(text, path.endswith(".h")))):
        first = text.rfind("\n", 0, start) + 1
        last = text.find("\n", end)
        before, after = (" ".join(line.split()) for line in
                         (text[first:last], text[first:start] + instead + text[end:last]))
        yield Mutant(path, text.count("\n", 0, start) + 1, f"{path}: {before} => {after}",
                     text[:start] + instead + text[end:])
