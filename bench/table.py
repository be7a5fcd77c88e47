"""Runs the job benchmark on each model and prints the medians as a table."""
import statistics
import subprocess
import sys
from pathlib import Path

RUNS = 5
CLOCK_STEP = 0.001  # seconds: what takes less shows as a rate that is only a lower bound


def run(arguments):
    """Stage name -> (seconds, input bytes, peak bytes) of one run of the benchmark."""
    output = subprocess.run(arguments, check=True, capture_output=True, text=True).stdout
    stages = {}
    for line in output.splitlines():
        name, seconds, size, peak = line.split('\t')
        stages[name] = (float(seconds), int(size), int(peak))
    return stages


def medians(arguments):
    """Stage name -> (MB per second, peak bytes per input byte), each the median of RUNS runs."""
    runs = [run(arguments) for _ in range(RUNS)]
    result = {}
    for name in runs[0]:
        rates = [r[name][1] / 1e6 / max(r[name][0], CLOCK_STEP) for r in runs]
        peaks = [r[name][2] / r[name][1] for r in runs]
        result[name] = (statistics.median(rates), statistics.median(peaks))
    return result


def main():
    bench, models, sizes = sys.argv[1], Path(sys.argv[2]), sys.argv[3:]
    print(f'{"model":<16}{"job":<8}{"stage":<9}{"MB/s":>8}{"peak bytes per byte":>22}')
    out = models / 'out.ifc'
    for schema in ('IFC2X3', 'IFC4'):
        for size in sizes:
            model = str(models / f'{schema}_{size}.ifc')
            jobs = {
                'resave': [bench, 'resave', model, str(out)],
                'merge': [bench, 'merge', str(out), model, model],
            }
            for job, arguments in jobs.items():
                for stage, (rate, peak) in medians(arguments).items():
                    print(f'{schema + " " + size:<16}{job:<8}{stage:<9}{rate:>8.0f}{peak:>22.2f}')
    out.unlink(missing_ok=True)


if __name__ == '__main__':
    main()
