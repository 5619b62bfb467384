"""The operations that docs/porting.md requires of a board."""

import re


def operations(document):
    """Returns "header operation" for every operation in the tables of the document.

    A row without a header continues the header of the row above.
    """
    found = set()
    header = None
    with open(document, encoding="utf-8") as file:
        for line in file:
            cells = [cell.strip() for cell in line.split("|")]
            if len(cells) < 4:
                header = None
                continue
            name = re.fullmatch(r"`([\w/]+\.h)`", cells[1])
            if name:
                header = name[1]
            elif cells[1]:
                header = None
            if header:
                found |= {f"{header} {name}" for name in re.findall(r"`(\w+)`", cells[2])}
    return found
