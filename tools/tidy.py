#!/usr/bin/env python3
"""clang-tidy over many sources, several in one translation unit.

    tools/tidy.py COMPILE_COMMANDS_DIR SOURCE...

Most of what clang-tidy does goes into the headers that a source includes. The texts of sources that
are compiled alike are therefore put one behind the other, so that all of them are the main file and
get every check. A group with findings, and one whose sources don't compile together since two have
a name of their own in common, is checked again source by source: only what is found there counts.
"""

import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys

GROUP = 10
TIDY = ["clang-tidy", "--quiet", "--extra-arg=-Wno-unknown-warning-option"]


def groups_of(sources, commands):
    """Sources of one folder below src that have the same command but for their names."""
    alike = {}
    for source in sources:
        command = commands[source]
        folder = source.relative_to(pathlib.Path.cwd()).parts[1]
        key = folder, command["command"].split(" -o ")[0]
        alike.setdefault(key, []).append(source)
    return [same[i : i + GROUP] for same in alike.values() for i in range(0, len(same), GROUP)]


def write_groups(groups, commands, folder):
    """A source for each group, and the database that tells how to compile it."""
    folder.mkdir(exist_ok=True)
    entries = []
    for number, group in enumerate(groups):
        path = folder / f"group_{number}.cpp"
        path.write_text("\n".join(source.read_text() for source in group))
        of_first = commands[group[0]]
        command = of_first["command"].replace(of_first["file"], str(path))
        entries.append(of_first | {"command": command, "file": str(path)})
    (folder / "compile_commands.json").write_text(json.dumps(entries))
    return [folder / f"group_{number}.cpp" for number in range(len(groups))]


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


def main():
    database = pathlib.Path(sys.argv[1]).resolve()
    entries = json.loads((database / "compile_commands.json").read_text())
    commands = {pathlib.Path(entry["file"]).resolve(): entry for entry in entries}
    sources = [pathlib.Path(source).resolve() for source in sys.argv[2:]]
    groups = groups_of(sources, commands)
    paths = write_groups(groups, commands, database / "tidy")
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        together = pool.map(lambda path: tidy(database / "tidy", path), paths)
        again = [source for group, found in zip(groups, together) if found for source in group]
        found = [text for text in pool.map(lambda source: tidy(database, source), again) if text]
    print("\n".join(found), end="")
    if found:
        sys.exit(f"clang-tidy: {len(found)} of {len(sources)} files are not clean")
    alone = f", {len(again)} of them seen one by one" if again else ""
    print(f"clang-tidy: {len(sources)} files are clean{alone}")


main()
