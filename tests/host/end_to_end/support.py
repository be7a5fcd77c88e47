"""What all end-to-end tests need: models as text, and the program under test.

The environment variable CORVEL names the program.
"""

import os
import re
import signal
import subprocess
import tempfile
import time
import unittest

PROGRAM = os.environ.get('CORVEL', 'corvel')
# The program is one for Windows, whatever runs it here.
ON_WINDOWS = os.environ.get('CORVEL_SYSTEM') == 'Windows'
# Seconds after which a run counts as hanging. Sanitizers are slow.
LONGEST_RUN = 60

# The log is handed to the disk with every line: hundreds of runs are faster without one.
MEMORY_DISK = '/dev/shm' if os.access('/dev/shm', os.W_OK) else None

# What a sanitizer finds must not look like an outcome of the program.
for _name in ('ASAN_OPTIONS', 'UBSAN_OPTIONS', 'LSAN_OPTIONS'):
    os.environ[_name] = ':'.join(filter(None, (os.environ.get(_name), 'exitcode=99')))

# Whoever runs the tests in the background may ignore interrupts, and programs inherit that.
for _number in (signal.SIGINT, signal.SIGHUP, signal.SIGTERM):
    signal.signal(_number, signal.SIG_DFL)

DONE, NOTHING_WRITTEN, WRONG_USAGE, CANCELLED, WITH_REPORTS, INTERRUPTED = 0, 1, 2, 3, 4, 130

PROJECT = "#1=IFCPROJECT('0YvCt7Q5n0JgN0tW6Vw4pA',$,'P',$,$,$,$,$,$);"


def model(records='', schema='IFC4'):
    """The bytes of a model with these records."""
    text = ("ISO-10303-21;\nHEADER;\n"
            "FILE_DESCRIPTION(('view'),'2;1');\n"
            "FILE_NAME('n','2024-01-02T03:04:05',('a'),('o'),'p','s','z');\n"
            f"FILE_SCHEMA(('{schema}'));\nENDSEC;\nDATA;\n{records}\n"
            "ENDSEC;\nEND-ISO-10303-21;\n")
    return text.encode()


def project(*records, schema='IFC4'):
    """A model with a project and further records."""
    return model('\n'.join((PROJECT,) + records), schema)


def wall(number, guid, x=1, schema='IFC4'):
    """The records of a wall that stands at `x`, from #number to #number+3."""
    predefined_type = '' if schema == 'IFC2X3' else ',$'
    return (f"#{number}=IFCWALL('{guid}',$,'W',$,$,#{number + 1},$,${predefined_type});",
            f'#{number + 1}=IFCLOCALPLACEMENT($,#{number + 2});',
            f'#{number + 2}=IFCAXIS2PLACEMENT3D(#{number + 3},$,$);',
            f'#{number + 3}=IFCCARTESIANPOINT(({x}.,0.,0.));')


def large_model(megabytes, first=2):
    """A model that takes a while, every tenth record of which refers forward."""
    lines = [PROJECT]
    size = 0
    number = first
    while size < megabytes << 20:
        if number % 10:
            line = f"#{number}=IFCCARTESIANPOINT(({number}.5,-1.25E-3,{number % 977}.));"
        else:
            line = f"#{number}=IFCPOLYLINE((#{number - 1},#{number + 1},#{number + 2}));"
        lines.append(line)
        size += len(line) + 1
        number += 1
    return model('\n'.join(lines))


class Ended:
    """How a run ended."""

    def __init__(self, status, out, err):
        self.status = status
        self.out = out
        self.err = err


class CorvelTest(unittest.TestCase):
    """Each test has a folder of its own, which is the current folder of the program."""

    maxDiff = None

    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix='corvel_host_', dir=MEMORY_DISK)
        self.addCleanup(holder.cleanup)
        self.folder = holder.name

    def path(self, name):
        return os.path.join(os.fsencode(self.folder), os.fsencode(name))

    def write(self, name, content):
        with open(self.path(name), 'wb') as file:
            file.write(content)

    def read(self, name):
        with open(self.path(name), 'rb') as file:
            return file.read()

    def names(self):
        """What lies in the folder, as text or, where that fails, as Python escapes it."""
        return sorted(os.listdir(self.folder))

    def unfinished(self):
        """Outputs that are being written, or were when their run was ended by force."""
        return [name for name in self.names() if name.startswith('.') and name.endswith('.part')]

    def start(self, *arguments, **options):
        options = {'stdin': subprocess.DEVNULL, 'stdout': subprocess.PIPE,
                   'stderr': subprocess.PIPE, 'cwd': self.folder, **options}
        process = subprocess.Popen([PROGRAM, *arguments], **options)
        self.addCleanup(self._end, process)
        return process

    @staticmethod
    def _end(process):
        if process.poll() is None:
            process.kill()
        process.wait()
        for stream in (process.stdin, process.stdout, process.stderr):
            if stream:
                stream.close()

    def finish(self, process):
        out, err = process.communicate(timeout=LONGEST_RUN)
        return Ended(process.returncode, (out or b'').decode(errors='surrogateescape'),
                     (err or b'').decode(errors='surrogateescape'))

    def run_corvel(self, *arguments, **options):
        return self.finish(self.start(*arguments, **options))

    def wait_for(self, condition):
        """Until `condition` holds; the test fails when it never does."""
        end = time.monotonic() + LONGEST_RUN
        while not condition():
            if time.monotonic() > end:
                self.fail('waited in vain')
            time.sleep(0.001)

    def assert_ended(self, ended, status, err=None, out=None):
        self.assertEqual(status, ended.status, ended.err)
        if err is not None:
            self.assertEqual(err, ended.err)
        if out is not None:
            self.assertEqual(out, ended.out)


def is_ready(process):
    """What becomes of signals is settled: this one is the last, and ignored by every run."""
    with open(f'/proc/{process.pid}/status') as status:
        ignored = re.search(r'^SigIgn:\s*(\w+)$', status.read(), re.MULTILINE).group(1)
    return int(ignored, 16) >> (signal.SIGXFSZ - 1) & 1


def records_of(content):
    """The lines of the DATA section."""
    text = content.decode()
    start = text.index('DATA;\n') + len('DATA;\n')
    return text[start:text.index('ENDSEC;\n', start)].splitlines()


# A run may be over before the interrupt comes. Attempts until a test gives up.
ATTEMPTS = 8


def data_limit(size):
    """For preexec_fn: no file may grow beyond `size` bytes."""
    import resource
    return lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))
