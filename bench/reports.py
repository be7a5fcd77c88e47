"""What a report costs beside the merge that it is of."""
from measure import medians, process
from threads import null_output

SHARE_OF_MERGE = 5  # percent, at most


def print_rows(build, models):
    """`models` have the attributes name, path and second."""
    program = build / 'bin' / 'corvel'
    for model in models:
        out = null_output(model.path.parent)
        reports = {form: model.path.with_name(f'report.{form}') for form in ('json', 'html')}

        def merge(*options, files=(model.path, model.second), out=out):
            return {'': process([program, 'merge', *files, '-o', out, *options])}
        costs = medians({'told': merge} | {
            form: lambda file=file, merge=merge: merge('--report', file)
            for form, file in reports.items()})
        out.unlink()
        for form, file in reports.items():
            file.unlink()
            more = costs[form].seconds - costs['told'].seconds
            share = 100.0 * more / costs['told'].seconds
            print(f'{model.name}: --report .{form} costs {more * 1e3:.0f} ms, {share:.0f} % of the '
                  f'merge (at most {SHARE_OF_MERGE})', flush=True)
    print()
