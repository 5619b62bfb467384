"""The options that every module shares."""


class ModuleDocFragment:
    DOCUMENTATION = r"""
options:
  board:
    description: Address of the board, such as C(https://rack1.example/).
    type: str
    required: true
  user:
    description: Name of the board's user.
    type: str
  password:
    description:
      - Password of the user. It is passed to efictl in the environment, never on a command line.
      - Without I(password) and I(password_file), efictl looks into netrc.
    type: str
  password_file:
    description: File that contains the password, on the machine that runs the module.
    type: path
  cacert:
    description: PEM file of the certificates to trust instead of the system's.
    type: path
  insecure:
    description: Do not verify the board's certificate.
    type: bool
    default: false
  timeout:
    description: Time limit of one command, in seconds.
    type: int
    default: 60
  executable:
    description: The client.
    type: path
    default: efictl
"""
