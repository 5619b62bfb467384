"""Several boards served at the same time over https."""

from concurrent.futures import ThreadPoolExecutor

from support.board import Board

CERTIFICATE = "/var/lib/tls/certificate.pem"
BACKUP, RESTORE = "0x020100A3", "0x020100A4"
STAGED = "restored_eficonf"
AT_A_TIME = 4
LOCK = STAGED + ".lock"


class Fleet:
    """Serves a board for each name. Starts them in parallel, because a start mostly waits.
    `boards` is {name: board}."""

    def __init__(self, *names):
        self.boards = {name: Board("--tls") for name in names}

    def __enter__(self):
        boards = list(self.boards.values())
        with ThreadPoolExecutor(AT_A_TIME) as pool:
            starts = [pool.submit(each.__enter__) for each in boards]
        failures = [each.exception() for each in starts if each.exception()]
        if failures:
            for board, start in zip(boards, starts):
                if not start.exception():
                    board.__exit__()
            raise failures[0]
        return self

    def __exit__(self, *_):
        with ThreadPoolExecutor(AT_A_TIME) as pool:
            list(pool.map(Board.__exit__, self.boards.values()))


def address_of(board):
    return "%s://127.0.0.1:%d/" % (board.scheme, board.port)


def certificate_of(board):
    return board.path(CERTIFICATE)


def staged_files(board):
    """Returns the names of the uploads that wait for their restore."""
    return sorted(path.name for path in board.path("/var/tmp").iterdir()
                  if path.name.startswith(STAGED) and path.name != LOCK)
