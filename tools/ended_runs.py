#!/usr/bin/env python3
"""Ends runs of the program at random moments and looks at what they leave.

    tools/ended_runs.py [--corvel build/dev/bin/corvel] [--runs 100] [--megabytes 3]

Runs are ended by Ctrl-C, SIGTERM, SIGHUP and kill -9, so many of each, over an output that is there
already; then so many pairs of runs write one output side by side. Every output has to be whole and one
of those that may be there, and nothing else may be left but by kill -9, after which one further run
has to clean up. Ends with status 1 and names what was wrong.
"""

import argparse
import collections
import os
import random
import signal
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, 'tests', 'host', 'end_to_end'))

from support import large_model  # noqa: E402

SIGNALS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGKILL)


class Folder:
    """Two inputs in folders of their own, and what a whole output of each looks like."""

    def __init__(self, program, path, megabytes):
        self.program = program
        self.path = path
        self.outputs = []
        for i in (0, 1):
            os.mkdir(os.path.join(path, f'in{i}'))
            self.write(f'in{i}/a.ifc', large_model(megabytes, first=2 + i))
            self.start(i).wait()
            self.outputs.append(self.read('out.ifc'))
        if self.outputs[0] == self.outputs[1]:
            sys.exit('the two outputs cannot be told from each other')

    def write(self, name, content):
        with open(os.path.join(self.path, name), 'wb') as file:
            file.write(content)

    def read(self, name):
        with open(os.path.join(self.path, name), 'rb') as file:
            return file.read()

    def start(self, i):
        return subprocess.Popen([self.program, 'resave', f'in{i}/a.ifc', 'out.ifc'], cwd=self.path,
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL)

    def names(self):
        return sorted(os.listdir(self.path))


def seconds_of_a_run(folder):
    start = time.monotonic()
    folder.start(0).wait()
    return time.monotonic() - start


def end_run(folder, number, longest):
    """One run that is ended by a signal; gives its status and what is wrong with what it left."""
    older = folder.outputs[1]
    folder.write('out.ifc', older)
    process = folder.start(0)
    time.sleep(random.uniform(0, longest))
    process.send_signal(number)
    status = process.wait()
    mistakes = []
    left = folder.read('out.ifc') if 'out.ifc' in folder.names() else None
    if left not in (older, folder.outputs[0]):
        mistakes.append('the output is ' + ('gone' if left is None else f'{len(left)} bytes'))
    # A signal may come before the program catches any.
    allowed = {0: folder.outputs[0], 3: older, -number: None}
    if status not in allowed:
        mistakes.append(f'status {status}')
    elif allowed[status] not in (None, left):
        mistakes.append(f'status {status} does not fit what is there')
    rest = [name for name in folder.names() if name.startswith('.')]
    if rest and number == signal.SIGKILL:
        folder.start(0).wait()
        rest = [name for name in folder.names() if name.startswith('.')]
    if rest:
        mistakes.append(f'left: {rest}')
    return status, mistakes


def write_side_by_side(folder):
    runs = [folder.start(0), folder.start(1)]
    statuses = [run.wait() for run in runs]
    mistakes = [] if statuses == [0, 0] else [f'statuses {statuses}']
    if folder.read('out.ifc') not in folder.outputs:
        mistakes.append('the output is a mixture')
    if folder.names() != ['in0', 'in1', 'out.ifc']:
        mistakes.append(f'left: {folder.names()}')
    return mistakes


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument('--corvel', default=os.path.join(ROOT, 'build', 'dev', 'bin', 'corvel'))
    parser.add_argument('--runs', type=int, default=100)
    parser.add_argument('--megabytes', type=int, default=3)
    options = parser.parse_args()
    wrong = 0
    with tempfile.TemporaryDirectory(prefix='corvel_ended_') as path:
        folder = Folder(os.path.abspath(options.corvel), path, options.megabytes)
        longest = 1.1 * seconds_of_a_run(folder)
        for number in SIGNALS:
            statuses = collections.Counter()
            for run in range(options.runs):
                status, mistakes = end_run(folder, number, longest)
                statuses[status] += 1
                wrong += bool(mistakes)
                for mistake in mistakes:
                    print(f'{number.name}, run {run + 1}: {mistake}')
            told = ', '.join(f'status {status}: {count}' for status, count in sorted(statuses.items()))
            print(f'{number.name}: {options.runs} runs, {told}', flush=True)
        for run in range(options.runs):
            mistakes = write_side_by_side(folder)
            wrong += bool(mistakes)
            for mistake in mistakes:
                print(f'side by side, run {run + 1}: {mistake}')
        print(f'side by side: {options.runs} pairs')
    print(f'{wrong} wrong' if wrong else 'all outputs were whole')
    return 1 if wrong else 0


if __name__ == '__main__':
    sys.exit(main())
