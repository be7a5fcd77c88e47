#!/usr/bin/env python3
"""Small cases as folders in golden/, each byte for byte:

    job.txt                the arguments of the program
    *.ifc                  its inputs
    wanted/out.ifc         the output; absent where none may be written
    wanted/messages.txt    the exit status, lines of standard output as "output: ...", and standard
                           error
    wanted/log.txt         texts that the log holds, in this order; only where a case is about them

New GUIDs are random: where a record of the wanted file has the GUID NEW, any new one is good.

To accept what the program does now: golden_test.py --accept [CASE...]. Read every file that
changes as if you had to write it by hand, before you keep it.
"""

import argparse
import os
import re
import sys
import unittest

import program
from program import ModelTest

_CASES = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'golden')
_RELEASE = re.compile(rb"FILE_SCHEMA ?\(\('([^']*)'")
_NEW_GUID = re.compile(rb"\('[0-3][0-9A-Za-z_$]{21}'")
_GUID_IN_LOG = re.compile(r'(?<=for this object: ")\S{22}|(?<=Generating new GUID: )\S{22}')


def case_names():
    return sorted(os.listdir(_CASES))


class Golden(ModelTest):
    """Gets one test per case, below."""

    def play(self, case):
        """Name of a wanted file to what was found for it, None for no such file."""
        source = os.path.join(_CASES, case)
        for name in os.listdir(source):
            if name.endswith('.ifc'):
                self.copy(os.path.join(source, name))
                [identifier] = _RELEASE.findall(self.read(name))
                self.need_release(identifier.decode('ascii'))
        arguments = self.read_case(case, 'job.txt').decode('ascii').split()
        inputs = set(os.listdir(self.folder))
        result = program.run(arguments, self.folder)
        left = {name for name in set(os.listdir(self.folder)) - inputs
                if not name.endswith(('_TEMP.ifc', '_IFC_LOG.txt'))}
        self.assertLessEqual(left, {'out.ifc'})
        messages = ''.join([f'exit status {result.status}\n',
                            *(f'output: {line}\n' for line in result.output.splitlines()),
                            result.errors])
        return {'out.ifc': self.read('out.ifc') if left else None,
                'messages.txt': messages.encode('utf-8')}

    def read_case(self, case, name):
        path = os.path.join(_CASES, case, name)
        if not os.path.exists(path):
            return None
        with open(path, 'rb') as file:
            return file.read()

    def log(self):
        [name] = [name for name in os.listdir(self.folder) if name.endswith('_IFC_LOG.txt')]
        return _GUID_IN_LOG.sub('NEW', self.read(name).decode('utf-8'))

    def check(self, case):
        found = self.play(case)
        wanted = self.read_case(case, 'wanted/out.ifc')
        self.assertEqual(wanted is None, found['out.ifc'] is None, 'whether there is an output')
        if wanted is not None:
            self.assert_same_file(wanted, hide_new_guids(found['out.ifc'], wanted))
        self.assertEqual(self.read_case(case, 'wanted/messages.txt').decode('utf-8'),
                         found['messages.txt'].decode('utf-8'))
        texts = self.read_case(case, 'wanted/log.txt')
        if texts is not None:
            self.check_log(texts.decode('utf-8').splitlines())

    def check_log(self, texts):
        log, position = self.log(), 0
        for text in texts:
            self.assertIn(text, log[position:])
            position = log.index(text, position) + len(text)

    def accept(self, case):
        """Writes what was found over what was wanted; texts of the log are kept by hand."""
        found = self.play(case)
        wanted = self.read_case(case, 'wanted/out.ifc')
        folder = os.path.join(_CASES, case, 'wanted')
        os.makedirs(folder, exist_ok=True)
        if found['out.ifc'] is None:
            if wanted is not None:
                os.remove(os.path.join(folder, 'out.ifc'))
            del found['out.ifc']
        elif wanted is not None:
            found['out.ifc'] = hide_new_guids(found['out.ifc'], wanted)
        for name, data in found.items():
            with open(os.path.join(folder, name), 'wb') as file:
                file.write(data)


def hide_new_guids(written, wanted):
    """`written` with NEW in those records where `wanted` has it."""
    lines, wanted_lines = written.split(b'\n'), wanted.split(b'\n')
    for place, line in enumerate(wanted_lines[:len(lines)]):
        if b"('NEW'" in line:
            lines[place] = _NEW_GUID.sub(b"('NEW'", lines[place], count=1)
    return b'\n'.join(lines)


def add_test(case):
    def test(self):
        self.check(case)
    setattr(Golden, 'test_' + case, test)


for _case in case_names():
    add_test(_case)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('--accept', nargs='*', metavar='CASE')
    cases = parser.parse_known_args()[0].accept
    if cases is None:
        unittest.main()
    for case in cases or case_names():
        test = Golden('test_' + case)
        test.setUp()
        try:
            test.accept(case)
        finally:
            test.doCleanups()
        print(f'accepted: {case}', file=sys.stderr)


if __name__ == '__main__':
    main()
