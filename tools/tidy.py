#!/usr/bin/env python3
"""clang-tidy over many sources, several in one translation unit.

    tools/tidy.py COMPILE_COMMANDS_DIR SOURCE...

Most of what clang-tidy does goes into the headers that a source includes. The texts of sources that
are compiled alike are therefore put one behind the other, so that all of them are the main file and
get every check; source_groups.py says which can stand together. A group with findings, and one that
does not compile together all the same, is halved and checked again until each source stands alone: only
what is found there counts.
"""

import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys
import tempfile

import source_groups

# The analyzer follows the paths of a function to this many places; with its own bound, 225,000, all of
# clang-tidy takes two to four times as long.
ANALYZED = 40_000
TIDY = [
    "clang-tidy",
    "--quiet",
    "--extra-arg=-Wno-unknown-warning-option",
    *(f"--extra-arg={word}" for word in ("-Xclang", "-analyzer-config", "-Xclang",
                                         f"max-nodes={ANALYZED}")),
]


def groups_of(sources, commands):
    """Sources of one folder below src that have the same command but for their names."""
    alike = {}
    for source in sources:
        command = commands[source]
        folder = source.relative_to(pathlib.Path.cwd()).parts[1]
        key = folder, command["command"].split(" -o ")[0]
        alike.setdefault(key, []).append(source)
    return [group for same in alike.values() for group in source_groups.groups_of(same)]


def compiled_together(group, commands, folder):
    """A folder with a source of all of a group, and the database that tells how to compile it."""
    folder = pathlib.Path(tempfile.mkdtemp(dir=folder))
    path = folder / "group.cpp"
    path.write_text("\n".join(source.read_text() for source in group))
    of_first = commands[group[0]]
    command = of_first["command"].replace(of_first["file"], str(path))
    entry = of_first | {"command": command, "file": str(path)}
    (folder / "compile_commands.json").write_text(json.dumps([entry]))
    return folder


def tidy(database, source):
    """The findings of clang-tidy; empty when there is none."""
    done = subprocess.run(
        [*TIDY, "-p", str(database), "--config-file=.clang-tidy", str(source)],
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        text=True,
        check=False,
    )
    return "" if done.returncode == 0 else done.stdout or f"{source}: clang-tidy failed\n"


def halves(group):
    middle = len(group) // 2
    return [group[:middle], group[middle:]]


def findings(groups, commands, database, folder, pool):
    """What is found in sources that stand alone, and how many were seen so."""
    found = []
    alone = 0
    while groups:
        several = [group for group in groups if len(group) > 1]
        single = [source for group in groups if len(group) == 1 for source in group]
        folders = [compiled_together(group, commands, folder) for group in several]
        of_groups = pool.map(lambda path: tidy(path, path / "group.cpp"), folders)
        of_single = pool.map(lambda source: tidy(database, source), single)
        groups = [half for group, text in zip(several, of_groups) if text for half in halves(group)]
        found += [text for text in of_single if text]
        alone += len(single)
    return found, alone


def main():
    database = pathlib.Path(sys.argv[1]).resolve()
    entries = json.loads((database / "compile_commands.json").read_text())
    commands = {pathlib.Path(entry["file"]).resolve(): entry for entry in entries}
    sources = [pathlib.Path(source).resolve() for source in sys.argv[2:]]
    groups = groups_of(sources, commands)
    with (
        tempfile.TemporaryDirectory() as folder,
        concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool,
    ):
        found, alone = findings(groups, commands, database, folder, pool)
    print("\n".join(found), end="")
    if found:
        sys.exit(f"clang-tidy: {len(found)} of {len(sources)} files are not clean")
    print(f"clang-tidy: {len(sources)} files are clean, {alone} of them seen alone")


main()
