"""Requests that make a page show each message of the board."""

import fcntl
import resource
import subprocess
import threading

from support.board import BOUNDARY, SCREEN, Board, Client, upload_body
from support.document import PROJECT

SET_BACKUP = "0x020100A3"
SET_RESTORE = "0x020100A4"
GET_PARTITIONS = "0x0201002F"
BACKUP_PAGE = SCREEN + "?functionID=105"
RESTORE_PAGE = SCREEN + "?functionID=106"
OTHER_CODE = 1999  # not a code of the back-end


class Text:
    def __init__(self, body):
        self.text = body.decode("utf-8", "replace")


class Provocations:
    """A mixin for tests of a served board, `self.board`. `self.language` is that of the pages."""

    language = "en"

    def client(self, user="admin"):
        client = Client(self.board, user)
        client.cookie += "; language=" + self.language
        return client

    def anonymous(self):
        client = Client(self.board)
        client.cookie = "language=" + self.language
        return client

    def provoke(self, number, code):
        """Returns a response that shows message `number` with `code`; "other" means OTHER_CODE."""
        special = getattr(self, "provoke_%d_%s" % (number, code), None) or getattr(
            self, "provoke_%d" % number, None)
        if special is not None:
            return special()
        refused = OTHER_CODE if code == "other" else int(code)
        if number == 107:
            self.board.control("refuse", GET_PARTITIONS, refused)
            return self.client().get(BACKUP_PAGE)
        if number == 72:
            self.board.control("refuse", SET_BACKUP, refused)
            return self.backup()
        # The back-end refuses before any checks.
        self.board.control("refuse", SET_RESTORE, refused)
        return self.restore()

    def backup(self, client=None):
        return (client or self.client()).post(
            SCREEN, {"functionID": "105", "hidden_status": "BACKUP", "radio_button": "3"})

    def restore(self, client=None, **targets):
        return (client or self.client()).post(
            SCREEN, {"functionID": "106", "hidden_status": "2", **(targets or {"pid3": "3"})})

    def staged(self, client):
        """Stages a file of partition 3 for the client, and returns the client."""
        self.backup(client)
        path = self.board.path("/var/tmp/efi_backup" + client.identifier)
        client.upload(path.read_bytes())
        return client

    def provoke_12(self):
        return self.client("viewer").get(BACKUP_PAGE)

    def provoke_30_1107(self):
        return self.client().post_parts(upload_body(b"x")[:-20])

    def provoke_30_1109(self):
        """Runs the program alone, because the file size limit of 64 KiB would end the web server."""
        body = upload_body(bytes(200 * 1024))
        limit = (64 * 1024, 64 * 1024)
        return self.run_program(
            body, len(body), "multipart/form-data; boundary=" + BOUNDARY,
            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, limit))

    def run_program(self, body, length, kind="application/x-www-form-urlencoded", keep_open=False,
                    **how):
        """Returns the response of the screen's program to a POST that the web server would reject."""
        with subprocess.Popen(
                [self.board.path("/usr/local/www/htdocs" + SCREEN)], stdin=subprocess.PIPE,
                stdout=subprocess.PIPE,
                env={"BOARD_ROOT": str(self.board.root), "REQUEST_METHOD": "POST",
                     "CONTENT_TYPE": kind, "CONTENT_LENGTH": str(length),
                     "HTTP_COOKIE": self.client().cookie}, **how) as program:
            program.stdin.write(body)
            program.stdin.flush()
            if not keep_open:
                program.stdin.close()
            return Text(program.stdout.read())

    def provoke_33(self):
        return self.client().upload(b"")

    def provoke_45_1043(self):
        # The upload of a user without permission is not stored, so it cannot be moved.
        return self.client("viewer").upload(b"x")

    def provoke_45_1101(self):
        with self.board.path("/var/tmp/restored_eficonf.lock").open("a") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            return self.client().upload(b"x")

    def provoke_45_1102(self):
        lock = self.board.path("/var/tmp/restored_eficonf.lock")
        lock.unlink(missing_ok=True)
        lock.mkdir()
        try:
            return self.client().upload(b"x")
        finally:
            lock.rmdir()

    def provoke_46(self):
        users = "".join("[[user]]" + each for each in
                        (PROJECT / "board/demo/demo.toml").read_text().split("[[user]]")[1:])
        folder = self.enterContext(Board())
        description = folder.path("/empty.toml")
        description.write_text("max_partitions = 1\n" + users)
        description.chmod(0o600)
        with Board("--board", str(description)) as board:
            client = Client(board, "admin")
            client.cookie += "; language=" + self.language
            return client.get(BACKUP_PAGE)

    def provoke_63_1026(self):
        return self.client().upload(b"x", name="conf.txt")

    def provoke_63_1028(self):
        return self.client().upload(bytes(393217))

    def provoke_64_1026(self):
        return self.client().upload(b"no configuration")

    def provoke_64_1539(self):
        return self.restore()

    def provoke_70(self):
        return self.restore(self.staged(self.client()))

    def provoke_71_1601(self):
        return self.restore(self.staged(self.client()), none="")

    def provoke_71_1602(self):
        return self.restore(self.staged(self.client()), pid1="1")

    def provoke_71_2003(self):
        client = self.staged(self.client())
        self.board.control("torn", "3")
        return self.restore(client)

    def provoke_72_1602(self):
        return self.client().post(SCREEN, {"functionID": "105", "hidden_status": "BACKUP",
                                           "radio_button": "1"})

    def provoke_73(self):
        return self.restore(self.staged(self.client()), pid7="7")

    def provoke_293(self):
        client = self.staged(self.client())
        return client.upload(self.board.path("/var/tmp/efi_backup" + client.identifier)
                             .read_bytes())

    def provoke_303(self):
        return self.client().get(BACKUP_PAGE)

    def provoke_353(self):
        return self.restore(self.staged(self.client()), pid0="0")

    def provoke_354(self):
        return self.client().get(RESTORE_PAGE)

    def provoke_107_0(self):
        return self.client().post(SCREEN, {"functionID": "105", "hidden_status": "BACKUP"})

    def provoke_9017(self):
        return self.run_program(b"x=", 100, keep_open=True)

    def provoke_9020(self):
        # The back-end reports success without writing the backup.
        self.board.control("refuse", SET_BACKUP, 0)
        return self.backup()

    def provoke_9021(self):
        client = self.client()
        link = self.board.path("/var/tmp/restored_eficonf" + client.identifier)
        link.symlink_to("/nowhere")
        try:
            return self.restore(client)
        finally:
            link.unlink()

    def provoke_9022(self):
        return self.client().post(SCREEN, {"functionID": "106", "x": "y" * 100000})

    def provoke_9023(self):
        return self.run_program(b"x=", 100)

    def provoke_9024(self):
        return self.client().request("PUT", SCREEN, b"x")

    def provoke_9025(self):
        return self.client().request("POST", SCREEN, b"x=y", {"Origin": "http://elsewhere"})

    def provoke_9026(self):
        return self.anonymous().get(BACKUP_PAGE)

    def provoke_9029(self):
        return self.client().request("GET", BACKUP_PAGE, None, {"Host": "elsewhere"})

    def provoke_9041(self):
        return self.client().post(SCREEN, {"functionID": "106"})

    def provoke_9104(self):
        return self.anonymous().post("/login.cgi", {"user": "admin", "password": "wrong"})

    def provoke_9105(self):
        self.board.control("torn", "3")
        return self.anonymous().post("/login.cgi", {"user": "admin", "password": "admin"})

    def provoke_9107(self):
        """Sends more guesses than may wait. Uses a separate board, because they delay other logins."""
        answers = []
        with Board() as board:
            def guess(number):
                client = Client(board)
                client.cookie = "language=" + self.language
                answers.append(client.post("/login.cgi",
                                           {"user": "admin", "password": "wrong%d" % number}))
            guesses = [threading.Thread(target=guess, args=(number,)) for number in range(40)]
            for each in guesses:
                each.start()
            for each in guesses:
                each.join()
        return next(each for each in answers if each.status == 429)

    def provoke_9202(self):
        return self.client("viewer").get("/common/download.cgi?functionID=5&filename=x.dat")

    def provoke_9203(self):
        return self.client().get("/common/download.cgi?functionID=6")

    def provoke_9204(self):
        return self.client().get("/common/download.cgi?functionID=5&filename="
                                 "Partition3_20200101_1.dat")

    def provoke_9207(self):
        return self.anonymous().post("/login.cgi?user=admin", {"password": "admin"})

    def provoke_9211(self):
        return self.client().get("/logout.cgi")
