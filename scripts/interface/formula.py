"""Formulas of the parameter tables: whole numbers over the names of parameters.

    height * stride      ceil(count / 8)      if(flags & 4, pow2(length), 13)      state.filterCount + 2      sum(counts)

A formula is parsed once into a tree of tuples:
    ("number", text)  ("name", name)  ("member", record, name)  ("call", function, [arguments])  ("-", operand)  (operator, left, right)
"""
import re

TOKEN = re.compile(r"\s*(?:(?P<number>\d+(?:\.\d+)?(?:e-?\d+)?)|(?P<name>[A-Za-z_]\w*(?:\.[A-Za-z_]\w*)?)"
                   r"|(?P<sign><=|>=|==|!=|[-+*/&<>(),]))")
# Operators that bind alike stand in one row; the weakest row comes first.
ROWS = [("<", "<=", ">", ">=", "==", "!="), ("+", "-"), ("*", "/"), ("&",)]
ARGUMENTS = {"ceil": 1, "min": 2, "max": 2, "pow2": 1, "if": 3, "sum": 1, "log2": 1, "exp2": 1}


class Mistake(Exception):
    """Something in the description that cannot be read. The text says what."""


class Parser:
    def __init__(self, text):
        self.text, self.tokens, position = text, [], 0
        while text[position:].strip():
            match = TOKEN.match(text, position)
            if not match:
                raise Mistake(f"formula '{text}': cannot read '{text[position:].strip()}'")
            self.tokens.append((match.lastgroup, match[match.lastgroup]))
            position = match.end()

    def peek(self):
        return self.tokens[0] if self.tokens else (None, None)

    def take(self, wanted=None):
        kind, text = self.peek()
        if kind is None or (wanted and text != wanted):
            raise Mistake(f"formula '{self.text}': {wanted or 'a term'} is missing")
        self.tokens.pop(0)
        return kind, text

    def parse(self):
        tree = self.row(0)
        if self.tokens:
            raise Mistake(f"formula '{self.text}': '{self.peek()[1]}' was not expected")
        return tree

    def row(self, level):
        if level == len(ROWS):
            return self.term()
        tree = self.row(level + 1)
        while self.peek()[0] == "sign" and self.peek()[1] in ROWS[level]:
            tree = (self.take()[1], tree, self.row(level + 1))
        return tree

    def term(self):
        kind, text = self.take()
        if kind == "number":
            return ("number", text)
        if text == "-":
            return ("-", self.term())
        if text == "(":
            tree = self.row(0)
            self.take(")")
            return tree
        if kind != "name":
            raise Mistake(f"formula '{self.text}': '{text}' was not expected")
        if self.peek()[1] != "(":
            return ("member", *text.split(".")) if "." in text else ("name", text)
        arguments = []
        while self.take()[1] != ")":
            arguments.append(self.row(0))
            if self.peek()[1] not in (",", ")"):
                raise Mistake(f"formula '{self.text}': a bracket is not closed")
        if ARGUMENTS.get(text) != len(arguments):
            raise Mistake(f"formula '{self.text}': {text}() with {len(arguments)} arguments is not known")
        if text == "ceil" and arguments[0][0] != "/":
            raise Mistake(f"formula '{self.text}': ceil() takes a division")
        return ("call", text, arguments)


def parse(text):
    return Parser(text).parse()


def names(tree):
    """The names that a formula reads, those of records too: {"height", "state"}."""
    if tree[0] == "name":
        return {tree[1]}
    if tree[0] == "member":
        return {tree[1]}
    if tree[0] == "call":
        return set().union(*(names(a) for a in tree[2]))
    return set().union(*(names(part) for part in tree[1:] if isinstance(part, tuple)))


def members(tree):
    """The (record, name) pairs that a formula reads."""
    if tree[0] == "member":
        return {(tree[1], tree[2])}
    parts = tree[2] if tree[0] == "call" else [part for part in tree[1:] if isinstance(part, tuple)]
    return set().union(*(members(part) for part in parts)) if parts else set()


def summed(tree):
    """The arrays whose elements a formula adds."""
    if tree[0] == "call":
        own = {tree[2][0][1]} if tree[1] == "sum" else set()
        return own.union(*(summed(a) for a in tree[2]))
    parts = [part for part in tree[1:] if isinstance(part, tuple)]
    return set().union(*(summed(part) for part in parts)) if parts else set()
