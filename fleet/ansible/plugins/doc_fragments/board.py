"""The options of every module that talks to a board."""


class ModuleDocFragment:
    DOCUMENTATION = r"""
options:
  board:
    description: Address of the board, such as C(https://rack1.example/).
    type: str
    required: true
  user:
    description: Name of the user to log in as.
    type: str
  password:
    description:
      - Password of the user. Passed to efictl in the environment, never on a command line.
      - Without I(password) and I(password_file), efictl uses netrc.
    type: str
  password_file:
    description: File with the password on its first line, on the machine that runs the module.
    type: path
  cacert:
    description: PEM file with the certificates to trust instead of the system's.
    type: path
  insecure:
    description: Trust any certificate of the board, and allow http:// addresses.
    type: bool
    default: false
  timeout:
    description: Time limit of each efictl command, in seconds.
    type: int
    default: 60
  executable:
    description: Name or path of the efictl program.
    type: path
    default: efictl
"""
