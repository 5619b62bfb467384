"""Filters that make the rows and the CSV of the report."""

import csv
import io
import unicodedata

COLUMNS = ("board", "address", "partition", "name", "bios_version", "last_backup", "backup",
           "changed", "drift", "restore", "failure")

# The steps of the roles, in the order of a run. Each registers a result as efictl_STEP_result.
STEPS = ("drift", "backup", "verify", "restore")

# Spreadsheets treat a cell that starts with one of these as a formula.
FORMULA_STARTS = ("=", "+", "-", "@")

# Control characters, and characters that are invisible or change the text direction.
HIDDEN_CATEGORIES = ("Cc", "Cf", "Cs", "Zl", "Zp")


def visible(text):
    """Returns the text with hidden characters replaced by their escapes, such as \\u202e."""
    return "".join(
        "\\u%04x" % ord(each) if unicodedata.category(each) in HIDDEN_CATEGORIES else each
        for each in str(text))


def fleet_rows(boards, hostvars):
    """Returns one row for each partition of each board, and one for a board without known
    partitions. A row maps each of COLUMNS to a text, empty if unknown."""
    rows = []
    for board in boards:
        rows += rows_of(board, hostvars[board])
    return [{column: visible(row[column]) for column in COLUMNS} for row in rows]


def rows_of(board, variables):
    results = {step: result for step in STEPS
               if isinstance(result := variables.get("efictl_%s_result" % step), dict)
               and not result.get("skipped")}
    shared = {
        **dict.fromkeys(COLUMNS, ""), "board": board, "failure": failure_of(variables, results),
        "address": next((each["board"] for each in results.values() if each.get("board")), ""),
    }
    # Values of later steps replace those of earlier ones.
    known = {}
    for result in results.values():
        for partition in result.get("partitions") or []:
            known.setdefault(partition["number"], {}).update(
                {name: value for name, value in partition.items() if value is not None})
    saved = {each["partition"]: each["made_on"]
             for each in results.get("verify", {}).get("files") or [] if each["newest"]}
    rows = []
    for number in sorted(known):
        backup, drift, restore = (partition_of(results.get(step), number)
                                  for step in ("backup", "drift", "restore"))
        rows.append({
            **shared, "partition": number, "name": known[number].get("name", ""),
            "bios_version": known[number].get("bios_version", ""),
            "last_backup": saved.get(number) or backup.get("saved_on") or "",
            "backup": backup.get("status", ""), "changed": settings_in(backup),
            "drift": settings_in(drift), "restore": restore.get("status", ""),
        })
    return rows or [shared]


def failure_of(variables, results):
    failure = variables.get("efictl_failure")
    if failure:
        return "%s: %s" % (failure["step"], failure["result"].get("msg") or "no reason given")
    return "" if results else "Not tried"


def partition_of(result, number):
    """Returns the report on a partition in a result; empty if there is none."""
    partitions = (result or {}).get("partitions") or []
    return next((each for each in partitions if each["number"] == number), {})


def settings_in(partition):
    return ", ".join(each["name"] for each in partition.get("differences") or [])


def fleet_csv(rows):
    """Returns the rows as CSV, with a header line."""
    output = io.StringIO()
    writer = csv.writer(output, lineterminator="\n")
    writer.writerow(COLUMNS)
    for row in rows:
        writer.writerow([cell_of(row[column]) for column in COLUMNS])
    return output.getvalue().rstrip("\n")


def cell_of(text):
    return "'" + text if len(text) > 1 and text.startswith(FORMULA_STARTS) else text


class FilterModule:
    def filters(self):
        return {"fleet_rows": fleet_rows, "fleet_csv": fleet_csv}
