"""Several boards that are served at the same time over https."""

from concurrent.futures import ThreadPoolExecutor

from fleet import TESTS  # makes `support` known
from support.board import Board

assert TESTS

CERTIFICATE = "/var/lib/tls/certificate.pem"
BACKUP, RESTORE = "0x020100A3", "0x020100A4"
STAGED = "restored_eficonf"
LOCK = STAGED + ".lock"


class Fleet:
    """Serves `count` boards. They start one beside the other, which is bound by their waits."""

    def __init__(self, count, *options):
        self.boards = [Board("--tls", *options) for _ in range(count)]

    def __enter__(self):
        with ThreadPoolExecutor(4) as pool:
            started = [pool.submit(each.__enter__) for each in self.boards]
        failures = [each.exception() for each in started if each.exception()]
        if failures:
            for board, start in zip(self.boards, started):
                if not start.exception():
                    board.__exit__()
            raise failures[0]
        return self

    def __exit__(self, *_):
        with ThreadPoolExecutor(4) as pool:
            list(pool.map(lambda board: board.__exit__(), self.boards))

    def __getitem__(self, index):
        return self.boards[index]


def address_of(board):
    return "%s://127.0.0.1:%d/" % (board.scheme, board.port)


def certificate_of(board):
    return board.path(CERTIFICATE)


def staged_files(board):
    """The names of the uploads that wait for their restore."""
    return sorted(path.name for path in board.path("/var/tmp").iterdir()
                  if path.name.startswith(STAGED) and path.name != LOCK)
