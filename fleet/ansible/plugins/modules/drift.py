#!/usr/bin/python3
"""Compares the partitions of a board with files."""

DOCUMENTATION = r"""
---
module: drift
short_description: Compares the partitions of a board with files
description:
  - Returns the settings in which partitions differ from their newest backups, or from one file.
  - Changes nothing. A difference is not a failure, but sets the return value I(different).
author: The maintainers of the board's software
extends_documentation_fragment: vesk.efictl.board
options:
  folder:
    description: Folder of this board's backups. Compares each partition with its newest one.
    type: path
  file:
    description: File to compare the partitions with.
    type: path
  partitions:
    description:
      - Numbers of the partitions.
      - An empty list means those with a backup in I(folder), or the one that I(file) was saved from.
    type: list
    elements: int
    default: []
"""

EXAMPLES = r"""
- name: Compare two partitions with one file
  vesk.efictl.drift:
    board: https://rack1.example/
    user: operator
    password: "{{ vault_password }}"
    file: /srv/golden.dat
    partitions: [2, 3]
  delegate_to: localhost
  register: drift

- name: Fail if the board has drifted
  ansible.builtin.assert:
    that: not drift.different
"""

RETURN = r"""
different:
  description: True if there is a difference.
  type: bool
  returned: always
partitions:
  description: The report of efictl on each partition, with its I(differences).
  type: list
  elements: dict
  returned: always
"""

from ansible.module_utils.basic import AnsibleModule  # noqa: E402
from ansible_collections.vesk.efictl.plugins.module_utils.efictl import (  # noqa: E402
    BOARD_OPTIONS, Client)
from ansible_collections.vesk.efictl.plugins.module_utils.settings import (  # noqa: E402
    add_differences, listed, newest_backups, shown)

OPTIONS = {
    **BOARD_OPTIONS,
    "folder": {"type": "path"},
    "file": {"type": "path"},
    "partitions": {"type": "list", "elements": "int", "default": []},
}


def main():
    module = AnsibleModule(argument_spec=OPTIONS, supports_check_mode=True,
                           required_one_of=[("folder", "file")],
                           mutually_exclusive=[("folder", "file")])
    client = Client(module)
    folder, file = module.params["folder"], module.params["file"]
    numbers = module.params["partitions"] or sorted(newest_backups(folder) if folder else ())
    partitions = []
    if file or numbers:
        words = [file] if file else ["--out", folder]
        words += ["--partition", listed(numbers)] if numbers else []
        partitions = add_differences(client.ask_board("diff", *words, "--against-board"))
    module.exit_json(changed=False, partitions=partitions, board=module.params["board"],
                     different=any(each["differences"] for each in partitions),
                     diff=shown(partitions))


if __name__ == "__main__":
    main()
