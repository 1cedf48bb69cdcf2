"""The description of the interface: what the table in each family's text says of each parameter of each function.

The form of the table is told in docs/building.md. read() gives the functions with their parameters described, and the mistakes.
"""
import fnmatch
import re
from dataclasses import dataclass, field

import formula
import header
from formula import Mistake

USES = ("in", "out", "in, out", "value", "makes", "block", "frees", "is")


@dataclass
class Domain:
    """The values that a number, or each element of an area, may take. Bounds and choices are formulas; None: no bound."""
    low: tuple = None
    high: tuple = None
    low_open: bool = False
    high_open: bool = False
    choices: list = None
    step: tuple = None  # multiples of it alone
    usual: tuple = None  # what the tests draw: (low, high)

    def formulas(self):
        return [t for t in (self.low, self.high, self.step, *(self.choices or []), *(self.usual or [])) if t is not None]


@dataclass
class Shape:
    """width elements; or rows of width elements, stride apart; one such block for each element of `each`, named `each_name`."""
    width: tuple
    rows: tuple = None
    stride: tuple = None
    each: str = None
    each_name: str = None

    def formulas(self):
        return [t for t in (self.rows, self.width, self.stride) if t is not None]


@dataclass
class Line:
    """A line of a table."""
    parameters: list
    patterns: list  # empty: all functions of the family
    use: str
    null: bool
    third: str
    meaning: str
    text: str
    used: set = field(default_factory=set)  # names that some function has

    def fits(self, function):
        return not self.patterns or any(fnmatch.fnmatchcase(function.short, p) for p in self.patterns)


@dataclass
class Described:
    """What is known of a parameter of a function."""
    parameter: header.Parameter
    use: str
    null: bool
    meaning: str
    kind: str  # value, area, rows, record, records, makes, block, frees
    shape: Shape = None
    domain: Domain = field(default_factory=Domain)  # of a value; of each element of an area
    patterns: list = field(default_factory=list)  # of a record: functions that make it; of a block: those that tell its size
    line: Line = None  # of the table, where all this stands

    def formulas(self):
        return (self.shape.formulas() if self.shape else []) + self.domain.formulas()


@dataclass
class Call:
    """A function with its parameters described, in order, and numbers that have a name for it."""
    function: header.Function
    parameters: list
    names: dict  # name: formula
    order: list  # names of parameters and numbers, each behind those that it depends on


def split_outside_brackets(text, separators):
    """Splits at any of the separators (regular expressions) that stands outside brackets."""
    parts, depth, start, i = [], 0, 0, 0
    pattern = re.compile("|".join(separators))
    while i < len(text):
        depth += {"(": 1, ")": -1}.get(text[i], 0)
        match = pattern.match(text, i) if depth == 0 else None
        if match:
            parts.append(text[start:i])
            i = start = match.end()
        else:
            i += 1
    return [p.strip() for p in parts + [text[start:]]]


def parse_domain(text):
    text = text.strip()
    if text in ("", "any"):
        return Domain()
    domain = Domain()
    if usual := re.fullmatch(r"(.*),\s*usually\s+(.*?)\s+to\s+(.*)", text):
        domain = parse_domain(usual[1])
        domain.usual = (formula.parse(usual[2]), formula.parse(usual[3]))
        return domain
    ends = split_outside_brackets(text, [r"\sto\s"])
    if len(ends) == 2:
        domain.low, domain.high = (formula.parse(e) for e in ends)
        return domain
    parts = split_outside_brackets(text, [r",\s", r"\sor\s"])
    bounds = [re.match(r"(at least|above|at most|below|a multiple of)\s+(.*)", p) for p in parts]
    if not any(bounds):
        domain.choices = [formula.parse(p) for p in parts]
        return domain
    for part, bound in zip(parts, bounds):
        if not bound:
            raise Mistake(f"values '{text}': cannot read '{part}'")
        tree = formula.parse(bound[2])
        if bound[1] == "a multiple of":
            domain.step = tree
        elif bound[1] in ("at least", "above"):
            domain.low, domain.low_open = tree, bound[1] == "above"
        else:
            domain.high, domain.high_open = tree, bound[1] == "below"
    return domain


def parse_shape(text):
    repeated = re.fullmatch(r"(.*)\sfor\s+(\w+)\s+in\s+(\w+)", text)
    shape = Shape(None)
    if repeated:
        text, shape.each_name, shape.each = repeated.groups()
    if split := re.fullmatch(r"(.*),\s*(.*?)\s+apart", text):
        text, shape.stride = split[1], formula.parse(split[2])
    sides = re.split(r"\sx\s", text)
    if len(sides) > 2 or (shape.stride and len(sides) != 2):
        raise Mistake(f"shape '{text}': rows x width, or a number of elements")
    shape.width = formula.parse(sides[-1])
    shape.rows = formula.parse(sides[0]) if len(sides) == 2 else None
    return shape


def table(family):
    """The lines of the tables in a family's text that begin with a column `Parameter`."""
    lines, inside = [], False
    for text in family.text.split("\n"):
        text = text.strip()
        if not text.startswith("|"):
            inside = False
            continue
        cells = [c.strip() for c in text.strip("|").split("|")]
        if cells[0] == "Parameter":
            inside = True
        elif inside and not set(text) <= set("|-: "):
            if len(cells) != 4:
                raise Mistake(f"'{text}' has {len(cells)} columns, not 4")
            lines.append(parse_line(cells, text))
    return lines


def parse_line(cells, text):
    who = re.fullmatch(r"((?:`\w+`(?:,\s*)?)+)(?:\s*of\s+((?:`[\w*?]+`(?:,\s*)?)+))?", cells[0])
    if not who:
        raise Mistake(f"cannot read the parameters '{cells[0]}'")
    use = cells[1].replace("`", "")
    null = use.endswith(" or null")
    use = use.removesuffix(" or null").replace("in and out", "in, out")
    if use not in USES:
        raise Mistake(f"'{cells[1]}' in '{text}' is no use (one of: {'; '.join(USES)})")
    return Line(re.findall(r"`(\w+)`", who[1]), re.findall(r"`([\w*?]+)`", who[2] or ""), use, null, cells[2], cells[3], text)


def patterns_in(text):
    return re.findall(r"`([\w*?]+)`", text)


def describe(parameter, line, records):
    """What a line says of a parameter, checked against its C type."""
    def must(condition, what):
        if not condition:
            raise Mistake(f"{parameter.type} {parameter.name}: {what} ('{line.text}')")

    described = Described(parameter, line.use, line.null, line.meaning, line.use, line=line)
    record = parameter.base in records
    if line.use == "value":
        must(parameter.stars == 0, "a pointer has no value")
        described.domain = parse_domain(line.third)
        return described
    must(parameter.stars > 0, "a number has the use 'value'")
    if line.use in ("makes", "block", "frees"):
        must(parameter.stars == (2 if line.use == "makes" else 1), f"no pointer for '{line.use}'")
        must(not parameter.read_only, f"const, but '{line.use}'")
        if line.use == "block":
            described.patterns = patterns_in(line.third)
            must(line.third.startswith("bytes of") and described.patterns, "'block' needs 'bytes of' and a pattern")
        return described
    must(line.use == "in" or record or not parameter.read_only, "const, but written")
    if record:
        described.kind, described.patterns = "record", patterns_in(line.third)
        if parameter.stars == 2:
            must(line.use == "in", "arrays of records are read only")
            described.kind, described.shape = "records", parse_shape(line.third.partition(";")[0].strip())
        return described
    shape, _, contents = (part.strip() for part in line.third.partition(";"))
    must(shape, "the elements are missing")
    described.shape = parse_shape(shape)
    described.kind = "rows" if parameter.stars == 2 else "area"
    must(parameter.stars == 1 or (described.shape.rows and not described.shape.stride), "row pointers are described as rows x width")
    if contents:
        must(contents.startswith("each "), f"'{contents}' does not begin with 'each'")
        described.domain = parse_domain(contents.removeprefix("each "))
    return described


def choose(lines, function, name, isa):
    """The line for a parameter (or, if isa, a named number) of a function: one with patterns before one without, then the last."""
    fitting = [l for l in lines if name in l.parameters and (l.use == "is") == isa and l.fits(function)]
    if not fitting:
        return None
    chosen = ([l for l in fitting if l.patterns] or fitting)[-1]
    chosen.used.add(name)
    return chosen


def in_order(call):
    """Parameters and named numbers, each behind those that its formulas read."""
    needs = {}
    for p in call.parameters:
        read = set().union(*(formula.names(t) for t in p.formulas())) if p.formulas() else set()
        if p.shape and p.shape.each:
            read = (read - {p.shape.each_name}) | {p.shape.each}
        if p.kind == "block":  # its size follows from the numbers
            read = {q.parameter.name for q in call.parameters if q.kind == "value"}
        needs[p.parameter.name] = read
    needs.update({name: formula.names(tree) for name, tree in call.names.items()})
    for name, read in needs.items():
        for unknown in sorted(read - set(needs)):
            raise Mistake(f"{call.function.name}: the formula of {name} reads {unknown}, which is neither a parameter nor a named number")
    order = []
    while len(order) < len(needs):
        ready = [n for n in needs if n not in order and needs[n] <= set(order)]
        if not ready:
            raise Mistake(f"{call.function.name}: formulas go in a circle: {', '.join(n for n in needs if n not in order)}")
        order += ready
    return order


def describe_family(family, records):
    """(calls, mistakes) of a family."""
    calls, mistakes = [], []
    try:
        lines = table(family)
    except Mistake as mistake:
        return [], [f"{family.name}: {mistake}"]
    for function in family.functions:
        try:
            parameters = []
            for parameter in function.parameters:
                line = choose(lines, function, parameter.name, False)
                if line is None:
                    raise Mistake(f"{function.name}: the parameter {parameter.name} is not described")
                parameters.append(describe(parameter, line, records))
            named = {name for l in lines if l.use == "is" and l.fits(function) for name in l.parameters}
            names = {name: formula.parse(choose(lines, function, name, True).third) for name in sorted(named)}
            call = Call(function, parameters, names, [])
            call.order = in_order(call)
            calls.append(call)
        except Mistake as mistake:
            mistakes.append(f"{family.name}: {mistake}")
    if not mistakes:
        for line in lines:
            for name in set(line.parameters) - line.used:
                mistakes.append(f"{family.name}: no function has a {name} for this line (or other lines go before it): {line.text}")
            for pattern in line.patterns:
                if not any(fnmatch.fnmatchcase(f.short, pattern) for f in family.functions):
                    mistakes.append(f"{family.name}: no function fits `{pattern}` in {line.text}")
    return calls, mistakes


class Description:
    """All calls by the name of their function, the mistakes, and how records come and go."""

    def __init__(self, path):
        self.header = header.read(path)
        self.calls, self.mistakes = {}, []
        for family in self.header.families:
            calls, mistakes = describe_family(family, self.header.records)
            self.calls.update({c.function.name: c for c in calls})
            self.mistakes += mistakes
        self.check_records()

    def made_by(self, call, record):
        """The calls that make what the record parameter of a call may be. What lies in the caller's memory is not freed."""
        kinds = ("makes",) if record.kind == "frees" else ("makes", "block")
        makers = [c for c in self.calls.values() for p in c.parameters
                  if p.kind in kinds and p.parameter.base == record.parameter.base]
        if record.patterns:
            makers = [m for m in makers if any(fnmatch.fnmatchcase(m.function.short, p) for p in record.patterns)]
        return makers

    def freed_by(self, record_type):
        for c in self.calls.values():
            if len(c.parameters) == 1 and c.parameters[0].kind == "frees" and c.parameters[0].parameter.base == record_type:
                return c
        return None

    def sized_by(self, call, block):
        """The call that tells the size of a block: of those that fit the patterns the one whose name ends most like the call's."""
        def alike(c):
            a, b, n = c.function.name[::-1], call.function.name[::-1], 0
            while n < min(len(a), len(b)) and a[n] == b[n]:
                n += 1
            return (n, -len(a))
        fitting = [c for c in self.calls.values() if any(fnmatch.fnmatchcase(c.function.short, p) for p in block.patterns)]
        return max(fitting, key=alike) if fitting else None

    def check_records(self):
        for call in list(self.calls.values()):
            try:
                self.check_records_of(call)
            except Mistake as mistake:
                self.mistakes.append(f"{call.function.family.name}: {call.function.name}: {mistake}")
                del self.calls[call.function.name]

    def check_records_of(self, call):
        by_name = {p.parameter.name: p for p in call.parameters}
        for p in call.parameters:
            if p.kind in ("record", "records", "frees") and not self.made_by(call, p):
                raise Mistake(f"no function makes the {p.parameter.base} {p.parameter.name}")
            if p.kind == "makes" and not self.freed_by(p.parameter.base):
                raise Mistake(f"no function frees the {p.parameter.base} {p.parameter.name}")
            if p.kind == "block":
                sizer = self.sized_by(call, p)
                if sizer is None:
                    raise Mistake(f"no function tells the size of {p.parameter.name}")
                for q in sizer.parameters:
                    if q.kind == "value" and q.parameter.name not in by_name:
                        raise Mistake(f"{sizer.function.name} takes {q.parameter.name}, which this function has not")
        trees = [t for p in call.parameters for t in p.formulas()] + list(call.names.values())
        for record, name in sorted(set().union(*(formula.members(t) for t in trees)) if trees else []):
            if by_name.get(record) is None or by_name[record].kind not in ("record", "records"):
                raise Mistake(f"{record}.{name}: {record} is no record that the function is given")
            for maker in self.made_by(call, by_name[record]):
                if name not in maker.names and not any(p.parameter.name == name and p.kind == "value" for p in maker.parameters):
                    raise Mistake(f"{maker.function.name} may have made {record}, and has no {name}")


def read(path):
    return Description(path)
