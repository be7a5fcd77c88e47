#!/usr/bin/env python3
"""The stages of a job take as many instructions as recorded: a gate for speed that needs no clock.

Two models of 1 MB are read, folded and written, and one is marked, under valgrind's callgrind. Each
figure has to stay within 5 percent of the one in recorded.txt, on either side: what became faster is
recorded anew, so that it stays so. After a change that is meant:

    tests/instructions/instructions_test.py --accept

The figures hold for one compiler and processor family and for the preset `release`; elsewhere, and
without valgrind, the test tells so and ends with status 77.
"""

import glob
import os
import platform
import re
import shutil
import subprocess
import sys
import tempfile

_HERE = os.path.dirname(os.path.abspath(__file__))
_ROOT = os.path.dirname(os.path.dirname(_HERE))
_RECORDED = os.path.join(_HERE, 'recorded.txt')
_BUILD = os.environ.get('CORVEL_BUILD', os.path.join(_ROOT, 'build', 'release'))
_BENCH = os.path.join(_BUILD, 'bench', 'corvel_job_bench')
_SKIPPED = 77
_TOLERANCE = 0.05
_RELEASE_FLAGS = '-O2 -DNDEBUG'

# Stage to the function that does all of it.
_STAGES = {
    'read': 'corvel::IfcDocument::OpenFile(',
    'fold': 'corvel::MergeDocuments(',
    'write': 'corvel::IfcDocument::SaveFile(',
    'mark': 'corvel::IfcDocument::DeleteObjects(',
}


def give_up(reason):
    print(f'skipped: {reason}')
    sys.exit(_SKIPPED)


def build_value(pattern, *path):
    """What the only group of `pattern` finds in a file of the build."""
    (file_name,) = glob.glob(os.path.join(_BUILD, *path))
    with open(file_name, encoding='utf-8') as file:
        found = re.search(pattern, file.read(), re.M)
    return found.group(1) if found else ''


def cached(name):
    return build_value(rf'^{name}:\w+=(.*)$', 'CMakeCache.txt')


def built_by():
    """What the figures depend on beside the sources: `GNU 12.2.0 x86_64`."""
    facts = [build_value(rf'CMAKE_CXX_COMPILER_{fact} "(.*)"', 'CMakeFiles', '*',
                         'CMakeCXXCompiler.cmake') for fact in ('ID', 'VERSION')]
    return ' '.join(facts + [platform.machine()])


def need_release_build():
    if not shutil.which('valgrind'):
        give_up('there is no valgrind')
    if not os.path.exists(_BENCH):
        give_up(f'{_BUILD} has no benchmarks: it is not built with the preset release')
    flags = ' '.join((cached('CMAKE_CXX_FLAGS'), cached('CMAKE_CXX_FLAGS_RELEASE'))).strip()
    if (cached('CMAKE_BUILD_TYPE'), flags) != ('Release', _RELEASE_FLAGS):
        give_up(f'{_BUILD} is built with "{flags}", not with the preset release')


def inclusive(profile, wanted):
    """Instructions under all calls of the function whose name begins with `wanted`. In a profile a
    call is three lines: cfn=(id) name, the name at the first time only; calls=...; position cost."""
    names, called, total = {}, None, 0
    lines = iter(profile.splitlines())
    for line in lines:
        found = re.match(r'c?fn=\((\d+)\)(?: (.*))?', line)
        if found:
            if found.group(2):
                names[found.group(1)] = found.group(2)
            if line[0] == 'c':
                called = names[found.group(1)]
        elif line.startswith('calls='):
            cost = next(lines).split()[1]
            total += int(cost) if called.startswith(wanted) else 0
    return total


def profile_of(arguments, folder):
    path = os.path.join(folder, 'profile')
    subprocess.run(['valgrind', '--tool=callgrind', f'--callgrind-out-file={path}', _BENCH,
                    *arguments], check=True, capture_output=True, timeout=600)
    with open(path, encoding='utf-8') as file:
        return file.read()


def measured():
    """Stage to instructions."""
    with tempfile.TemporaryDirectory() as folder:
        models = [os.path.join(folder, f'{seed}.ifc') for seed in (1, 2)]
        for seed, model in zip((1, 2), models):
            subprocess.run([sys.executable, '-B', os.path.join(_ROOT, 'tools', 'make_models.py'),
                            'big', '--schema', 'IFC4', '--size', '1MB', '--seed', str(seed),
                            '--out', model], check=True, stdout=subprocess.DEVNULL)
        merge = profile_of(['merge', os.path.join(folder, 'out.ifc'), *models], folder)
        mark = profile_of(['mark', models[0]], folder)
    counts = {stage: inclusive(mark if stage == 'mark' else merge, function)
              for stage, function in _STAGES.items()}
    missing = [_STAGES[stage] for stage, count in counts.items() if count == 0]
    if missing:
        sys.exit(f'no call of {missing[0]}...) was seen')
    return counts


def recorded():
    """What they were made by, and stage to instructions."""
    with open(_RECORDED, encoding='utf-8') as file:
        lines = [line.rstrip('\n') for line in file if not line.startswith('#')]
    return lines[0], {stage: int(count) for stage, count in (line.split() for line in lines[1:])}


def accept():
    with open(_RECORDED, 'w', encoding='utf-8') as file:
        file.write('# Instructions of each stage on models of 1 MB; made by instructions_test.py '
                   '--accept.\n')
        file.write(f'{built_by()}\n')
        for stage, count in measured().items():
            file.write(f'{stage} {count}\n')


def compare():
    """Prints all stages; True when each is within the tolerance."""
    maker, wanted = recorded()
    if built_by() != maker:
        give_up(f'the figures were recorded with {maker}, this build is by {built_by()}')
    good = True
    for stage, count in measured().items():
        change = count / wanted[stage] - 1
        within = abs(change) <= _TOLERANCE
        good = good and within
        print(f'{stage:<6}{count:>12} instructions, recorded {wanted[stage]:>12}: '
              f'{100 * change:+.2f} %{"" if within else "  TOO FAR"}')
    if not good:
        print('If that is meant: tests/instructions/instructions_test.py --accept')
    return good


def main():
    need_release_build()
    if sys.argv[1:] == ['--accept']:
        accept()
        return 0
    return 0 if compare() else 1


if __name__ == '__main__':
    sys.exit(main())
