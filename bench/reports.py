"""What a report costs beside the merge that it is of."""
import statistics

from measure import process

SHARE_OF_MERGE = 5  # percent, at most
TURNS = 9  # a report costs less than two runs of one command differ by


def print_rows(build, models):
    """`models` have the attributes name, path and second. A merge writes its model to a file, as it
    does for whoever wants it."""
    program = build / 'bin' / 'corvel'
    for model in models:
        merged = model.path.with_name('merged.ifc')
        reports = {form: model.path.with_name(f'report.{form}') for form in ('json', 'html')}

        def seconds(*options, files=(model.path, model.second), out=merged):
            return process([program, 'merge', *files, '-o', out, *options]).seconds
        told, more = [], {form: [] for form in reports}
        for _ in range(TURNS):
            told.append(seconds())
            for form, file in reports.items():
                more[form].append(seconds('--report', file) - told[-1])
        for file in (merged, *reports.values()):
            file.unlink()
        for form in reports:
            cost = statistics.median(more[form])
            share = 100.0 * cost / statistics.median(told)
            print(f'{model.name}: --report .{form} costs {cost * 1e3:.0f} ms, {share:.1f} % of the '
                  f'merge (at most {SHARE_OF_MERGE})', flush=True)
    print()
