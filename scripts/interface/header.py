"""What the public header says: its functions, and the families (documentation groups) in which they stand."""
import re
from dataclasses import dataclass, field

DECLARATION = re.compile(r"QORSR_API\s+(?P<result>[\w\s*]+?)(?P<name>qors\w+)\((?P<parameters>[^;{]*?)\)\s*;")
COMMENT = re.compile(r"/\*\*(?P<text>.*?)\*/", re.S)
STATUS = re.compile(r"(?P<name>qorStatus\w+)\s*=\s*(?P<value>-?\d+),?\s*/\*\*<\s*(?P<text>.*?)\s*\*/")
OPAQUE = re.compile(r"typedef\s+struct\s+(\w+)\s+\1\s*;")


@dataclass
class Parameter:
    name: str
    type: str  # as declared, without the name: "const float* const*"

    @property
    def stars(self):
        return self.type.count("*")

    @property
    def base(self):
        """The type behind all pointers, without const."""
        return self.type.replace("const", "").replace("*", "").strip()

    @property
    def read_only(self):
        """Whether what the last pointer leads to may not be changed through this parameter."""
        return self.type.startswith("const ")


@dataclass
class Function:
    name: str
    result: str
    parameters: list
    family: "Family"
    comment: str  # its own line, "" if it has none
    line: int

    @property
    def short(self):
        return self.name.removeprefix("qors")

    def parameter(self, name):
        return next((p for p in self.parameters if p.name == name), None)


@dataclass
class Family:
    name: str
    title: str
    text: str
    line: int
    functions: list = field(default_factory=list)


@dataclass
class Header:
    families: list
    records: set  # names of the opaque state records
    statuses: list  # (name, value, text)

    @property
    def functions(self):
        return [f for family in self.families for f in family.functions]


def unstarred(comment):
    """The text of a documentation comment, without the frame of stars."""
    return "\n".join(re.sub(r"^\s*\* ?", "", line).rstrip() for line in comment.split("\n")).strip("\n")


def parameters(text):
    text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S)
    text = re.sub(r"\s+", " ", text).strip()
    if text in ("", "void"):
        return []
    found = []
    for part in text.split(","):
        match = re.fullmatch(r"(?P<type>.*?[ *])(?P<name>\w+)", part.strip())
        found.append(Parameter(match["name"], re.sub(r"\s*\*", "*", match["type"]).strip()))
    return found


def read(path):
    with open(path, encoding="utf-8") as file:
        text = file.read()
    families, own, last_comment_end = [], "", 0
    current = None
    items = sorted([*COMMENT.finditer(text), *DECLARATION.finditer(text)], key=lambda m: m.start())
    comments_end = 0
    for item in items:
        line = text.count("\n", 0, item.start()) + 1
        if item.re is COMMENT:
            comments_end = item.end()
            body = unstarred(item["text"])
            group = re.search(r"@defgroup\s+(\w+)\s+(.*)", body)
            if group:
                current = Family(group[1], group[2].strip(), body, line)
                families.append(current)
                own = ""
            elif item["text"].startswith("<"):  # behind a declaration on its line
                if current and current.functions and "\n" not in text[last_comment_end:item.start()]:
                    current.functions[-1].comment = body.lstrip("< ")
            else:
                own = body
                own_end = item.end()
        elif item.start() >= comments_end:  # not in a comment
            comment = own if own and not text[own_end:item.start()].strip() else ""
            if current is None:
                raise SystemExit(f"{path}:{line}: {item['name']} stands in no documentation group")
            current.functions.append(
                Function(item["name"], re.sub(r"\s*\*", "*", item["result"]).strip(), parameters(item["parameters"]), current,
                         comment, line))
            last_comment_end = item.end()
    return Header(families, set(OPAQUE.findall(text)), STATUS.findall(text))
