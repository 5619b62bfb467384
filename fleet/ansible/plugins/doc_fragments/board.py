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
      - Password of the user. It reaches efictl in the environment, never on a command line.
      - Without I(password) and I(password_file), efictl looks into netrc.
    type: str
  password_file:
    description: File that contains the password, on the machine that runs the module.
    type: path
  cacert:
    description: Certificates that the board's certificate is verified by, PEM.
    type: path
  insecure:
    description: Do not verify the board's certificate.
    type: bool
    default: false
  timeout:
    description: Seconds that one command may take as a whole.
    type: int
    default: 60
  executable:
    description: The client.
    type: path
    default: efictl
"""
