"""The layers as the linker sees them: the objects of one need those below and no other."""
import os
import subprocess
import sys
import unittest
from pathlib import Path

BUILD = Path(os.environ['CORVEL_BUILD'])
# From the ground up.
LAYERS = ['platform', 'core', 'step', 'schema', 'merge', 'plugin', 'host']


def symbols(layer, *options):
    library = BUILD / 'src' / layer / f'libcorvel_{layer}.a'
    lines = subprocess.run(['nm', '--format=posix', *options, library], capture_output=True, text=True,
                           check=True).stdout.splitlines()
    fields = [line.split() for line in lines if line and not line.endswith(':')]
    return fields


def defined(layer):
    return {name for name, kind, *_ in symbols(layer, '--defined-only') if kind.isupper()}


def needed(layer):
    return {name for name, *_ in symbols(layer, '--undefined-only')}


class Libraries(unittest.TestCase):

    def test_ObjectsNeedOnlyTheLayersBelow(self):
        names = {layer: defined(layer) for layer in LAYERS}
        for at, layer in enumerate(LAYERS):
            below = set().union(*(names[one] for one in LAYERS[:at + 1]))
            open_ones = needed(layer) - below
            for above in LAYERS[at + 1:]:
                with self.subTest(layer=layer, above=above):
                    self.assertEqual(set(), open_ones & names[above])

    def test_EveryLayerIsOneLibraryWithObjects(self):
        for layer in LAYERS:
            with self.subTest(layer=layer):
                self.assertGreater(len(defined(layer)), 10)


if __name__ == '__main__':
    sys.exit(unittest.main())
