"""The table, and the pictures beside it."""

from flow import COLUMNS

MARK_BEGIN, MARK_END = '<!-- made by scripts/desktops: begin -->', '<!-- end -->'


def cell(notes):
    if not notes:
        return 'not tried'
    return '; '.join(f'**fault:** {text}' if is_fault else text for is_fault, text in notes)


def table(rows):
    """rows: [(title, {column: notes})]"""
    lines = ['| desktop | ' + ' | '.join(COLUMNS) + ' |', '|---' * (len(COLUMNS) + 1) + '|']
    for title, cells in rows:
        lines.append(f'| {title} | ' + ' | '.join(cell(cells.get(column)) for column in COLUMNS) + ' |')
    return '\n'.join(lines)


def has_fault(rows):
    return any(is_fault for _, cells in rows for notes in cells.values() for is_fault, _ in notes)


def save(picture, path):
    path.parent.mkdir(parents=True, exist_ok=True)
    picture.quantize(64, dither=0).save(path, optimize=True)
