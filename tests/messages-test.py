#!/usr/bin/env python3
"""messages-test.py PROJECT: docs/MESSAGES.md has a heading for every message of the sources, and for nothing else.

What differs from case to case counts as one sign: an expression in the sources, {...} in headings and in the host's tables.
"""
import pathlib
import re
import sys

LITERAL = r'"(?:[^"\\\n]|\\.)*"'
VARYING = "…"


def text_of(expression):
    """The text that an expression such as `std::string("a ") + b + " c"` makes."""
    text = re.sub(rf"std::string\(({LITERAL})\)", r"\1", expression)
    pieces, depth, piece = [], 0, ""
    for token in re.findall(rf"{LITERAL}|.", text, re.DOTALL):
        depth += {"(": 1, ")": -1}.get(token, 0)
        if token == "+" and depth == 0:
            pieces.append(piece)
            piece = ""
        else:
            piece += token
    pieces.append(piece)

    def text_of_piece(piece):
        if not re.fullmatch(rf"(\s*{LITERAL}\s*)+", piece):
            return VARYING
        return "".join(re.sub(r"\\(.)", r"\1", part[1:-1]) for part in re.findall(LITERAL, piece))

    return "".join(map(text_of_piece, pieces))


def arguments(code, start):
    """The arguments of the call whose opening parenthesis is before `start`."""
    found, depth, argument = [], 0, ""
    for token in re.findall(rf"{LITERAL}|.", code[start:], re.DOTALL):
        if token == ")" and depth == 0:
            return found + [argument]
        depth += {"(": 1, ")": -1, "{": 1, "}": -1}.get(token, 0)
        if token == "," and depth == 0:
            found.append(argument)
            argument = ""
        else:
            argument += token
    raise ValueError("a call without an end: " + code[start:start + 80])


def calls(code, name):
    """Calls of a function, its declarations and definitions left out."""
    for match in re.finditer(rf"(?<!void )\b{name}\(", code):
        yield arguments(code, match.end())


def thrown_messages(code):
    named = dict(re.findall(rf"constexpr char (\w+)\[\] = ({LITERAL});", code))
    for given in calls(code, "Fail"):
        text = text_of(given[0])
        # The operation that refuses blocks ends its message with a reason that its callers give.
        reasons = [text_of(call[-1]) for call in calls(code, "Refuse")] if given[0].rstrip().endswith("reason") else []
        yield from [text[:-len(VARYING)] + reason for reason in reasons] or [text]
    for given in calls(code, "FailWithCode"):
        yield text_of(named.get(given[0], given[0])) + VARYING
    for given in calls(code, "FailIfFailed"):
        yield text_of(given[-1]) + VARYING


def strip_comments(code):
    return re.sub(rf"({LITERAL})|//[^\n]*", lambda match: match.group(1) or "", code)


def same_form(text):
    return re.sub(rf"(\{{[^}}]*\}}|{VARYING})+", VARYING, text)


def read(path):
    return strip_comments(path.read_text(encoding="utf-8"))


def library_messages(sources, problems):
    for file in sorted(sources.rglob("*")):
        if file.suffix in (".h", ".cpp") and file.stem != "Failure":
            code = read(file)
            yield from thrown_messages(code)
            if re.search(r"\bthrow\b", code):
                problems.append(f"{file}: throws by itself; failures go through common/Failure.h")


def host_messages(host):
    """Texts that are handed on (they read as VARYING alone) are somebody else's."""
    warnings = re.search(r"\bTexts\{(.*?)\n\};", read(host / "review/Warnings.cpp"), re.DOTALL).group(1)
    yield from (text_of(row) for row in arguments(warnings + ")", 0) if row.strip())
    for file in (host / "commands").glob("*.cpp"):
        told = [text_of(given[0]) for given in calls(read(file), r"warnings\.push_back")]
        yield from (text for text in told if text != VARYING)
    checks = [text_of(given[1]) for given in calls(read(host / "review/OutcomeChecks.cpp"), "Told")]
    files = re.findall(rf"\bMessage \w+\{{({LITERAL})", read(host / "files/Messages.h"))
    yield from (f"{VARYING}: {text}" for text in checks + [text_of(what) for what in files] if text != VARYING)


def main():
    project = pathlib.Path(sys.argv[1])
    problems = []
    thrown = set(map(same_form, library_messages(project / "src", problems)))
    expected = thrown | set(map(same_form, host_messages(project / "host")))
    document = (project / "docs/MESSAGES.md").read_text(encoding="utf-8")
    headings = [same_form(text) for text in re.findall(r"^### `(.*)`$", document, re.MULTILINE)]
    problems += [f"not in docs/MESSAGES.md: {text}" for text in sorted(expected - set(headings))]
    problems += [f"only in docs/MESSAGES.md: {text}" for text in sorted(set(headings) - expected)]
    problems += [f"twice in docs/MESSAGES.md: {text}" for text in sorted(set(headings)) if headings.count(text) > 1]

    advice = read(project / "host/review/Advice.cpp")
    rows = re.search(r"\bTable\[\] = \{(.*?)\n\};", advice, re.DOTALL).group(1)
    advised = {text_of(row).replace("*", VARYING) for row in re.findall(rf"\{{({LITERAL}),", rows)}
    begun = {text.rstrip(VARYING) for text in thrown}
    problems += [f"no row in host/review/Advice.cpp: {text}" for text in sorted(begun - advised)]
    problems += [f"only in host/review/Advice.cpp: {text}" for text in sorted(advised - begun)]
    print("\n".join(problems) or f"{len(thrown)} messages of the library, {len(expected - thrown)} of the host")
    sys.exit(1 if problems else 0)


main()
