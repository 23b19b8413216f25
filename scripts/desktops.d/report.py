"""The table, and the pictures beside it.

usage: report.py OUTPUT DOCS puts what a whole run has left in the folder OUTPUT into docs/desktops.md and its pictures.
"""

import pathlib
import shutil
import sys

COLUMNS = ('icon', 'menu', 'notification and click', 'windows in front', 'scaling', 'dark', 'quit', 'session end')
SHOWN = ('menu', 'callback', 'notification', 'scaled', 'dark')
MARKS = '<!-- made by scripts/desktops --write: from here -->', '<!-- to here -->'


def cell(notes):
    if not notes:
        return 'not tried'
    return '; '.join(f'**fault:** {text}' if is_fault else text for is_fault, text in notes)


def table(rows):
    """rows: [(title, {column: [(is it a fault, text)]})]"""
    lines = ['| desktop | ' + ' | '.join(COLUMNS) + ' |', '|---' * (len(COLUMNS) + 1) + '|']
    for title, cells in rows:
        lines.append(f'| {title} | ' + ' | '.join(cell(cells.get(column)) for column in COLUMNS) + ' |')
    return '\n'.join(lines) + '\n'


def has_fault(rows):
    """Also where nothing was found out."""
    return any(not cells.get(column) or any(is_fault for is_fault, _ in cells[column])
               for _, cells in rows for column in COLUMNS)


def save(picture, path):
    picture.quantize(96, dither=0).save(path, optimize=True)


def gallery(output, pictures, titles):
    """Copies the pictures that are shown, and names them."""
    shutil.rmtree(pictures, ignore_errors=True)
    pictures.mkdir(parents=True)
    lines = []
    for name, title in titles:
        lines += ['', f'### {title}', '']
        for step in SHOWN:
            source = output / f'{name}-{step}.png'
            if source.exists():
                shutil.copy(source, pictures)
                lines.append(f'![{step}](pictures/desktops/{source.name})')
    return '\n'.join(lines)


def write(output, docs):
    page = docs / 'desktops.md'
    before, _, rest = page.read_text().partition(MARKS[0])
    after = rest.partition(MARKS[1])[2]
    titles = [line.split('\t') for line in (output / 'titles').read_text().splitlines()]
    made = (output / 'table.md').read_text() + gallery(output, docs / 'pictures/desktops', titles)
    page.write_text(f'{before}{MARKS[0]}\n\n{made}\n\n{MARKS[1]}{after}')


if __name__ == '__main__':
    write(*map(pathlib.Path, sys.argv[1:]))
