#!/usr/bin/python3
"""Restores a configuration file to partitions of a board."""

DOCUMENTATION = r"""
---
module: restore
short_description: Restores a configuration file to partitions of a board
description:
  - Restores the file to the selected partitions that differ from it, and skips the others.
  - In check mode, uploads the file, checks the targets and discards it, but restores nothing.
  - In diff mode, shows the settings that differ.
  - If the outcome of a restore is not known, fails with I(exit) 5 and does not retry.
author: The maintainers of the board's software
extends_documentation_fragment: vesk.efictl.board
options:
  file:
    description: Configuration file to restore.
    type: path
    required: true
  partitions:
    description: Numbers of the partitions to restore to. Required unless I(all) is set.
    type: list
    elements: int
    default: []
  all:
    description: Restore to every installed partition instead of I(partitions).
    type: bool
    default: false
  require_same_version:
    description: Refuse partitions with another BIOS version than the file.
    type: bool
    default: false
  require_partition:
    description: Refuse any partition except the one that the file was saved from.
    type: bool
    default: false
"""

EXAMPLES = r"""
- name: Restore one file to two partitions
  vesk.efictl.restore:
    board: https://rack1.example/
    user: operator
    password: "{{ vault_password }}"
    file: /srv/golden.dat
    partitions: [2, 3]
  delegate_to: localhost
"""

RETURN = r"""
partitions:
  description: The report of efictl on each partition.
  type: list
  elements: dict
  returned: always
reason:
  description: The reason for the failure, with the number and code of the board's message.
  type: dict
  returned: on failure
"""

from ansible.module_utils.basic import AnsibleModule  # noqa: E402
from ansible_collections.vesk.efictl.plugins.module_utils.efictl import (  # noqa: E402
    BOARD_OPTIONS, Client, result_of)
from ansible_collections.vesk.efictl.plugins.module_utils.settings import (  # noqa: E402
    add_differences, listed, restorable, reversed_differences, shown)

OPTIONS = {
    **BOARD_OPTIONS,
    "file": {"type": "path", "required": True},
    "partitions": {"type": "list", "elements": "int", "default": []},
    "all": {"type": "bool", "default": False},
    "require_same_version": {"type": "bool", "default": False},
    "require_partition": {"type": "bool", "default": False},
}


def main():
    module = AnsibleModule(argument_spec=OPTIONS, supports_check_mode=True)
    options = module.params
    if options["all"] == bool(options["partitions"]):
        module.fail_json(msg="Set either partitions, to the numbers of the targets, or all.",
                         status="usage", exit=2)
    client = Client(module)
    words = ["--all"] if options["all"] else ["--partition", listed(options["partitions"])]
    compared = add_differences(client.ask_board("diff", options["file"], "--against-board", *words))
    targets = [each["number"] for each in compared if restorable(each)]
    if not targets:
        module.exit_json(changed=False, partitions=compared, board=options["board"])
    words = [options["file"], "--to", listed(targets)]
    demands = ("require_same_version", "require_partition")
    words += ["--" + name.replace("_", "-") for name in demands if options[name]]
    if module.check_mode:
        words.append("--dry-run")
    report = client.ask_board("restore", *words)
    restored = [{**each, "differences": restorable(each)} for each in compared]
    module.exit_json(changed=True, diff=shown(reversed_differences(restored)), **result_of(report))


if __name__ == "__main__":
    main()
