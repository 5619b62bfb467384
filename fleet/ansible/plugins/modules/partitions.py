#!/usr/bin/python3
"""Lists the partitions of a board."""

DOCUMENTATION = r"""
---
module: partitions
short_description: Lists the partitions of a board
description:
  - Returns number, name, BIOS version and time of the last backup of each installed partition.
  - Changes nothing.
author: The maintainers of the board's software
extends_documentation_fragment: vesk.efictl.board
"""

EXAMPLES = r"""
- name: List the partitions
  vesk.efictl.partitions:
    board: https://rack1.example/
    user: admin
    password: "{{ vault_password }}"
  delegate_to: localhost
  register: listed
"""

RETURN = r"""
partitions:
  description: The report of efictl on each partition.
  type: list
  elements: dict
  returned: always
"""

from ansible.module_utils.basic import AnsibleModule  # noqa: E402
from ansible_collections.vesk.efictl.plugins.module_utils.efictl import (  # noqa: E402
    BOARD_OPTIONS, Client, result_of)

OPTIONS = BOARD_OPTIONS


def main():
    module = AnsibleModule(argument_spec=OPTIONS, supports_check_mode=True)
    module.exit_json(changed=False, **result_of(Client(module).ask_board("list")))


if __name__ == "__main__":
    main()
