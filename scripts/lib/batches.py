"""Puts the source files of a module together, so that a checker parses the headers that they share once."""
import bisect
import os
import re

FILES_IN_A_BATCH = 12  # more would leave a core idle at the end


class Batch:
    """Files of one target, written behind each other into one text.

    One text and not a file of includes: checkers treat what is included as somebody else's."""

    def __init__(self, root, name, text, units, command):
        self.root, self.name, self.text, self.units, self.command = root, name, text, units, command
        self._starts = []  # the line of the text before each unit's first
        self._write()

    def flags(self):
        """What of the compile command tells how to read the files, each in one word."""
        words = iter(self.command[1:])
        for word in words:
            if word in ('-isystem', '-I'):
                yield word + next(words)
            elif word.startswith(('-I', '-isystem', '-D', '-std=')):
                yield word

    def translate(self, output):
        """The checker's words with places in the text replaced by those in the files."""
        return re.sub(re.escape(str(self.text)) + r':(\d+)', lambda match: self._place(int(match[1])), output)

    def split(self):
        """Each file by itself."""
        return [Batch(self.root, str(unit), self.text.with_name(text_name(str(unit))), [unit], self.command)
                for unit in self.units]

    def _place(self, line):
        index = bisect.bisect_left(self._starts, line) - 1
        return f'{self.units[index]}:{line - self._starts[index]}'

    def _write(self):
        lines = []
        for unit in self.units:
            self._starts.append(len(lines))
            lines += (self.root / unit).read_text().splitlines()
        content = '\n'.join(lines) + '\n'
        self.text.parent.mkdir(parents=True, exist_ok=True)
        if not self.text.exists() or self.text.read_text() != content:
            self.text.write_text(content)


def make(root, folder, units, alone):
    """Batches of the units, a map from path to compile command; the ones that take longest come first."""
    groups = {}  # by name, and by what is defined: a file may have definitions of its own
    for unit, command in sorted(units.items()):
        name = str(unit) if alone or by_itself(unit) else target_of(command)
        groups.setdefault((name, tuple(word for word in command if word.startswith('-D'))), []).append(unit)
    found = []
    for (key, _), members in groups.items():
        parts = -(-len(members) // FILES_IN_A_BATCH)
        for part in range(parts):
            chosen = members[part::parts]
            name = str(chosen[0]) if len(chosen) == 1 else f'{key}, {chosen[0].stem} and others'
            found.append(Batch(root, name, folder / text_name(name), chosen, units[chosen[0]]))
    return sorted(found, key=lambda batch: -len(batch.units))


def text_name(name):
    return re.sub(r'\W+', '-', name) + '.cpp'


def by_itself(unit):
    """Files for one platform include that platform's headers, whose macros others must not see."""
    return unit.stem.endswith(('_win', '_posix', '_linux', '_x11'))


def target_of(command):
    """The target's folder and name, from where the object goes."""
    output = command[command.index('-o') + 1]
    return os.path.normpath(output.split('.dir/')[0].replace('CMakeFiles/', ''))
