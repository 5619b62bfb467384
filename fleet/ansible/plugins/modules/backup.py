#!/usr/bin/python3
"""Saves the configurations of a board's partitions."""

DOCUMENTATION = r"""
---
module: backup
short_description: Saves the configurations of a board's partitions
description:
  - Downloads the configuration of each partition and keeps it in a folder.
  - In check mode, the partitions are compared with their newest backups and nothing is kept.
  - In diff mode, shows the settings that differ from the former backup.
author: The maintainers of the board's software
extends_documentation_fragment: vesk.efictl.board
options:
  folder:
    description: The folder of this board's backups; created if absent.
    type: path
    required: true
  partitions:
    description: Numbers of the partitions; all that are installed when the list is empty.
    type: list
    elements: int
    default: []
  if_changed:
    description: Keep no copy of a configuration that is the same as in the newest backup.
    type: bool
    default: true
  keep:
    description: How many usable backups of each partition to keep; 0 keeps all.
    type: int
    default: 0
"""

EXAMPLES = r"""
- name: Save every partition
  vesk.efictl.backup:
    board: https://rack1.example/
    user: operator
    password: "{{ vault_password }}"
    folder: /srv/backups/rack1
    keep: 30
  delegate_to: localhost
"""

RETURN = r"""
partitions:
  description: What efictl reports of each partition, its I(status) and I(file) among it.
  type: list
  elements: dict
  returned: always
reason:
  description: Why it failed, with the number and the code of the board's message.
  type: dict
  returned: on failure
"""

import os  # noqa: E402

from ansible.module_utils.basic import AnsibleModule  # noqa: E402
from ansible_collections.vesk.efictl.plugins.module_utils.efictl import (  # noqa: E402
    BOARD_OPTIONS, Client, result_of)
from ansible_collections.vesk.efictl.plugins.module_utils.settings import (  # noqa: E402
    add_differences, listed, newest_backups, shown)

# As efictl makes the folder itself: configurations are confidential.
FOLDER_MODE = 0o700

OPTIONS = {
    **BOARD_OPTIONS,
    "folder": {"type": "path", "required": True},
    "partitions": {"type": "list", "elements": "int", "default": []},
    "if_changed": {"type": "bool", "default": True},
    "keep": {"type": "int", "default": 0},
}


def foresee(module, client, newest):
    """Ends the module with what a backup would do."""
    report = client.ask_board("list")
    wanted = module.params["partitions"]
    chosen = [each["number"] for each in report["partitions"]
              if not wanted or each["number"] in wanted]
    known = [number for number in chosen if number in newest]
    compared = []
    if known:
        compared = add_differences(client.ask_board(
            "diff", "--against-board", "--partition", listed(known),
            "--out", module.params["folder"]))
    changed = len(known) < len(chosen) or not module.params["if_changed"] or any(
        each["differences"] for each in compared)
    module.exit_json(changed=changed, diff=shown(compared), **result_of(report))


def save(module, client, newest):
    folder = module.params["folder"]
    words = ["--out", folder]
    if module.params["partitions"]:
        words += ["--partition", listed(module.params["partitions"])]
    else:
        words.append("--all")
    if module.params["if_changed"]:
        words.append("--if-changed")
    if module.params["keep"]:
        words += ["--keep", str(module.params["keep"])]
    os.makedirs(folder, mode=FOLDER_MODE, exist_ok=True)
    report = client.ask_board("backup", *words)
    for each in report["partitions"]:
        former = newest.get(each["number"])
        each["differences"] = []
        if each["status"] == "stored" and former and os.path.exists(former):
            stored = os.path.join(folder, each["file"])
            each["differences"] = client.run("diff", former, stored)["differences"]
    module.exit_json(changed=report["changed"], diff=shown(report["partitions"]),
                     **result_of(report))


def main():
    module = AnsibleModule(argument_spec=OPTIONS, supports_check_mode=True)
    client = Client(module)
    newest = newest_backups(module.params["folder"])
    (foresee if module.check_mode else save)(module, client, newest)


if __name__ == "__main__":
    main()
