"""manual_pages.py HEADER FOLDER: makes the manual pages from the public header, man3/<function>.3 for each function and
man7/qorsr.7 for what holds for all; in mdoc, which groff and mandoc read. Nothing is written when the description has mistakes."""
import argparse
import pathlib
import re
import sys
import textwrap

import description
import header

DATE = "November 22, 2026"
BULLET, LITERAL, TABLE, TEXT = "bullet", "literal", "table", "text"


def escaped(text):
    return text.replace("\\", "\\e")


def inline(text, titles):
    """Markup within a line: `code`, **bold**, #names, functions() and @ref families."""
    text = escaped(text)
    text = re.sub(r"@ref\s+(\w+)", lambda m: f'"{titles.get(m[1], m[1])}"', text)
    text = re.sub(r"@[pc]\s+(\w+)", r"\\fI\1\\fR", text)
    text = re.sub(r"`([^`]*)`", r"\\fB\1\\fR", text)
    text = re.sub(r"\*\*([^*]+)\*\*", r"\\fB\1\\fR", text)
    text = re.sub(r"(?<!\w)#(\w+)", r"\\fB\1\\fR", text)
    return re.sub(r"(?<![\w\\])(qors[A-Z]\w+)\(\)", r"\\fB\1\\fR(3)", text)


def roff_lines(text, titles):
    """Running text as lines of a page, one a sentence as far as one sees: no line begins with a control character."""
    text = inline(" ".join(text.split()), titles)
    for line in re.split(r"(?<=[.:;])\s+(?=[A-Z\\])", text):
        for wrapped in textwrap.wrap(line, 120, break_long_words=False, break_on_hyphens=False):
            yield ("\\&" if wrapped[:1] in ".'" else "") + wrapped


def blocks(text):
    """(kind, depth, lines) of a comment: paragraphs, items of lists, indented formulas, tables."""
    current, kind, depth = [], None, 0

    def done():
        nonlocal current, kind
        if current:
            yield kind, depth, current
        current, kind = [], None

    for line in text.split("\n"):
        bare, indent = line.strip(), len(line) - len(line.lstrip())
        indent = max(0, indent - 1) if line.startswith(" ") else indent
        if not bare:
            if kind == LITERAL:
                current.append("")
            else:
                yield from done()
                depth = 0 if kind is None else depth
            continue
        if bare.startswith("|"):
            if kind != TABLE:
                yield from done()
                kind = TABLE
            current.append(bare)
        elif bare.startswith("- "):
            yield from done()
            kind, depth, current = BULLET, indent // 2, [bare[2:]]
        elif kind in (BULLET, TEXT):
            current.append(bare)
        elif indent >= 4 or kind == LITERAL and indent >= 2:
            if kind != LITERAL:
                yield from done()
                kind = LITERAL
            current.append(line)
        else:
            yield from done()
            kind, depth, current = TEXT, indent // 2, [bare]
    yield from done()


def table(lines, titles):
    rows = [[c.strip() for c in line.strip("|").split("|")] for line in lines if not set(line) <= set("|-: ")]
    width = max(len(r) for r in rows)
    yield ".TS"
    yield " ".join(["l"] * (width - 1) + ["lx"]) + "."
    for row in rows:
        cells = [inline(c, titles) for c in row + [""] * (width - len(row))]
        yield "\t".join(f"T{{\n{c or chr(92) + '&'}\nT}}" for c in cells)
    yield ".TE"


def page_text(text, titles):
    """A comment as the lines of a page."""
    open_lists, fresh = 0, True  # fresh: right behind a section's head, where a paragraph needs no space in front
    for kind, depth, lines in blocks(text):
        wanted = min(depth, open_lists) + 1 if kind == BULLET else 0
        if kind in (LITERAL, TABLE, TEXT) and open_lists and depth:
            wanted = open_lists
        while open_lists > wanted:
            yield ".El"
            open_lists -= 1
            fresh = False
        if kind == BULLET:
            if open_lists < wanted:
                yield ".Bl -bullet" + (" -compact" if open_lists else "")
                open_lists += 1
            yield ".It"
            yield from roff_lines(" ".join(lines), titles)
        elif kind == LITERAL:
            yield ".Bd -literal -offset indent"
            yield from (("\\&" if l[:1] in ".'" else "") + escaped(l) for l in textwrap.dedent("\n".join(lines)).rstrip().split("\n"))
            yield ".Ed"
        elif kind == TABLE:
            if not fresh:
                yield ".Pp"
            yield from table(lines, titles)
        else:
            body = " ".join(lines)
            warning = body.startswith("@warning")
            if not fresh:
                yield ".Pp"
            yield from roff_lines(("**Warning:** " if warning else "") + body.removeprefix("@warning").strip(), titles)
        fresh = False
    yield from [".El"] * open_lists


def without_tables_of_parameters(text):
    """The text of a family without its table of parameters, and the lines of @defgroup and braces."""
    kept, inside = [], False
    for line in text.split("\n"):
        cells = [c.strip() for c in line.strip().strip("|").split("|")]
        inside = line.strip().startswith("|") and (inside or cells[0] == "Parameter")
        if not inside:
            kept.append(line)
    return re.sub(r"@defgroup.*|@\{|@\}", "", "\n".join(kept))


def sections(text):
    """(description, exact arithmetic, sources) of a family's text."""
    body, _, exact = text.partition("**Exact arithmetic")
    exact, source = (exact.lstrip(".* \n"), "") if exact else ("", "")
    whole = exact if exact else body
    parts = re.split(r"\n\s*\n\s*(?=Sources?\b)", whole)
    if len(parts) > 1:
        whole, source = parts[0], "\n\n".join(parts[1:])
    return (body, whole, source) if exact else (whole, "", source)


def is_status_table(lines):
    return lines.split("|")[1].strip().lower().startswith("status") if lines.strip().startswith("|") else False


def split_statuses(text):
    """(text without its tables of statuses, rows of these)."""
    kept, rows, inside = [], [], False
    for line in text.split("\n"):
        bare = line.strip()
        if not bare.startswith("|"):
            inside = False
        elif is_status_table(bare):
            inside = True
            continue
        if inside:
            if not set(bare) <= set("|-: "):
                rows.append([c.strip() for c in bare.strip("|").split("|")])
        else:
            kept.append(line)
    return "\n".join(kept), rows


def described(parameter, titles):
    """What a parameter is, in words: its use, elements or values, and what they mean."""
    use = {"in": "Read.", "out": "Written.", "in, out": "Read and written.", "value": "", "makes": "A record is made, and its address stored here.",
           "block": "A record is laid out in this memory.", "frees": "The record is released.", "record": ""}.get(parameter.use, "")
    line = parameter.line
    parts = [use]
    if parameter.kind in ("area", "rows"):
        parts.append(f"Elements: {line.third}." if line.third else "")
        if parameter.kind == "rows":
            parts.append("An array of pointers, one a row.")
    elif parameter.kind == "value":
        parts.append(f"Values: {line.third}." if line.third else "")
    elif line.third:
        parts.append(f"{line.third[0].upper()}{line.third[1:]}.")
    if parameter.null:
        parts.append("May be null.")
    if parameter.meaning:
        parts.append(f"{parameter.meaning[0].upper()}{parameter.meaning[1:]}.")
    return " ".join(p for p in parts if p)


def function_page(call, titles):
    function, family = call.function, call.function.family
    short = re.sub(r"\s*@see.*", "", " ".join(function.comment.split())).rstrip(".")
    yield "'\\\" t"
    yield f".Dd {DATE}"
    yield f".Dt {function.name.upper()} 3"
    yield ".Os"
    yield ".Sh NAME"
    yield f".Nm {function.name}"
    yield f".Nd {escaped(re.sub('[`*#]', '', short[:1].lower() + short[1:]))}"
    yield ".Sh LIBRARY"
    yield "libqorsr (\\-lqorsr)"
    yield ".Sh SYNOPSIS"
    yield ".In qorsr.h"
    yield f'.Ft "{function.result}"'
    yield f".Fo {function.name}"
    for p in function.parameters:
        yield f'.Fa "{p.type} {p.name}"'
    if not function.parameters:
        yield ".Fa void"
    yield ".Fc"
    yield ".Sh DESCRIPTION"
    yield from roff_lines(short + ".", titles)
    if call.parameters:
        yield ".Bl -tag -width Ds"
        for p in call.parameters:
            yield f".It Fa {p.parameter.name}"
            yield from roff_lines(described(p, titles) or f"The {p.parameter.base}.", titles)
        yield ".El"
    text, rows = split_statuses(without_tables_of_parameters(family.text))
    body, exact, source = sections(text)
    if body.strip():
        yield f".Ss {family.title}"
        yield from page_text(body.strip("\n"), titles)
    if function.result == "QorStatus":
        yield ".Sh RETURN VALUES"
        yield "\\fBqorStatusOk\\fR (0), a failure (negative, nothing is written but where said), or a warning (positive, with results)."
        if rows:
            yield "In the order of the checks:"
            yield ".Bl -tag -width Ds"
            for row in rows:
                yield f".It {inline(row[0], titles)}"
                yield from roff_lines(" ".join(row[1:]), titles)
            yield ".El"
    if exact.strip():
        yield ".Sh EXACT ARITHMETIC"
        yield from page_text(exact.strip("\n"), titles)
    yield ".Sh SEE ALSO"
    others = sorted((f.name for f in family.functions if f is not function), key=str.lower)
    for name in others:
        yield f".Xr {name} 3 ,"
    yield ".Xr qorsr 7"
    if source.strip():
        yield ".Pp"
        yield from roff_lines(source, titles)


def overview_page(path, interface, titles):
    text = pathlib.Path(path).read_text(encoding="utf-8")
    first = header.unstarred(header.COMMENT.search(text)["text"])
    first = re.sub(r"@file.*\n", "", first)
    yield "'\\\" t"
    yield f".Dd {DATE}"
    yield ".Dt QORSR 7"
    yield ".Os"
    yield ".Sh NAME"
    yield ".Nm qorsr"
    yield ".Nd numeric primitives for speech recognition"
    yield ".Sh DESCRIPTION"
    yield from page_text(first.strip("\n"), titles)
    yield ".Sh FUNCTIONS"
    for family in interface.header.families:
        if not family.functions:
            continue
        yield f".Ss {family.title}"
        names = sorted((f.name for f in family.functions), key=str.lower)
        yield from (f".Xr {name} 3 ," for name in names[:-1])
        yield f".Xr {names[-1]} 3"
    yield ".Sh STATUSES"
    yield ".Bl -tag -width Ds"
    for name, value, meaning in interface.header.statuses:
        yield f".It Dv {name} Pq {value}"
        yield from roff_lines(meaning, titles)
    yield ".El"


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("header", type=pathlib.Path)
    arguments.add_argument("folder", type=pathlib.Path)
    options = arguments.parse_args()
    interface = description.read(options.header)
    if interface.mistakes:
        sys.exit("\n".join(interface.mistakes))
    titles = {f.name: f.title for f in interface.header.families}
    pages = {f"man3/{name}.3": function_page(call, titles) for name, call in interface.calls.items()}
    pages["man7/qorsr.7"] = overview_page(options.header, interface, titles)
    for name, lines in pages.items():
        path = options.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text("\n".join(lines) + "\n", encoding="utf-8")
    print(f"{len(pages)} manual pages: {options.folder}")


main()
