#!/usr/bin/env python3
"""Sources that can stand in one translation unit, so that their headers are read once for all.

    tools/source_groups.py SOURCE...        a line for each group, its sources separated by ";"

A source keeps to itself what its namespaces without a name define. Behind it in one unit, another
source would see these names, and could mean something else by them: it goes into a group none of whose
names it or a header of it says. The order within a group is that of the arguments.
"""

import functools
import pathlib
import re
import sys

GROUP = 10
# What a namespace without a name defines at the beginning of a line: a type, or the last name before
# a bracket, a "=" or a "{".
OWN = re.compile(r"^namespace \{\n(.*?)^\}  // namespace$", re.M | re.S)
NAMES = re.compile(
    r"^(?:(?:class|struct|enum class|enum|using) (\w+)|[a-zA-Z][^(={;/]*?(\w+)(?:\[\w*\])? ?[(={])", re.M
)
WORD = re.compile(r"\w+")
INCLUDE = re.compile(r'^#include "(.*)"', re.M)
ROOT = pathlib.Path(__file__).resolve().parent.parent / "src"


def names_of(text):
    """The names that a source keeps to itself."""
    return {first or second for own in OWN.findall(text) for first, second in NAMES.findall(own)}


@functools.cache
def read(path):
    """The words of a file, and the headers of ours that it includes."""
    text = path.read_text()
    headers = [ROOT / name for name in INCLUDE.findall(text)]
    return set(WORD.findall(text)), [header for header in headers if header.exists()]


def files_of(source):
    """A source and all its headers of ours."""
    files = [source]
    for file in files:
        files += [header for header in read(file)[1] if header not in files]
    return set(files)


def groups_of(sources):
    groups = []  # sources, the files that are read for them, and the names that they keep to themselves
    for source in sources:
        path = pathlib.Path(source)
        files, own = files_of(path), names_of(path.read_text())
        for group, known, taken in groups:
            # What has been read before the names came up is no reader of them.
            words = set().union(*(read(file)[0] for file in files - known))
            if len(group) < GROUP and not words & taken:
                group.append(source)
                known |= files
                taken |= own
                break
        else:
            groups.append(([source], files, own))
    return [group for group, *_ in groups]


if __name__ == "__main__":
    print("\n".join(";".join(group) for group in groups_of(sys.argv[1:])))
