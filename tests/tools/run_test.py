#!/usr/bin/env python3
"""What ./run builds, what it shows meanwhile, and what tools/setup.sh installs. The build is a
script that prints the lines of a real one."""

import errno
import os
import pty
import shutil
import stat
import subprocess
import tempfile
import unittest

_ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
_CORVEL = os.environ.get('CORVEL', 'corvel')

# Prints the file `steps`, makes the programs and ends with the number in `status`.
_CMAKE = r'''#!/bin/sh
[ "$1" = --build ] || exit 0
echo "$4" >> targets
cat steps
for folder in build/release/bin build/release/bin/for_samples; do
  mkdir -p "$folder"
  printf '#!/bin/sh\necho "%s $*"\n' "$folder" > "$folder/corvel"
  chmod +x "$folder/corvel"
done
exit "$(cat status)"
'''


def _all_from(terminal):
    """What a terminal was sent, which comes in pieces, once nobody has it open on the other side;
    closes it."""
    pieces = []
    try:
        while piece := os.read(terminal, 4096):
            pieces.append(piece)
    except OSError as error:
        if error.errno != errno.EIO:  # how Linux tells the end
            raise
    os.close(terminal)
    return b''.join(pieces)


class Folder(unittest.TestCase):
    """A folder with a copy of our scripts, and programs that are found before the system's."""

    def setUp(self):
        self.folder = os.path.realpath(tempfile.mkdtemp(prefix='corvel-run-'))
        self.addCleanup(shutil.rmtree, self.folder)
        for name in ('run', 'tools/setup.sh'):
            os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
            shutil.copy(os.path.join(_ROOT, name), self.path(name))
        os.mkdir(self.path('programs'))

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, text):
        with open(self.path(name), 'w', encoding='utf-8') as file:
            file.write(text)

    def read(self, name):
        with open(self.path(name), encoding='utf-8') as file:
            return file.read()

    def add_program(self, name, text):
        self.write(f'programs/{name}', text)
        os.chmod(self.path(f'programs/{name}'), stat.S_IRWXU)

    def call(self, *command, **options):
        environment = {**os.environ,
                       'PATH': self.path('programs') + os.pathsep + os.environ['PATH']}
        return subprocess.run(command, cwd=self.folder, env=environment, text=True, check=False,
                              stdin=subprocess.DEVNULL, **options)


class Run(Folder):

    def setUp(self):
        super().setUp()
        self.add_program('cmake', _CMAKE)
        self.add_program('dpkg-query', '#!/bin/sh\nprintf installed\n')
        self.write('status', '0')

    def play(self, steps, *arguments):
        self.write('steps', ''.join(f'{step}\n' for step in steps))
        return self.call(self.path('run'), *arguments, capture_output=True)

    def test_ArgumentsAskForAllReleases(self):
        done = self.play([], 'info', 'house.ifc')
        self.assertEqual(('build/release/bin info house.ifc\n', '', 0),
                         (done.stdout, done.stderr, done.returncode))
        self.assertEqual('corvel\n', self.read('targets'))

    def test_TheSamplesAskForTheirReleaseOnly(self):
        done = self.play([])
        lines = done.stdout.splitlines()
        self.assertIn('build/release/bin/for_samples merge ', lines[0])
        self.assertEqual(f'The merged model is {self.folder}/build/demo/office.ifc', lines[-1])
        self.assertEqual('corvel_for_samples\n', self.read('targets'))

    def test_EachTenthOfTheWayIsALineBesideTheOutput(self):
        done = self.play(['[0/2] Re-checking globbed directories...',
                          *(f'[{step}/40] Building x{step}.o' for step in range(1, 41))], 'info')
        self.assertEqual('build/release/bin info\n', done.stdout)
        first, *lines = done.stderr.splitlines()
        self.assertEqual('Building the program with all releases', first)
        self.assertEqual([f'  step {step} of 40' for step in (1, *range(4, 41, 4))],
                         [line.split(',')[0] for line in lines])

    def test_NothingIsSaidWhenThereIsNothingToBuild(self):
        done = self.play(['[0/2] Re-checking globbed directories...', 'ninja: no work to do.'],
                         'info')
        self.assertEqual('', done.stderr)

    def test_OnATerminalOneLineMoves(self):
        self.write('steps', '[1/2] Building x.o\n[2/2] Linking corvel\n')
        ours, theirs = pty.openpty()
        self.call(self.path('run'), 'info', stdout=subprocess.DEVNULL, stderr=theirs)
        os.close(theirs)
        shown = _all_from(ours).decode()
        self.assertRegex(shown, r'\ABuilding the program with all releases\r\n'
                                r'\r  step 1 of 2, \d+ s \r  step 2 of 2, \d+ s \r\n\Z')

    def test_AFailedBuildShowsTheEndOfItsLogAndSaysWhereItIs(self):
        self.write('status', '1')
        done = self.play([f'[1/{lines}] line {lines}' for lines in range(1, 61)], 'info')
        self.assertEqual(('', 1), (done.stdout, done.returncode))
        lines = done.stderr.splitlines()
        self.assertEqual(f'The build failed; the whole log is {self.folder}/build/run.log',
                         lines[-1])
        self.assertEqual([f'[1/{number}] line {number}' for number in range(21, 61)],
                         lines[-41:-1])
        self.assertEqual(60, len(self.read('build/run.log').splitlines()))


class Setup(Folder):

    def setUp(self):
        super().setUp()
        for name in ('sudo', 'apt-get'):
            self.add_program(name, f'#!/bin/sh\necho "{name} $*" >> "{self.path("calls")}"\n')

    def set_up(self, installed, *extra):
        self.add_program('dpkg-query', '#!/bin/sh\n'
                         f'for last; do :; done\ncase $last in {installed}) printf installed ;; esac\n')
        done = self.call(self.path('tools/setup.sh'), *extra, capture_output=True)
        calls = self.read('calls') if os.path.exists(self.path('calls')) else ''
        return done, calls

    def test_NothingIsAskedOfTheNetworkWhenEverythingIsThere(self):
        done, calls = self.set_up('*', 'wine64')
        self.assertEqual(('', '', 0, ''), (done.stdout, done.stderr, done.returncode, calls))

    def test_WhatIsMissingIsNamedBeforeItIsInstalled(self):
        done, calls = self.set_up('[!cw]*', 'wine64')
        self.assertEqual(('Installing with apt-get: cmake ccache wine64\n', 0),
                         (done.stderr, done.returncode))
        self.assertIn('install -y -qq --no-install-recommends cmake ccache wine64\n', calls)


class ProgramForSamples(unittest.TestCase):

    def test_ItMergesThemAsTheProgramWithAllReleasesDoes(self):
        folder = tempfile.mkdtemp(prefix='corvel-run-')
        self.addCleanup(shutil.rmtree, folder)
        models = [os.path.join(_ROOT, 'samples', f'office_{part}_IFC4.ifc')
                  for part in ('architecture', 'structure')]
        program = os.path.join(os.path.dirname(_CORVEL), 'for_samples', 'corvel')
        outputs = []
        for corvel in (_CORVEL, program):
            output = os.path.join(folder, 'office.ifc')
            subprocess.run([corvel, 'merge', '--quiet', *models, '-o', output], check=True)
            with open(output, 'rb') as file:
                outputs.append(file.read().partition(b'DATA;')[2])
            os.remove(output)
        self.assertIn(b'IFCPROJECT', outputs[0])
        self.assertEqual(*outputs)


if __name__ == '__main__':
    unittest.main()
