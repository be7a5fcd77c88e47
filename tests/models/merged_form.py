"""What the program has to write for several files folded into the first.

A few rules give the result, with nothing of the program's containers: who keeps a number, who gets
which new one, whose project stays, and who gets a new GUID.
"""

import re

from kept_records import kept_records
from written_form import line_text, tail_text

_FIRST_TEXT = re.compile(rb"\('(?:[^']|'')*'")
_PLACEHOLDER = b"('NEW'"


def records_with_new_guids(model, kept):
    """Of kept records of one file that share a GUID the one with the lowest number keeps it, the others
    get new ones, and so does each that has none."""
    seen, renewed = set(), set()
    for number in sorted(model.guids.keys() & kept):
        guid = model.guids[number]
        if guid and guid not in seen:
            seen.add(guid)
        else:
            renewed.add(number)
    return renewed


class Merged:
    """`numbering` tells for each model which number each of its records has in the result,
    `sources` the way back: number -> (index of the model, number there). `new_guids` and `projects`
    are numbers of the result: records whose GUID is new, and those called IFCPROJECT."""

    def __init__(self, models):
        self.models = models
        self.kept = [kept_records(model) for model in models]
        # Numbers of records that were dropped are not given to others.
        self.highest = max(number for model in models for number in model.lines)
        self.taken = set(models[0].lines)
        self.sources = {number: (0, number) for number in self.kept[0]}
        self.numbering = [{number: number for number in self.kept[0]}]
        for index in range(1, len(models)):
            self._fold(index)
        self.new_guids = {self.numbering[index][number] for index, model in enumerate(models)
                          for number in records_with_new_guids(model, self.kept[index])
                          if self.sources.get(self.numbering[index][number]) == (index, number)}
        self.projects = [number for number in self.sources if self._name(number) == 'IFCPROJECT']

    def _name(self, number):
        index, source = self.sources[number]
        return self.models[index].lines[source].name

    def _fold(self, index):
        lines = self.models[index].lines
        self.numbering.append({})
        project = None
        for number in sorted(self.kept[index]):
            if project is None and lines[number].name == 'IFCPROJECT':
                project = number
            else:
                self._add(index, number)
        if project is None:
            return
        kept = min((number for number in self.sources if self._name(number) == 'IFCPROJECT'),
                   default=None)
        if kept is None:
            self._add(index, project)
        else:
            self.numbering[index][project] = kept

    def _add(self, index, number):
        """A number that is free stays; otherwise the next one above all that were ever seen."""
        result = number
        if number in self.taken:
            self.highest += 1
            result = self.highest
        self.taken.add(result)
        self.sources[result] = (index, number)
        self.numbering[index][number] = result

    def text(self):
        """The file that has to come out, with a placeholder for GUIDs that are new."""
        lines = []
        for number in sorted(self.sources):
            index, source = self.sources[number]
            line = line_text(number, self.models[index].lines[source],
                             self.numbering[index].__getitem__)
            lines.append(self._hide_guid(line) if number in self.new_guids else line)
        return self.models[0].head + b''.join(lines) + tail_text(self.models[0].file)

    def with_placeholders(self, written):
        """The file that came out, in the same form, and the new GUIDs in it."""
        lines, new = [], []
        for line in written.splitlines(keepends=True):
            number = re.match(rb'#(\d+)=', line)
            if number and int(number.group(1)) in self.new_guids:
                new.append(_FIRST_TEXT.search(line).group()[2:-1])
                line = self._hide_guid(line)
            lines.append(line)
        return b''.join(lines), new

    @staticmethod
    def _hide_guid(line):
        return _FIRST_TEXT.sub(_PLACEHOLDER, line, count=1)
