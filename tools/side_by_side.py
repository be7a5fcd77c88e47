#!/usr/bin/env python3
"""Two programs merge the same models at the same time, again and again, and every output is right.

    side_by_side.py --corvel PROGRAM [--test-host PROGRAM] [--runs N] [--size SIZE]

An output is right when it has, byte for byte, what a lone run writes. The command line keeps the
work files of its reading to itself; the plug-in, which the program of its tests plays the viewer
for (corvel_test_host of a build), keeps them beside the inputs, where both runs want them. N rounds
are run for each of the two, and all rounds that went wrong are told.
"""

import argparse
import os
import subprocess
import sys
import tempfile

from models import big


def make_models(folder, size):
    """Two models of different numbers, a good part of whose records refer forward."""
    names = ['a.ifc', 'b.ifc']
    for seed, name in enumerate(names, 1):
        big.write_big('IFC4', size, os.path.join(folder, name), seed)
    return names


class Runs:
    """Merges of the same models, into outputs of their own."""

    def __init__(self, folder, inputs, command):
        self._folder = folder
        self._inputs = inputs
        self._command = command

    def start(self, output):
        path = os.path.join(self._folder, output)
        if os.path.exists(path):
            os.remove(path)
        return subprocess.Popen(self._command(output, self._inputs), cwd=self._folder,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT)

    def finish(self, process, output):
        """The bytes of the output and what the run said; None for an output that is not there."""
        said = process.communicate()[0].decode(errors='replace')
        path = os.path.join(self._folder, output)
        if not os.path.exists(path):
            return None, said
        with open(path, 'rb') as file:
            return file.read(), said

    def alone(self, output):
        return self.finish(self.start(output), output)

    def side_by_side(self, outputs):
        processes = [self.start(output) for output in outputs]
        return [self.finish(*pair) for pair in zip(processes, outputs)]


def difference(expected, got):
    """What is wrong with an output, or None."""
    if got is None:
        return 'is missing'
    if got == expected:
        return None
    wanted, lines = expected.splitlines(), got.splitlines()
    wrong = sum(a != b for a, b in zip(wanted, lines)) + abs(len(wanted) - len(lines))
    return f'has {len(got)} bytes for {len(expected)}, {wrong} lines are others'


def play(title, runs, rounds):
    """How many outputs were wrong; tells each."""
    expected, said = runs.alone('alone.ifc')
    if expected is None or runs.alone('again.ifc')[0] != expected:
        print(f'{title}: a lone run writes nothing, or something else each time\n{said}')
        return 1
    wrong = 0
    for number in range(1, rounds + 1):
        outputs = ['one.ifc', 'two.ifc']
        for output, (got, said) in zip(outputs, runs.side_by_side(outputs)):
            trouble = difference(expected, got)
            if trouble:
                wrong += 1
                print(f'{title}, round {number}: {output} {trouble}\n{said}')
    print(f'{title}: {rounds} rounds of two runs, {wrong} outputs wrong')
    return wrong


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split('\n', maxsplit=1)[0])
    parser.add_argument('--corvel', required=True, metavar='PROGRAM')
    parser.add_argument('--test-host', metavar='PROGRAM')
    parser.add_argument('--runs', type=int, default=200, metavar='N')
    parser.add_argument('--size', type=big.size_in_bytes, default=2_000_000,
                        help='of each of the two models')
    options = parser.parse_args(arguments)
    corvel = os.path.abspath(options.corvel)
    test_host = options.test_host and os.path.abspath(options.test_host)

    def by_command_line(output, inputs):
        return [corvel, 'merge', *inputs, '-o', output, '--quiet', '--answer', 'no']

    def by_plugin(output, inputs):
        return [test_host, '--merge', output, *inputs]

    wrong = 0
    with tempfile.TemporaryDirectory(prefix='corvel_side_by_side_') as folder:
        inputs = make_models(folder, options.size)
        wrong += play('command line', Runs(folder, inputs, by_command_line), options.runs)
        if test_host:
            wrong += play('plug-in', Runs(folder, inputs, by_plugin), options.runs)
    return 1 if wrong else 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
