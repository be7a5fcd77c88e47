"""The program under test, its working folder and the models that the tests share."""

import functools
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from typing import NamedTuple

import schema_facts
import step_text
import written_form

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SAMPLES = os.path.join(ROOT, 'samples')
# Models of other makers. They are no part of the repository; tests on them skip where they are not
# there.
REAL_MODELS = os.environ.get(
    'CORVEL_REAL_MODELS', os.path.join(os.path.dirname(ROOT), 'shared', 'samples'))

DONE, NOTHING_WRITTEN, CANCELLED, WRITTEN_WITH_REPORTS = 0, 1, 3, 4
# Shown for each project but the first of a model, and no reason to give it up.
# A warning of a model that goes together badly with the first one, and is merged all the same.
UNLIKE_THE_FIRST = re.compile(r'^corvel: .*?: (its length unit is|its map conversion is not|it has '
                              r'(a|no) map conversion).*\n', re.M)
SECOND_PROJECT = 'Logfile error: MainContainer::AddEntity. IfcTree already exists.\n'

_PROGRAM = os.path.abspath(
    os.environ.get('CORVEL', os.path.join(ROOT, 'build', 'release', 'bin', 'corvel')))
_BUILD = os.environ.get('CORVEL_BUILD', os.path.dirname(os.path.dirname(_PROGRAM)))


class Result(NamedTuple):
    status: int
    output: str
    errors: str


def run(arguments, folder):
    """Runs the program without a terminal. A crash or a hang fails the test."""
    done = subprocess.run([_PROGRAM, *arguments], cwd=folder, stdin=subprocess.DEVNULL,
                          capture_output=True, text=True, timeout=600, check=False)
    if done.returncode < 0:
        raise AssertionError(f'{arguments}: ended by signal {-done.returncode}: {done.stderr}')
    return Result(done.returncode, done.stdout, done.stderr)


def build_folder():
    return _BUILD


@functools.cache
def built_releases():
    """The releases whose classes the program has: a developer may leave some out."""
    with open(os.path.join(_BUILD, 'CMakeCache.txt'), encoding='utf-8') as file:
        return re.search(r'^CORVEL_RELEASES:\w+=(.*)$', file.read(), re.M).group(1).split(';')


def sample_paths():
    return [os.path.join(SAMPLES, name) for name in sorted(os.listdir(SAMPLES))
            if name.endswith('.ifc')]


@functools.cache
def identifier_of(path):
    """The schema identifier in a model's header."""
    with open(path, 'rb') as file:
        data = file.read()
    return re.search(rb"FILE_SCHEMA\s*\(\s*\(\s*'([^']*)'", data).group(1).decode('ascii')


@functools.lru_cache(maxsize=4)
def model_of(path, ignore_enum_errors=False):
    """The model that the program should hold after reading a file."""
    return written_form.Model(step_text.read(path), ignore_enum_errors)


class ModelTest(unittest.TestCase):
    """A test with a folder of its own: models are copied into it, since reading one leaves files
    beside it."""

    expected_errors = ''              # on standard error when a model is written without a report

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix='corvel-models-')
        self.addCleanup(shutil.rmtree, self.folder)

    def path(self, name):
        return os.path.join(self.folder, name)

    def copy(self, path):
        """The name of the copy."""
        shutil.copyfile(path, self.path(os.path.basename(path)))
        return os.path.basename(path)

    def write(self, name, data):
        with open(self.path(name), 'wb') as file:
            file.write(data)
        return name

    def read(self, name):
        with open(self.path(name), 'rb') as file:
            return file.read()

    def need_release(self, identifier):
        release = schema_facts.choose_release(identifier)
        if release is not None and release not in built_releases():
            self.skipTest(f'this build leaves {release} out')

    def resave(self, name, *options, status=DONE, output='out.ifc'):
        """The file written for one of this folder. Nothing may be said about it."""
        result = run(['resave', '--quiet', name, output, *options], self.folder)
        self.assertEqual((result.status, result.output), (status, ''), result.errors)
        if status == DONE:
            self.assertEqual(result.errors, self.expected_errors)
        return self.read(output)

    def merge(self, names, *options, status=DONE, output='merged.ifc'):
        result = run(['merge', '--quiet', *names, '-o', output, *options], self.folder)
        self.assertEqual((result.status, result.output), (status, ''), result.errors)
        if status == DONE:
            self.assertEqual(UNLIKE_THE_FIRST.sub('', result.errors), self.expected_errors)
        return self.read(output)

    def assert_same_file(self, wanted, written):
        """Compares bytes, and shows the first line that differs instead of all of them."""
        if wanted == written:
            return
        wanted_lines, written_lines = wanted.split(b'\n'), written.split(b'\n')
        for place, (want, got) in enumerate(zip(wanted_lines, written_lines), 1):
            self.assertEqual(want, got, f'line {place}')
        self.assertEqual(len(wanted_lines), len(written_lines), 'number of lines')

    def check_fixpoint(self, name, rules, options=(), status=DONE):
        """What was written comes back as it is, save for numbers that become whole at first. Then
        it is the next time that nothing changes."""
        first = self.read(name)
        again = self.resave(name, *options, status=status, output='again.ifc')
        if written_form.WHOLE_WHEN_ROUNDED in rules:
            self.assert_same_file(written_form.Model(step_text.StepFile(first)).text(), again)
            first, again = again, self.resave('again.ifc', *options, status=status,
                                              output='and_again.ifc')
        self.assert_same_file(first, again)
