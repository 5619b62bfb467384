#!/usr/bin/python3
"""Checks a folder of backups."""

DOCUMENTATION = r"""
---
module: verify
short_description: Checks a folder of backups
description: Reads every file of a folder and tells whether it is usable. Changes nothing and asks no board.
author: The maintainers of the board's software
options:
  folder:
    description: The folder.
    type: path
    required: true
  executable:
    description: The client.
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
  description: What efictl reports of each file.
  type: list
  elements: dict
  returned: always
"""

from ansible.module_utils.basic import AnsibleModule  # noqa: E402
from ansible_collections.vesk.efictl.plugins.module_utils.efictl import Client, result_of  # noqa: E402


def main():
    module = AnsibleModule(
        argument_spec={"folder": {"type": "path", "required": True},
                       "executable": {"type": "path", "default": "efictl"}},
        supports_check_mode=True)
    module.exit_json(changed=False, **result_of(Client(module).run("verify", module.params["folder"])))


if __name__ == "__main__":
    main()
