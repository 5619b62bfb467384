"""The settings in which configurations differ."""

import os
import re

# As docs/automation.md describes the names of backups. Those of one partition sort by their time.
BACKUP_NAME = re.compile(r"partition([0-9]{3,9})-[0-9]{8}T[0-9]{6}Z\.dat")


def newest_backups(folder):
    """Returns the newest backup of each partition in a folder, {number: path}."""
    names = sorted(os.listdir(folder)) if os.path.isdir(folder) else []
    return {int(match[1]): os.path.join(folder, match[0])
            for match in map(BACKUP_NAME.fullmatch, names) if match}


def compare_with_board(client, files, *words):
    """Compares files with what the board has. Returns what efictl reports of each partition."""
    if not files:
        return []
    return client.ask_board("diff", "--against-board", *words, *files)["partitions"]


def compare_files(client, former, newer):
    """Returns the differences of two files, as efictl reports them."""
    return client.run("diff", former, newer)["differences"]


def shown(header, differences):
    """Returns differences as Ansible shows them in diff mode."""
    return {"before_header": header, "after_header": header,
            "before": text_of(differences, "first"), "after": text_of(differences, "second")}


def shown_all(partitions):
    """Returns the differences of partitions, as efictl reports them, for diff mode."""
    return [shown("partition %d" % each["number"], each["differences"])
            for each in partitions if each["differences"]]


def text_of(differences, side):
    return "".join("%s: %s\n" % (each["what"], "(none)" if each[side] is None else each[side])
                   for each in differences)
