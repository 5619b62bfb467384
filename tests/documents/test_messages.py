"""docs/messages.md against the catalogues, and every text in it on a page of a served board."""

import fcntl
import html
import re
import resource
import subprocess
import threading
import unittest

from support.board import BOUNDARY, SCREEN, Board, BoardDocumentTest, Client, upload_body
from support.document import PROJECT, DocumentTest
from support.source import enumerators, read

HEADER = ("number", "code", "text", "outcome", "cause")
LANGUAGES = ("en", "ja")
SET_BACKUP = "0x020100A3"
SET_RESTORE = "0x020100A4"
GET_PARTITIONS = "0x0201002F"
BACKUP_PAGE = SCREEN + "?functionID=105"
RESTORE_PAGE = SCREEN + "?functionID=106"
OTHER_CODE = 1999  # which the back-end does not have

# Texts for codes that this board does not have; they are there for others.
NOT_HERE = {(30, "other"), (45, "other"), (63, "other"), (64, "other")}
# Texts that only the scripts of a page show.
IN_SCRIPTS = {293, 303, 354}


def catalogue(language):
    """The texts of a catalogue by set and number."""
    sets = {}
    for line in read("board/catalogue/messages_%s.msg" % language).splitlines():
        if match := re.match(r"\$set (\d+)", line):
            current = sets.setdefault(int(match[1]), {})
        elif match := re.match(r'(\d+) "(.*)"$', line):
            current[int(match[1])] = match[2]
    return sets


def text_of(sets, number, code):
    """What a page shows of a message with a code; "other" stands for OTHER_CODE."""
    if number > 9000:
        return sets[2][number]
    if number == 107:
        return sets[107][{"0": 1, "other": 2}.get(code) or int(code)]
    by_code = sets.get(number, {}) if number > 3 else {}
    return by_code.get(int(code)) if code.isdigit() and int(code) in by_code else sets[1][number]


class MessageTable(DocumentTest):
    """The tables name every message with its English text, and nothing else."""

    name = "docs/messages.md"

    @classmethod
    def rows(cls):
        return [row for cells, rows in cls.document.tables() if cells == list(HEADER)
                for row in rows]

    def test_each_text_is_the_catalogues(self):
        sets = catalogue("en")
        for number, code, text, _, cause in self.rows():
            with self.subTest(number=number, code=code):
                self.assertEqual(text_of(sets, int(number), code), text)
                self.assertTrue(cause)

    def test_each_message_of_the_catalogue_is_there_once(self):
        sets = catalogue("en")
        rows = [(int(number), code) for number, code, *_ in self.rows()]
        self.assertEqual(len(rows), len(set(rows)))
        expected = {number for number in sets[1]}
        self.assertEqual({number for number, _ in rows if number < 9000 and number != 107},
                         expected)
        for number in set(sets) - {1, 2, 3}:
            codes = {code for each, code in rows if each == number}
            named = {{1: "0", 2: "other"}.get(code, str(code)) if number == 107 else str(code)
                     for code in sets[number]}
            self.assertEqual(codes, named | {"other"}, number)

    def test_each_code_of_a_restore_has_its_own_text(self):
        codes = set(enumerators("platform/host/channel/BackendError.h", "BackendError").values())
        codes |= {int(code) for code in re.findall(r"CHANNEL_\w+ = (\d{4});",
                                                   read("platform/host/channel/Channel.h"))}
        # Those with a message of their own, and those of a login and of boardctl.
        codes -= {1047, 1539, 1549, 1551, 1607, 1610, 1614}
        self.assertLessEqual(codes, set(catalogue("en")[71]))
        self.assertLessEqual(codes - {1601, 1613, 1615, 1616}, set(catalogue("en")[72]))

    def test_no_text_has_a_code_that_the_reader_must_interpret(self):
        for language in LANGUAGES:
            for texts in catalogue(language).values():
                for number, text in texts.items():
                    with self.subTest(language=language, number=number):
                        self.assertIsNone(re.search(r"\b(1[0-9]|20)\d\d\b", text), text)


class MessagesOnPages(BoardDocumentTest):
    """Each row is brought about by a request, in both languages."""

    name = "docs/messages.md"

    def setUp(self):
        self.board.control("reset")
        self.language = "en"

    def client(self, user="admin"):
        client = Client(self.board, user)
        client.cookie += "; language=" + self.language
        return client

    def anonymous(self):
        client = Client(self.board)
        client.cookie = "language=" + self.language
        return client

    def test_every_text_appears(self):
        for language in LANGUAGES:
            sets = catalogue(language)
            for number, code, _, outcome, _ in MessageTable.rows():
                if (int(number), code) in NOT_HERE:
                    continue
                with self.subTest(number=number, code=code, language=language):
                    self.language = language
                    self.board.control("reset")
                    answer = self.provoke(int(number), code)
                    self.check(answer.text, int(number), code, outcome,
                               text_of(sets, int(number), code))

    def check(self, page, number, code, outcome, text):
        if number in IN_SCRIPTS:
            decoded = re.sub(r"\\x([0-9a-f]{2})", lambda match: chr(int(match[1], 16)), page)
            self.assertIn('"%s"' % text, decoded)
            return
        if number == 9041:
            self.assertIn(html.escape(text), page)
            return
        shown = str(OTHER_CODE) if code == "other" else code
        paragraph = re.search(r'<p data-message="%d" data-code="%s">(.*?)</p>' % (number, shown),
                              page)
        self.assertIsNotNone(paragraph, page)
        end = "" if shown == "0" else " [%d-%s]" % (number, shown)
        end = " [107]" if number == 107 and shown == "0" else end
        self.assertEqual(html.unescape(paragraph[1]), text + end)
        self.assertIn('data-outcome="%s"' % outcome, page)

    def provoke(self, number, code):
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
        # The back-end looks at nothing before it refuses.
        self.board.control("refuse", SET_RESTORE, refused)
        return self.restore()

    def backup(self, client=None):
        return (client or self.client()).post(
            SCREEN, {"functionID": "105", "hidden_status": "BACKUP", "radio_button": "3"})

    def restore(self, client=None, **targets):
        return (client or self.client()).post(
            SCREEN, {"functionID": "106", "hidden_status": "2", **(targets or {"pid3": "3"})})

    def staged(self, client):
        """The client, with a file of partition 3 staged."""
        self.backup(client)
        path = self.board.path("/var/tmp/efi_backup" + client.identifier)
        client.upload(path.read_bytes())
        return client

    def provoke_12(self):
        return self.client("viewer").get(BACKUP_PAGE)

    def provoke_30_1107(self):
        return self.client().post_parts(upload_body(b"x")[:-20])

    def provoke_30_1109(self):
        """The web server itself would end where it may write no file of more than 64 KiB."""
        body = upload_body(bytes(200 * 1024))
        limit = (64 * 1024, 64 * 1024)
        return self.run_program(
            body, len(body), "multipart/form-data; boundary=" + BOUNDARY,
            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, limit))

    def run_program(self, body, length, kind="application/x-www-form-urlencoded", keep_open=False,
                    **how):
        """The answer of the screen's program to a POST, without the web server, which would not let
        such a one through."""
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
        # What a user without the right uploads is not stored, so that it cannot be moved.
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
        # The back-end says that it wrote the backup, and has not.
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
        """More guesses than may wait, on a board of its own: they keep others waiting."""
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


class Text:
    def __init__(self, body):
        self.text = body.decode("utf-8", "replace")


if __name__ == "__main__":
    unittest.main()
