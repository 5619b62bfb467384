#!/usr/bin/python3
"""Backs up the configurations of a board's partitions."""

DOCUMENTATION = r"""
---
module: backup
short_description: Backs up the configurations of a board's partitions
description:
  - Downloads the configuration of each partition and stores it in a folder.
  - In check mode, compares the partitions with their newest backups and stores nothing.
  - In diff mode, shows the settings that differ from the previous backup.
author: The maintainers of the board's software
extends_documentation_fragment: vesk.efictl.board
options:
  folder:
    description: Folder of this board's backups. Created if absent.
    type: path
    required: true
  partitions:
    description: Numbers of the partitions. An empty list means every installed partition.
    type: list
    elements: int
    default: []
  if_changed:
    description: Store nothing for a configuration that is the same as in its newest backup.
    type: bool
    default: true
  keep:
    description: Number of usable backups to keep of each partition; 0 keeps all. Older ones are removed.
    type: int
    default: 0
"""

EXAMPLES = r"""
- name: Back up every partition
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
  description: The report of efictl on each partition, with I(status) and I(file).
  type: list
  elements: dict
  returned: always
reason:
  description: The reason for the failure, with the number and code of the board's message.
  type: dict
  returned: on failure
"""

import os  # noqa: E402

from ansible.module_utils.basic import AnsibleModule  # noqa: E402
from ansible_collections.vesk.efictl.plugins.module_utils.efictl import (  # noqa: E402
    BOARD_OPTIONS, Client, result_of)
from ansible_collections.vesk.efictl.plugins.module_utils.settings import (  # noqa: E402
    add_differences, listed, newest_backups, shown)

# The mode that efictl gives the folder, because configurations are confidential.
FOLDER_MODE = 0o700

OPTIONS = {
    **BOARD_OPTIONS,
    "folder": {"type": "path", "required": True},
    "partitions": {"type": "list", "elements": "int", "default": []},
    "if_changed": {"type": "bool", "default": True},
    "keep": {"type": "int", "default": 0},
}


def foresee(module, client, newest):
    """Ends the module with the result that a backup would have."""
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
