"""Runs programs and gives their cost: stages as bench/stage.h prints them, or whole processes."""
import os
import shutil
import statistics
import subprocess
import sys
import time
from pathlib import Path
from typing import NamedTuple

RUNS = 5
ROOT = Path(__file__).resolve().parent.parent
DONE = (0, 4)  # exit statuses of the program: written, and written with reports


class Cost(NamedTuple):
    """What a stage or a process took."""
    seconds: float   # of the processor
    peak: int        # resident bytes
    resident: int    # bytes when the stage ended
    elapsed: float = 0.0


class Failed(Exception):
    """A program did not do what it was asked for."""


def shown(arguments):
    """A command as it is typed."""
    return ' '.join(map(str, arguments))


def stages(arguments):
    """Stage name -> Cost of one run of a benchmark."""
    done = subprocess.run(list(map(str, arguments)), capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise Failed(f'{shown(arguments)}: {done.returncode}: {done.stderr.strip()}')
    result = {}
    for line in done.stdout.splitlines():
        name, seconds, _, peak, *rest = line.split('\t')
        result[name] = Cost(float(seconds), int(peak), int(rest[0]) if rest else 0,
                            float(rest[1]) if len(rest) > 1 else 0.0)
    return result


def process(arguments, statuses=DONE, one_core=True):
    """Cost of one run of a program, with what the system did for it. On one core it works with one
    thread unless it is told otherwise. The peak is at least that of this program, some 30 MB: Linux
    hands it on."""
    arguments = list(map(str, arguments))
    if one_core:
        arguments = ['taskset', '--cpu-list', str(min(os.sched_getaffinity(0))), *arguments]
    start = time.perf_counter()
    with subprocess.Popen(arguments, stdin=subprocess.DEVNULL,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as child:
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
    if child.returncode not in statuses:
        raise Failed(f'{shown(arguments)}: {child.returncode}')
    return Cost(usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024, 0,
                time.perf_counter() - start)


def median(costs):
    """The medians of several runs, each number for itself."""
    return Cost(*map(statistics.median, zip(*costs)))


def medians(jobs, runs=RUNS):
    """Name -> Cost for jobs (name -> function that gives stage name -> Cost), in turn, so that
    whatever else the machine does meets all of them alike. Names become `job stage`."""
    costs = {}
    for _ in range(runs):
        for job, run in jobs.items():
            for stage, cost in run().items():
                costs.setdefault(f'{job} {stage}'.strip(), []).append(cost)
    return {name: median(several) for name, several in costs.items()}


def web_ifc_folder(build):
    """The folder with the reader of another maker, as its tests install it. None, with a notice,
    where it cannot be had."""
    if not shutil.which('node'):
        print('skipped: there is no node for web-ifc', file=sys.stderr)
        return None
    os.environ['CORVEL_BUILD'] = str(build)
    sys.path.insert(0, str(ROOT / 'tests' / 'models'))
    import web_ifc_test  # pylint: disable=import-outside-toplevel
    return web_ifc_test.install()
