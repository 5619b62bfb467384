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


def listed(numbers):
    """Returns numbers as efictl takes them."""
    return ",".join(map(str, numbers))


def add_differences(report):
    """Gives each partition in a report of diff the differences that were found in it."""
    for partition in report["partitions"]:
        partition["differences"] = [each for each in report["differences"]
                                    if each["partition"] == partition["number"]]
    return report["partitions"]


def restorable(partition):
    """Returns the differences of a partition that a restore ends: it leaves the BIOS as it is."""
    return [each for each in partition["differences"] if each["kind"] != "bios_version"]


def shown(partitions):
    """Returns the differences of partitions as Ansible shows them in diff mode."""
    return [{"before_header": header, "after_header": header,
             "before": text_of(each["differences"], "expected"),
             "after": text_of(each["differences"], "found")}
            for each in partitions if each["differences"]
            for header in ["partition %d" % each["number"]]]


def reversed_differences(partitions):
    """Returns the differences from the other side: what was found becomes what was expected."""
    return [{**partition, "differences": [
        {**each, "expected": each["found"], "found": each["expected"]}
        for each in partition["differences"]]} for partition in partitions]


def text_of(differences, side):
    return "".join("%s: %s\n" % (each["name"], each[side])
                   for each in differences if each[side] is not None)
