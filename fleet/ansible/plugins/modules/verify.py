#!/usr/bin/python3
"""Checks a folder of backups."""

DOCUMENTATION = r"""
---
module: verify
short_description: Checks a folder of backups
description:
  - Checks every file in a folder. Changes nothing and needs no board.
  - Fails if a file is not usable, if there is no backup, or if a gap is longer than I(max_gap).
author: The maintainers of the board's software
options:
  folder:
    description: Folder of a board's backups.
    type: path
    required: true
  max_gap:
    description:
      - Longest allowed time between two backups of a partition, and since its newest one, in hours.
      - 0 means no limit.
    type: int
    default: 0
  executable:
    description: Name or path of the efictl program.
    type: path
    default: efictl
"""

EXAMPLES = r"""
- name: Check the backups
  vesk.efictl.verify:
    folder: /srv/backups/rack1
  delegate_to: localhost
"""

RETURN = r"""
files:
  description: The report of efictl on each file.
  type: list
  elements: dict
  returned: always
"""

from ansible.module_utils.basic import AnsibleModule  # noqa: E402
from ansible_collections.vesk.efictl.plugins.module_utils.efictl import (  # noqa: E402
    DONE, Client, result_of)

OPTIONS = {
    "folder": {"type": "path", "required": True},
    "max_gap": {"type": "int", "default": 0},
    "executable": {"type": "path", "default": "efictl"},
}


def main():
    module = AnsibleModule(argument_spec=OPTIONS, supports_check_mode=True)
    words = ["--max-gap", str(module.params["max_gap"])] if module.params["max_gap"] else []
    report = Client(module).run("verify", *words, module.params["folder"])
    if report["exit"] != DONE:
        module.fail_json(msg=findings(report), **result_of(report))
    module.exit_json(changed=False, **result_of(report))


def findings(report):
    """Returns one sentence for each problem in a folder."""
    found = ["%s: %s." % (each["name"], each["problem"])
             for each in report["files"] if not each["usable"]]
    found += ["Partition %d has no backup for %s hours after %s."
              % (each["partition"], each["hours"], each["from"]) for each in report["gaps"]]
    return " ".join(found) or (report["reason"] or {}).get("text") or "There is no backup."


if __name__ == "__main__":
    main()
