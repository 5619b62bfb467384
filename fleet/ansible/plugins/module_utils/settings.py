"""Differences between configurations, and the names of backups."""

import os
import re

# The names of backups, as in docs/automation.md. Names of one partition sort by time.
BACKUP_NAME = re.compile(r"partition([0-9]{3,9})-[0-9]{8}T[0-9]{6}Z\.dat")


def newest_backups(folder):
    """Returns the newest backup of each partition in a folder as {number: path}."""
    names = sorted(os.listdir(folder)) if os.path.isdir(folder) else []
    return {int(match[1]): os.path.join(folder, match[0])
            for match in map(BACKUP_NAME.fullmatch, names) if match}


def listed(numbers):
    """Returns numbers in the form that efictl's options take."""
    return ",".join(map(str, numbers))


def add_differences(report):
    """Adds its differences to each partition in a report of diff. Returns the partitions."""
    for partition in report["partitions"]:
        partition["differences"] = [each for each in report["differences"]
                                    if each["partition"] == partition["number"]]
    return report["partitions"]


def restorable(partition):
    """Returns the differences that a restore removes: all except the BIOS version."""
    return [each for each in partition["differences"] if each["kind"] != "bios_version"]


def shown(partitions):
    """Returns the differences of partitions in the format of Ansible's diff mode."""
    return [{"before_header": header, "after_header": header,
             "before": text_of(each["differences"], "expected"),
             "after": text_of(each["differences"], "found")}
            for each in partitions if each["differences"]
            for header in ["partition %d" % each["number"]]]


def reversed_differences(partitions):
    """Returns the partitions with "expected" and "found" swapped in their differences."""
    return [{**partition, "differences": [
        {**each, "expected": each["found"], "found": each["expected"]}
        for each in partition["differences"]]} for partition in partitions]


def text_of(differences, side):
    return "".join("%s: %s\n" % (each["name"], each[side])
                   for each in differences if each[side] is not None)
