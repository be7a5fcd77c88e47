"""The layers: includes point down, and what belongs to one layer stays there."""
import re
import sys
import unittest
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2] / 'src'

# Each layer with those that it may include beside itself.
LAYERS = {
    'platform': [],
    'core': ['platform'],
    'step': ['platform', 'core'],
    'schema': ['platform', 'core', 'step'],
    'merge': ['platform', 'core', 'step', 'schema'],
    'plugin': ['platform', 'core', 'step', 'schema', 'merge'],
    'host': ['platform', 'core', 'step', 'schema', 'merge', 'plugin'],
}
RELEASES = re.findall(r'^CORVEL_RELEASE\((\w+)\)$',
                      (SOURCE / 'step' / 'releases.inc').read_text(encoding='ascii'), re.MULTILINE)
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
SYSTEM_INCLUDE = re.compile(
    r'^\s*#\s*include\s+<(windows\.h|unistd\.h|sys/|fcntl\.h|dlfcn\.h|signal\.h|shlobj|shellapi|io\.h)',
    re.MULTILINE)


def sources(layer):
    return sorted(p for p in (SOURCE / layer).rglob('*') if p.suffix in ('.h', '.cpp'))


class Layers(unittest.TestCase):

    def test_EveryLayerOfTheSourceFolderIsKnown(self):
        folders = {p.name for p in SOURCE.iterdir() if p.is_dir()}
        self.assertEqual(folders, set(LAYERS))

    def test_IncludesPointDown(self):
        for layer, below in LAYERS.items():
            for path in sources(layer):
                for included in INCLUDE.findall(path.read_text(encoding='utf-8')):
                    with self.subTest(file=str(path.relative_to(SOURCE)), included=included):
                        target = included.split('/')[0]
                        self.assertIn(target, [layer] + below)

    def test_TheEngineNamesNoClassOfARelease(self):
        qualified = re.compile(r'\b(%s)::Ifc|using namespace (%s)\b' % (('|'.join(RELEASES),) * 2))
        for layer in ('platform', 'core', 'step', 'merge', 'plugin', 'host'):
            for path in sources(layer):
                with self.subTest(file=str(path.relative_to(SOURCE))):
                    self.assertIsNone(qualified.search(path.read_text(encoding='utf-8')))

    def test_WalksAskForAllChildren(self):
        # What an object carries beside its attributes is not among those of collectChildren.
        allowed = {'core/entity.h', 'schema/generated_support.cpp', 'step/carried/carried_objects.cpp'}
        for layer in LAYERS:
            for path in sources(layer):
                name = path.relative_to(SOURCE).as_posix()
                if name in allowed:
                    continue
                with self.subTest(file=name):
                    self.assertNotRegex(path.read_text(encoding='utf-8'),
                                        r'(\.|->)collectChildren\(')

    def test_SystemHeadersStayInThePlatformLayerAndInTheWindowOfThePlugin(self):
        for layer in LAYERS:
            if layer == 'platform':
                continue
            for path in sources(layer):
                if layer == 'plugin' and path.parent.name == 'win32':
                    continue
                with self.subTest(file=str(path.relative_to(SOURCE))):
                    self.assertIsNone(SYSTEM_INCLUDE.search(path.read_text(encoding='utf-8')))


if __name__ == '__main__':
    sys.exit(unittest.main())
