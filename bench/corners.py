"""Reads and merges models of one extreme in sizes 1, 2, 4 and 8, and prints how the cost grows.

    corners.py BUILD FOLDER [CORNER...]

The exponent is the slope of cost over size, both as logarithms, by least squares: 1 is linear. What
a model of no records costs is taken off first.
"""
import itertools
import math
import sys
from pathlib import Path

from measure import Failed, medians, stages

SIZES = (1, 2, 4, 8)
RUNS = 3
LINEAR = 1.15              # exponents up to here are noise
LARGEST_NUMBER = 4294967279

_HEAD = '''ISO-10303-21;
HEADER;
FILE_DESCRIPTION(('ViewDefinition [CoordinationView]'),'2;1');
FILE_NAME('corner','2020-01-01T00:00:00',(''),(''),'','','');
FILE_SCHEMA(('IFC4'));
ENDSEC;
DATA;
#1=IFCPROJECT('0000000000000000000001',$,'P',$,$,$,$,$,$);
'''
_TAIL = 'ENDSEC;\nEND-ISO-10303-21;\n'


def _points(first, count):
    return (f'#{number}=IFCCARTESIANPOINT(({number}.5,0.,-1.25));\n'
            for number in range(first, first + count))


def one_aggregate(size):
    """A list with all points of the model in it."""
    count = size // 52
    members = ','.join(f'#{number}' for number in range(2, 2 + count))
    return itertools.chain(_points(2, count), [f'#{count + 2}=IFCPOLYLINE(({members}));\n'])


def one_target(size):
    """A point that all other records refer to."""
    return itertools.chain(_points(2, 1), (
        f'#{number}=IFCVERTEXPOINT(#2);\n' for number in range(3, size // 27)))


def all_forward(size):
    """Every reference leads to a record further down."""
    count = size // 72
    return itertools.chain(
        (f'#{number}=IFCVERTEXPOINT(#{number + count});\n' for number in range(2, 2 + count)),
        _points(2 + count, count))


def distinct_texts(size):
    """No text occurs twice."""
    return (f"#{number}=IFCPROPERTYSINGLEVALUE('Name {number}',$,IFCLABEL('Value {number}'),$);\n"
            for number in range(2, size // 77))


def equal_texts(size):
    """Every text is the same."""
    return (f"#{number}=IFCPROPERTYSINGLEVALUE('Reference',$,IFCLABEL('Reference'),$);\n"
            for number in range(2, size // 71))


def sparse_numbers(size):
    """Numbers with equal gaps up to the largest that a record may have."""
    count = size // 49
    gap = (LARGEST_NUMBER - 2) // count
    return (f'#{LARGEST_NUMBER - index * gap}=IFCCARTESIANPOINT((1.5,0.,-1.25));\n'
            for index in reversed(range(count)))


def one_record(size):
    """A single record of many numbers."""
    points = (f'({number}.5,0.25,-1.25)' for number in range(100000, 100000 + size // 23))
    return [f'#2=IFCCARTESIANPOINTLIST3D(({",".join(points)}));\n']


def one_text(size):
    """A single record of one text."""
    return [f"#2=IFCPROPERTYSINGLEVALUE('Name','{'Text of 16 bytes' * (size // 16)}',$,$);\n"]


# Bytes of size 1.
CORNERS = {one_aggregate: 4e6, one_target: 4e6, all_forward: 4e6, distinct_texts: 4e6,
           equal_texts: 4e6, sparse_numbers: 4e6, one_record: 12.5e6, one_text: 12.5e6}


def write_model(path, records):
    """Gives the size in bytes."""
    with open(path, 'w', encoding='ascii', newline='\n') as file:
        file.write(_HEAD)
        file.writelines(records)
        file.write(_TAIL)
    return path.stat().st_size


def exponent(sizes, costs):
    """The slope of log(cost) over log(size); None where a cost is nothing."""
    if min(costs) <= 0:
        return None
    x, y = [[math.log(value) for value in values] for values in (sizes, costs)]
    mean_x, mean_y = sum(x) / len(x), sum(y) / len(y)
    return (sum((a - mean_x) * (b - mean_y) for a, b in zip(x, y))
            / sum((a - mean_x) ** 2 for a in x))


class Corners:
    """Measures with the job benchmark."""

    def __init__(self, build, folder):
        self._bench = build / 'bench' / 'corvel_job_bench'
        self._model, self._out = folder / 'corner.ifc', folder / 'corner_out.ifc'
        write_model(self._model, [])
        self._empty = self._costs()

    def _costs(self):
        """Job -> Cost, for the model as it lies there."""
        found = medians({
            'read': lambda: stages([self._bench, 'read', self._model]),
            'resave': lambda: stages([self._bench, 'resave', self._model, self._out]),
            'merge': lambda: stages([self._bench, 'merge', self._out, self._model, self._model]),
        }, RUNS)
        return {'read': found['read read'], 'write': found['resave write'],
                'merge': found['merge whole']}

    def print(self, corner):
        """One row for each job."""
        sizes, costs = [], []
        for factor in SIZES:
            sizes.append(write_model(self._model, corner(int(CORNERS[corner] * factor))))
            costs.append(self._costs())
        for job, empty in self._empty.items():
            seconds = [cost[job].seconds - empty.seconds for cost in costs]
            peaks = [cost[job].peak - empty.peak for cost in costs]
            exponents = exponent(sizes, seconds), exponent(sizes, peaks)
            shown = ''.join(f'{value:>8.2f}' if value is not None else f'{"-":>8}'
                            for value in exponents)
            bent = any(value is not None and value > LINEAR for value in exponents)
            size = sizes[-1] * (2 if job == 'merge' else 1)  # bytes that the job reads
            print(f'{corner.__name__.replace("_", " "):<16}{job:<7}{shown}'
                  f'{size / 1e6 / seconds[-1]:>8.0f}{peaks[-1] / size:>9.2f}'
                  f'  {"NOT LINEAR" if bent else "linear"}')
        sys.stdout.flush()

    def remove_files(self):
        for path in (self._model, self._out):
            path.unlink(missing_ok=True)


def main():
    names = {corner.__name__: corner for corner in CORNERS}
    asked = sys.argv[3:] or list(names)
    unknown = [name for name in asked if name not in names]
    if unknown:
        sys.exit(f'no corner {unknown[0]}; there are {", ".join(names)}')
    folder = Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    corners = Corners(Path(sys.argv[1]), folder)
    print(f'{"corner":<16}{"job":<7}{"time":>8}{"memory":>8}{"MB/s":>8}{"peak/B":>9}')
    for name in asked:
        try:
            corners.print(names[name])
        except Failed as error:
            print(f'{name.replace("_", " "):<16}{error}')
    corners.remove_files()


if __name__ == '__main__':
    main()
