"""check.py HEADER [--names] [--index PAGE]: says what the description of the interface lacks; with --names lists the functions. The
PAGE, an index by task, must lead to every family and name no function that does not exist."""
import argparse
import re
import sys

import description

arguments = argparse.ArgumentParser()
arguments.add_argument("header")
arguments.add_argument("--names", action="store_true", help="list the functions, one a line, in the header's order")
arguments.add_argument("--index", metavar="PAGE", help="an index by task")
options = arguments.parse_args()

interface = description.read(options.header)
names = [f.name for f in interface.header.functions]
if options.names:
    print("\n".join(names))
    sys.exit()
mistakes = list(interface.mistakes)
if options.index:
    with open(options.index, encoding="utf-8") as file:
        page = file.read()
    mistakes += [f"{options.index}: there is no {name}" for name in sorted(set(re.findall(r"\bqors[A-Z]\w*", page)) - set(names))]
    mistakes += [f"{options.index}: no line leads to the family {family.name}" for family in interface.header.families
                 if family.functions and family.name != "version" and f"@ref {family.name}" not in page]
for mistake in mistakes:
    print(mistake)
print(f"{len(interface.calls)} of {len(names)} functions are described")
sys.exit(1 if mistakes else 0)
