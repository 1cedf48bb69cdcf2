"""check.py HEADER [--names]: says what the description of the interface lacks; with --names lists the functions."""
import argparse
import sys

import description

arguments = argparse.ArgumentParser()
arguments.add_argument("header")
arguments.add_argument("--names", action="store_true", help="list the functions, one a line, in the header's order")
options = arguments.parse_args()

interface = description.read(options.header)
if options.names:
    print("\n".join(f.name for f in interface.header.functions))
    sys.exit()
for mistake in interface.mistakes:
    print(mistake)
print(f"{len(interface.calls)} of {len(interface.header.functions)} functions are described")
sys.exit(1 if interface.mistakes else 0)
