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
    description: The folder of this board's backups; made when absent.
    type: path
    required: true
  partitions:
    description: Numbers of the partitions; all that are installed when the list is empty.
    type: list
    elements: int
    default: []
  if_changed:
    description: Keep no copy of a configuration that is the one of the newest backup.
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
    compare_files, compare_with_board, newest_backups, shown_all)

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
    """Ends the module with what a backup would do, as far as it depends on the board."""
    listed = client.ask_board("list")
    chosen = [each["number"] for each in listed["partitions"]
              if not module.params["partitions"] or each["number"] in module.params["partitions"]]
    compared = compare_with_board(client, [newest[number] for number in chosen if number in newest])
    new = [number for number in chosen if number not in newest]
    changed = bool(new or not module.params["if_changed"]
                   or any(each["differences"] for each in compared))
    module.exit_json(changed=changed, diff=shown_all(compared), **result_of(listed))


def save(module, client, newest):
    words = ["--out", module.params["folder"]]
    if module.params["partitions"]:
        words += ["--partition", ",".join(map(str, module.params["partitions"]))]
    else:
        words.append("--all")
    if module.params["if_changed"]:
        words.append("--if-changed")
    if module.params["keep"]:
        words += ["--keep", str(module.params["keep"])]
    os.makedirs(module.params["folder"], mode=FOLDER_MODE, exist_ok=True)
    report = client.ask_board("backup", *words)
    result = {"changed": report["changed"], **result_of(report)}
    for each in result["partitions"]:
        former = newest.get(each["number"])
        is_new = each["status"] == "stored" and former and os.path.exists(former)
        each["differences"] = compare_files(
            client, former, os.path.join(module.params["folder"], each["file"])) if is_new else []
    module.exit_json(diff=shown_all(result["partitions"]), **result)


def main():
    module = AnsibleModule(argument_spec=OPTIONS, supports_check_mode=True)
    client = Client(module)
    newest = newest_backups(module.params["folder"])
    (foresee if module.check_mode else save)(module, client, newest)


if __name__ == "__main__":
    main()
