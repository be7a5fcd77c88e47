"""Federations of many small models: what a merge costs beyond its bytes, and how that grows."""
import shutil

from measure import ROOT, process

SAMPLE = ROOT / 'samples' / 'office_architecture_IFC4.ifc'
COUNTS = (2, 10, 50, 200, 1000)


def copies(folder, count):
    """`count` models, all equal, in a folder below `folder`."""
    place = folder / 'many'
    place.mkdir(exist_ok=True)
    paths = [place / f'{number}.ifc' for number in range(count)]
    for path in paths:
        if not path.exists():
            shutil.copyfile(SAMPLE, path)
    return paths


def merge_many(program, folder, count, out):
    """Cost of the merge of so many models."""
    return process([program, 'merge', *copies(folder, count), '-o', out])
