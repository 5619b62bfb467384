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
    """Returns numbers in the form of efictl's options."""
    return ",".join(map(str, numbers))


def add_differences(report):
    """Adds to each partition in a report of diff its differences; returns the partitions."""
    for partition in report["partitions"]:
        partition["differences"] = [each for each in report["differences"]
                                    if each["partition"] == partition["number"]]
    return report["partitions"]


def restorable(partition):
    """Returns the differences that a restore removes: all but that of the BIOS version."""
    return [each for each in partition["differences"] if each["kind"] != "bios_version"]


def shown(partitions):
    """Returns the differences of partitions in the form of Ansible's diff mode."""
    return [{"before_header": header, "after_header": header,
             "before": text_of(each["differences"], "expected"),
             "after": text_of(each["differences"], "found")}
            for each in partitions if each["differences"]
            for header in ["partition %d" % each["number"]]]


def reversed_differences(partitions):
    """Returns the partitions with "expected" and "found" exchanged in their differences."""
    return [{**partition, "differences": [
        {**each, "expected": each["found"], "found": each["expected"]}
        for each in partition["differences"]]} for partition in partitions]


def text_of(differences, side):
    return "".join("%s: %s\n" % (each["name"], each[side])
                   for each in differences if each[side] is not None)
