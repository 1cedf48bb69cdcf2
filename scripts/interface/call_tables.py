"""call_tables.py HEADER OUTPUT: the description of the interface as C++ tables, for tests/interface/calls.h."""
import argparse

import description
import formula

ELEMENTS = {"uint8_t": "k8u", "int16_t": "k16s", "uint16_t": "k16u", "int32_t": "k32s", "int64_t": "k64s", "float": "k32f",
            "double": "k64f"}
REAL = ("float", "double")


def is_exponent(call, name):
    """Whether a size of the call is two to the power of this number, which is then drawn small."""
    def within(tree):
        if not isinstance(tree, (tuple, list)):
            return False
        return tuple(tree[:2]) == ("call", "exp2") and tree[2] == [("name", name)] or any(within(part) for part in tree)
    return any(within(tree) for p in call.parameters for tree in p.formulas())


class Tables:
    """Writes the tables. Every formula and every list of numbers stands once."""

    def __init__(self, interface):
        self.interface = interface
        self.calls = list(interface.calls.values())
        self.index = {c.function.name: i for i, c in enumerate(self.calls)}
        self.ids, self.formulas, self.lists = {}, {}, {}
        self.definitions = []

    def id(self, name):
        return self.ids.setdefault(name, len(self.ids))

    def expression(self, tree, real):
        """A formula as a C++ expression over `n`; in double if real."""
        def text(t):
            return self.expression(t, real)
        kind = tree[0]
        if kind == "number":
            return f"double{{{tree[1]}}}" if real else f"int64_t{{{tree[1]}}}"
        if kind == "name":
            return f"n[{self.id(tree[1])}].{'real' if real else 'whole'}"
        if kind == "member":
            return f"(*n[{self.id(tree[1])}].record)[{self.id(tree[2])}].{'real' if real else 'whole'}"
        if kind == "call":
            function, arguments = tree[1], tree[2]
            if function == "sum" and arguments[0][0] == "member":
                return f"sum(n[{self.id(arguments[0][1])}], {self.id(arguments[0][2])})"
            if function == "sum":
                return f"sum(n[{self.id(arguments[0][1])}])"
            if function == "ceil":
                return f"ceilDivided({text(arguments[0][1])}, {text(arguments[0][2])})"
            if function == "if":
                return f"({self.expression(arguments[0], False)} != 0 ? {text(arguments[1])} : {text(arguments[2])})"
            if function in ("min", "max"):
                return f"std::{function}({text(arguments[0])}, {text(arguments[1])})"
            return f"{function}({text(arguments[0])})"
        if len(tree) == 2:
            return f"(-{text(tree[1])})"
        if kind == "/" and not real:
            return f"divided({text(tree[1])}, {text(tree[2])})"
        return f"({text(tree[1])} {kind} {text(tree[2])})"

    def formula(self, tree, real=False):
        """The name of the C++ function for a formula."""
        if tree is None:
            return "nullptr"
        key = (self.expression(tree, real), real)
        if key not in self.formulas:
            name = f"{'r' if real else 'w'}{len(self.formulas)}"
            self.formulas[key] = name
            self.definitions.append(f"{'double' if real else 'int64_t'} {name}([[maybe_unused]] const Numbers& n) {{ return {key[0]}; }}")
        return self.formulas[key]

    def list(self, type_name, items):
        """The name of a constant array, or {} for an empty one."""
        if not items:
            return "{}"
        key = (type_name, ", ".join(items))
        if key not in self.lists:
            self.lists[key] = f"l{len(self.lists)}"
            self.definitions.append(f"constexpr {type_name} {self.lists[key]}[] = {{{key[1]}}};")
        return self.lists[key]

    def bound(self, tree, real):
        return f"{{{self.formula(tree)}, {self.formula(tree, True) if real else 'nullptr'}}}" if tree else "{}"

    def domain(self, d, real):
        if not d.formulas():
            return "{}"
        choices = self.list("Bound", [self.bound(t, real) for t in d.choices or []])
        flags = [str(f).lower() for f in (d.low_open, d.high_open)]
        usual = ", ".join(f"{{{'nullptr' if real else self.formula(t)}, {self.formula(t, True)}}}" for t in d.usual or []) or "{}, {}"
        return (f"{{{self.bound(d.low, real)}, {self.bound(d.high, real)}, {flags[0]}, {flags[1]}, {choices}, {self.formula(d.step)}, "
                f"{usual}}}")

    def shape(self, s):
        if s is None:
            return "{}"
        each = [str(self.id(n)) if n else "-1" for n in (s.each, s.each_name)]
        return f"{{{self.formula(s.width)}, {self.formula(s.rows)}, {self.formula(s.stride)}, {each[0]}, {each[1]}}}"

    def parameter(self, call, p):
        base = p.parameter.base
        partner, makers = -1, []
        if p.kind in ("record", "records", "frees"):
            makers = [str(self.index[m.function.name]) for m in self.interface.made_by(call, p)]
        elif p.kind == "makes":
            partner = self.index[self.interface.freed_by(base).function.name]
        elif p.kind == "block":
            partner = self.index[self.interface.sized_by(call, p).function.name]
        flags = [str(f).lower() for f in ("in" in p.use.split(", "), "out" in p.use, p.null)]
        return (f'{{"{p.parameter.name}", {self.id(p.parameter.name)}, Kind::k{p.kind.capitalize()}, '
                f'Element::{ELEMENTS.get(base, "kRecord")}, {", ".join(flags)}, {self.shape(p.shape)}, '
                f'{self.domain(p.domain, base in REAL)}, {self.list("int", makers)}, {partner}, '
                f'{str(is_exponent(call, p.parameter.name)).lower()}}}')

    def invocation(self, call):
        arguments = []
        for i, p in enumerate(call.parameters):
            member = "pointer" if p.parameter.stars else "real" if p.parameter.base in REAL else "whole"
            arguments.append(f"static_cast<{p.parameter.type}>(a[{i}].{member})")
        unused = "" if arguments else "[[maybe_unused]] "
        called = f"{call.function.name}({', '.join(arguments)})"
        if call.function.result != "QorStatus":
            called = f"({called} != nullptr ? qorStatusOk : qorStatusFailed)"
        return f"[]({unused}const Argument* a) -> QorStatus {{ return {called}; }}"

    def function(self, call):
        parameters = self.list("Parameter", [self.parameter(call, p) for p in call.parameters])
        names = self.list("Named", [f"{{{self.id(n)}, {self.formula(t)}}}" for n, t in call.names.items()])
        place = {p.parameter.name: i for i, p in enumerate(call.parameters)}
        place.update({n: -1 - i for i, n in enumerate(call.names)})
        order = self.list("int", [str(place[n]) for n in call.order])
        return f'    {{"{call.function.name}", {parameters}, {names}, {order}, {self.invocation(call)}}},'

    def text(self):
        rows = [self.function(c) for c in self.calls]
        mistakes = [f'    "{m}",'.replace("\\", "\\\\") for m in
                    (mistake.replace('"', "'") for mistake in self.interface.mistakes)]
        statuses = [f'    {{"{name}", {value}, "{words}"}},' for name, value, words in self.interface.header.statuses]
        return "\n".join([
            "// Made from the tables in the public header by scripts/interface/call_tables.py.",
            '#include "interface/calls.h"', "", "namespace interface_calls {", "namespace {", *self.definitions, "",
            "constexpr Function kFunctions[] = {", *rows, "};", "const std::vector<std::string> kMistakes = {", *mistakes, "};",
            "constexpr Status kStatuses[] = {", *statuses, "};",
            "}  // namespace", "std::span<const Function> functions() { return kFunctions; }",
            "std::span<const Status> statuses() { return kStatuses; }",
            "const std::vector<std::string>& mistakes() { return kMistakes; }",
            f"std::size_t nameCount() {{ return {len(self.ids)}; }}", "}  // namespace interface_calls", ""])


arguments = argparse.ArgumentParser()
arguments.add_argument("header")
arguments.add_argument("output")
options = arguments.parse_args()
with open(options.output, "w", encoding="utf-8") as output:
    output.write(Tables(description.read(options.header)).text())
