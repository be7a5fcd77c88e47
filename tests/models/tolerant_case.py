"""What tests on models share that hold what their release does not take."""

import os
import unittest

import misfits
import program
from program import ModelTest


class TolerantTest(ModelTest):

    def models(self):
        """A model of every release that is built: its name, and its bytes with a record a line. An
        emulator takes its time for each start, and gets a model of two."""
        seen = set()
        releases = ('IFC2X3', 'IFC4') if 'CORVEL_SYSTEM' in os.environ else None
        for path in program.sample_paths():
            model = program.model_of(path)
            if releases is not None and model.identifier not in releases:
                continue
            if model.identifier not in seen and self.has_release(model.identifier):
                seen.add(model.identifier)
                yield model.identifier, model.text()

    def has_release(self, identifier):
        try:
            self.need_release(identifier)
        except unittest.SkipTest:
            return False
        return True

    def spoilt_models(self, kinds, share=1):
        """(name, good bytes, kind, what the kind makes of them): in each release one of `share`
        kinds, so that every kind has its turn."""
        for place, (identifier, data) in enumerate(self.models()):
            for number, kind in enumerate(kinds):
                if number % share != place % share:
                    continue
                spoilt = kind(misfits.Spoiler(number), data)
                if spoilt is not None:
                    yield identifier, data, kind, spoilt

    def run_tolerantly(self, arguments):
        result = program.run([arguments[0], '--tolerant', '--quiet', *arguments[1:]], self.folder)
        self.assertIn(result.status, (program.DONE, program.WRITTEN_WITH_REPORTS), result.errors)
        return result

    def merged(self, first, second, *options):
        """The records of the output."""
        self.write('a.ifc', first)
        self.write('b.ifc', second)
        self.run_tolerantly(['merge', 'a.ifc', 'b.ifc', '-o', 'merged.ifc', *options])
        written = self.read('merged.ifc')
        return written[written.index(b'DATA;'):]
