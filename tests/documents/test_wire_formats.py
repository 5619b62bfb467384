"""docs/wire-formats.md against a running back-end and the headers. The worked examples are made
anew by tests/backend/documentsTest.cpp."""

import fcntl
import hashlib
import os
import re
import stat
import struct
import time
import unittest
from concurrent.futures import ThreadPoolExecutor

from support.board import BoardDocumentTest, Client
from support.document import codes_in
from support.source import constant, enumerators, read, text_constant

CHANNEL = "platform/host/channel/Channel.h"
LIMITS = "board/backend/ConnectionLimits.h"
PROPERTIES = "platform/host/channel/BoardProperties.cpp"
GET, SET, LOGIN, CONTROL = 1, 2, 3, 4


def frame(kind, number, *texts):
    """A request up to its payload, without the length in front."""
    body = struct.pack(">BI", kind, number)
    for text in (*texts, b"", b"", b"", b"")[:4]:
        body += struct.pack(">H", len(text)) + text
    return body


class WireFormats(BoardDocumentTest):
    name = "docs/wire-formats.md"

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.session = Client(cls.board, "admin").identifier.encode()

    def setUp(self):
        self.order("reset")

    def order(self, words):
        return self.board.ask(CONTROL, 0, b"", words.encode())

    def numbers(self):
        """Number and kind of each object."""
        return {object_name: (int(number, 16), kind) for number, kind, object_name, _
                in self.table("number", "kind", "object", "what happens")}

    def request_numbers(self):
        rows = self.table("number", "kind", "object", "what happens")
        return {int(row[0], 16): row[1] for row in rows}

    def test_the_socket_is_where_and_whose_it_is_stated(self):
        path = self.stated(r"Unix-domain stream socket `([^`]+)` under the board's root")
        self.stated(r"(only the board's own user may connect)")
        socket = self.board.path(path)
        self.assertTrue(stat.S_ISSOCK(socket.stat().st_mode))
        open_to_others = [each.stat().st_mode & 0o077 == 0
                          for each in (socket, *socket.parents) if self.board.root in
                          (each, *each.parents)]
        self.assertTrue(any(open_to_others))

    def test_limits_are_those_of_the_headers(self):
        rows = {row[0]: re.search(r"(\d+)( s| bytes)?", row[1])[1]
                for row in self.table("limit", "value", "who keeps it")}
        self.assertEqual({key: int(value) for key, value in rows.items()}, {
            "frame, without the length in front":
                constant("platform/host/channel/Frame.h", "LARGEST_FRAME"),
            "one exchange, seen from the client":
                constant(CHANNEL, "CHANNEL_DEADLINE_MILLISECONDS") // 1000,
            "a whole request": constant(LIMITS, "requestMilliseconds") // 1000,
            "taking the reply": constant(LIMITS, "replyMilliseconds") // 1000,
            "connections at a time": constant(LIMITS, "connections"),
        })
        self.assertEqual(self.stated(r"once it is silent for (\d+) s"),
                         constant(LIMITS, "quietMilliseconds") // 1000)
        self.assertEqual(self.stated(r"client: code (\d+), connection given up"),
                         constant(CHANNEL, "CHANNEL_TIMEOUT"))

    def test_an_oversized_frame_ends_the_connection(self):
        size = constant("platform/host/channel/Frame.h", "LARGEST_FRAME")
        head = frame(GET, 7)
        whole = head + bytes(size - len(head))
        self.assertEqual(len(self.board.exchange(whole)), 1)
        self.assertEqual(len(self.board.exchange(whole + b"x", head)), 0)

    def test_kinds_are_those_of_the_header(self):
        rows = self.table("kind", "meaning", "number", "texts", "payload")
        kinds = {row[0].split()[1]: int(row[0].split()[0]) for row in rows}
        self.assertEqual(kinds, enumerators("platform/host/channel/Frame.h", "RequestKind"))

    def test_a_frame_that_is_no_request_ends_the_connection(self):
        code = self.stated(r"A frame that is no request is answered with code (\d+), and the conn")
        status = frame(CONTROL, 0) + b"status"
        replies = self.board.exchange(b"\x09", status)
        self.assertEqual(replies, [(code, b"")])
        # After a request that is only refused it stays.
        refused = frame(GET, 7)
        self.assertEqual([code for code, _ in self.board.exchange(refused, status)], [1604, 0])

    def test_a_session_identifier_has_the_stated_shape(self):
        digits = self.stated(r"The session identifier is (\d+) lowercase hexadecimal digits")
        self.assertRegex(self.session.decode(), "^[0-9a-f]{%d}$" % digits)
        backup = self.numbers()["partition number, 4 bytes"][0]
        for session in (b"0" * (digits - 1), b"0" * (digits + 1), b"A" * digits, b"", b"../"):
            self.assertEqual(self.board.ask(SET, backup, session, b"\0\0\0\3")[0], 1606)

    def test_the_examples_are_of_the_stated_session(self):
        session = self.stated(r"In the examples the session is `(\w+)`")
        asked = self.document.bytes_after("### 0x0201002F")
        body = frame(GET, 0x0201002F, str(session).encode())
        self.assertEqual(asked, struct.pack(">I", len(body)) + body)
        address, request = self.stated(r"the address `([^`]+)` and the request `([^`]+)`\.")
        body = frame(SET, 0x020100A3, str(session).encode(), address.encode(), request.encode())
        self.assertEqual(self.document.bytes_after("### 0x020100A3"),
                         struct.pack(">I", len(body) + 4) + body + b"\0\0\0\3")

    def test_request_numbers_are_those_of_the_header(self):
        text = read("data/requestNumbers.h")
        header = {int(number, 16): name.split("_")[0]
                  for name, number in re.findall(r"(\w+) = (0x\w+),", text)}
        self.assertEqual(self.request_numbers(), header)
        self.assertEqual(self.board.ask(GET, 0x0201FFFF)[0], 1604)

    def test_the_answers_have_the_stated_sizes(self):
        self.assertEqual(self.stated(r"packet = \(length member\) (\d+) times"), 11)
        self.stated(r"(The eleven members)")
        count = self.stated(r"This back-end sends (\d+) records of each kind")
        versions = self.stated(r"is not known\. This back-end sends (\d+)\.")
        members = self.members(self.board.ask(GET, 0x02010021)[1])
        self.assertEqual(len(members), 11)
        for row in self.table("member", "container", "content"):
            first, _, last = re.sub(", ", " to ", row[0]).partition(" to ")
            size = re.search(r"array of (\d)-byte records", row[1])
            for member in members[int(first) - 1:int(last or first)]:
                self.assertEqual(struct.unpack(">H", member[:2])[0], 0 if size is None else count)
                self.assertEqual(len(member), 2 + (count * int(size[1]) if size else 0))
        answer = self.board.ask(GET, 0x02010201)[1]
        self.assertEqual(struct.unpack(">H", answer[:2])[0], versions)

    def members(self, answer):
        members = []
        while answer:
            size = struct.unpack(">I", answer[:4])[0]
            members.append(answer[4:4 + size])
            answer = answer[4 + size:]
        return members

    def test_records_have_the_stated_bits(self):
        installed, home = self.stated(
            r"bit (\d+) says that the board is installed, bit (\d+), for a system board, that it")
        members = self.members(self.board.ask(GET, 0x02010021)[1])
        # The demo board: system boards 0 and 1 are there, 0 is a home board; I/O boards 0 and 1.
        self.assertEqual(members[0][2:10], struct.pack(">II", 1 << installed | 1 << home,
                                                       1 << installed))
        self.assertEqual(members[3][2:8], struct.pack(">IH", 1 << installed, 0))

    def test_a_backup_is_written_as_stated(self):
        number, path = next((int(row[0], 16), codes_in(row[3])[0])
                            for row in self.table("number", "kind", "object", "what happens")
                            if "is written to" in row[3])
        mode = int(self.stated(r"The file is replaced as a whole, mode (0\d+);"))
        self.assertEqual(self.board.ask(SET, number, self.session, b"\0\0\0\3"), (0, b""))
        file = self.board.path(path + self.session.decode())
        self.assertEqual("%o" % stat.S_IMODE(file.stat().st_mode), str(mode))
        self.stated(r"(Running partitions can be backed up)")
        self.assertEqual(self.board.ask(SET, number, self.session, b"\0\0\0\7")[0], 0)

    def restore(self, targets, session=None, staged_file=b""):
        return self.board.ask(SET, 0x020100A4, self.session if session is None else session,
                              targets, staged_file)[0]

    def stage(self, partition):
        self.board.ask(SET, 0x020100A3, self.session, struct.pack(">I", partition))
        name = self.session.decode()
        file = self.board.path("/var/tmp/restored_eficonf" + name)
        self.board.path("/var/tmp/efi_backup" + name).rename(file)
        return file

    def test_a_restore_is_checked_in_the_stated_order(self):
        stated = self.stated(
            r"in this order: the session \((\d+)\), the right \((\d+)\), the payload \((\d+)\), the list \((\d+)\), no "
            r"other restore \((\d+)\), the file \((\d+)\), that it is the file of the page \((\d+)\), then each target in "
            r"ascending order: it is installed \((\d+)\), it is not running \((\d+)\), the version fits \((\d+)\)")
        session, right, payload, empty, busy, damaged, other, absent, running, version = stated
        viewer = Client(self.board, "viewer").identifier.encode()
        file = self.stage(3)
        usable = file.read_bytes()
        file.write_bytes(b"damaged")
        lock = os.open(self.board.path(self.stated(r"another restore is under way: `([^`]+)`")),
                       os.O_RDWR | os.O_CREAT, 0o600)
        try:
            fcntl.flock(lock, fcntl.LOCK_EX)
            # Each request fails this check and all that follow it.
            self.assertEqual(self.restore(b"\0\2", b"x"), session)
            self.assertEqual(self.restore(b"\0\2", viewer), right)
            self.assertEqual(self.restore(b"\0\2"), payload)
            self.assertEqual(self.restore(b"\0\0"), empty)
            self.assertEqual(self.restore(b"\0\1\4"), busy)
        finally:
            os.close(lock)
        self.assertEqual(self.restore(b"\0\1\4"), damaged)
        file.write_bytes(usable)
        self.order("partition 0 on")
        self.assertEqual(self.restore(b"\0\3\7\1\0", staged_file=b"another"), other)
        self.assertEqual(self.restore(b"\0\3\7\1\0"), running)  # 0 runs and is of another version
        self.order("partition 0 off")
        self.assertEqual(self.restore(b"\0\3\7\1\0"), version)  # of 0, before 1 is absent
        self.assertEqual(self.restore(b"\0\3\7\1\2"), absent)   # 1, before 7 runs
        self.assertEqual(self.restore(b"\0\2\7\2"), running)
        self.stated(r"(A partition that is named twice counts once)")
        name = hashlib.sha256(usable).hexdigest().encode()
        self.assertEqual(self.restore(b"\0\3\2\2\2", staged_file=name), 0)

    def test_logins_are_answered_as_stated(self):
        refused = enumerators("platform/host/channel/BackendError.h",
                              "BackendError")["BACKEND_LOGIN_REFUSED"]
        self.stated(r"(whichever is wrong)")
        for user, password in ((b"admin", b"x"), (b"x", b"admin")):
            self.assertEqual(self.login(user, password, b"address one", b""), (refused, b""))
        code, answer = self.login(b"admin", b"admin", b"address one", b"")
        self.assertEqual((code, len(answer)), (0, 34))

    def login(self, *texts):
        payload = b"".join(struct.pack(">H", len(text)) + text for text in texts)
        return self.board.ask(LOGIN, 0, b"", payload)

    def test_a_device_is_as_stated(self):
        digits = self.stated(r"names a browser: (\d+) random hexadecimal digits")
        most, in_all = self.stated(r"the (\d+) devices of a user that were used last, at most (\d+)")
        self.assertEqual(most, constant("board/backend/KnownDevices.h", "MOST_OF_ACCOUNT"))
        self.assertEqual(in_all, constant("board/backend/KnownDevices.h", "MOST_DEVICES"))
        size, device = self.logged_in(b"admin", b"")
        self.assertEqual(size, digits)
        self.assertRegex(device, rb"^[0-9a-f]+$")
        self.assertEqual(self.logged_in(b"admin", device), (0, b""))
        self.assertEqual(self.logged_in(b"viewer", device)[0], digits)
        self.assertNotEqual(self.logged_in(b"viewer", device)[1], device)

    def logged_in(self, user, device):
        """The device, after its length, that a login is answered with."""
        code, answer = self.login(user, user, b"address four", device)
        self.assertEqual(code, 0)
        return struct.unpack(">H", answer[:2])[0], answer[2:]

    def test_guesses_are_slowed_down_as_stated(self):
        queue = "board/backend/LoginQueue.h"
        names = {"account": "ACCOUNT", "account and address": "ADDRESS",
                 "account and device": "DEVICE"}
        rows = self.table("bucket", "tokens", "one more every", "taken by")
        self.assertEqual([row[0] for row in rows], list(names))
        for bucket, tokens, interval, _ in rows:
            self.assertEqual(int(tokens), constant(queue, names[bucket] + "_ATTEMPTS"))
            self.assertEqual(1000 * float(interval.removesuffix(" s")),
                             constant(queue, names[bucket] + "_INTERVAL"))
        wait, code = self.stated(r"waits for one, at most (\d+) s; then it is refused with (\d+)")
        self.assertEqual(wait, constant(queue, "LONGEST_WAIT"))
        most, of_address, of_device, again = self.stated(
            r"At most (\d+) attempts wait, (\d+) of one address and (\d+) of one device; of more, the "
            r"oldest of the address with the most is refused with (\d+)")
        self.assertEqual([most, of_address, of_device],
                         [constant(queue, each) for each in
                          ("MOST_WAITING", "MOST_OF_ADDRESS", "MOST_OF_DEVICE")])
        self.assertEqual(code, again)
        failures, delay, at_work = self.stated(
            r"After (\d+) failures from an address at any accounts, of which one is forgotten each "
            r"minute, each attempt from there is begun (\d+) s late, .* (\d+) are looked at at a time")
        self.assertEqual([failures, delay, at_work],
                         [constant(queue, each) for each in
                          ("ADDRESS_FAILURES", "FAILURE_DELAY", "MOST_AT_WORK")])
        self.assertEqual(constant(queue, "FAILURE_MEMORY"), 60)
        self.stated(r"(a password that has not failed in the last hour)")
        self.assertEqual(constant(queue, "GUESS_MEMORY"), 60)
        self.assertEqual(self.stated(r"a device that has not failed in the last (\d+) minutes"),
                         constant(queue, "BROWSER_MEMORY"))
        self.stated(r"(the name, which need not exist)")
        begin = time.monotonic()
        with ThreadPoolExecutor(40) as threads:
            codes = list(threads.map(lambda i: self.login(b"x", b"%d" % i, b"address two", b"")[0],
                                     range(40)))
        looked_at = len(codes) - codes.count(code)
        free, interval = rows[1][1:3]
        given = int(free) + (time.monotonic() - begin) / float(interval.removesuffix(" s"))
        self.assertGreaterEqual(looked_at, int(free))
        self.assertLessEqual(looked_at, given + 1)

    def test_orders_are_refused_as_stated(self):
        option, code = self.stated(r"not started with `([^`]+)` refuses every order with (\d+)")
        self.assertEqual(code, enumerators("platform/host/channel/BackendError.h",
                                           "BackendError")["BACKEND_FAULTS_NOT_ALLOWED"])
        self.assertIn('"%s"' % option, read("board/backend/BackendOptions.cpp"))
        self.stated(r"(`./serve` starts it so)")
        self.assertIn(option, read("serve"))

    def test_orders_are_carried_out_as_stated(self):
        rows = self.table("order", "what happens")
        malformed = self.stated(r"An order that makes no sense is refused with (\d+)")
        examples = {"REQUEST": "7", "CODE": "1603", "TIMES": "2", "MILLISECONDS": "1",
                    "BYTES": "6", "NUMBER": "3"}
        for orders, what in rows:
            for order in codes_in(orders):
                if order == "off" or order.startswith("die"):
                    continue
                with self.subTest(order=order):
                    words = [examples.get(word, word) for word in order.split()]
                    self.order("reset")
                    code, answer = self.order(" ".join(words))
                    self.assertEqual(code, 0)
                    # A switch that is on is a line of the answer.
                    self.assertEqual(answer != b"", order not in ("reset", "status"))
                    self.assertEqual(self.order(" ".join(words + ["1"]))[0], malformed)
                    self.assertEqual(self.order("status")[1] == b"", answer == b"")
            limit = re.search(r"at most (\d+)", what)
            if limit:
                words = [limit[1] if word == "MILLISECONDS" else examples.get(word, word)
                         for word in codes_in(orders)[0].split()]
                beyond = [str(int(limit[1]) + 1) if word == limit[1] else word for word in words]
                self.assertEqual(self.order(" ".join(beyond))[0], malformed)
                if words[0] != "die":
                    self.assertEqual(self.order(" ".join(words))[0], 0)
        self.order("reset")

    def test_a_partition_that_is_not_installed_is_refused_as_stated(self):
        code = self.stated(r"so does one for a partition that is not installed, with (\d+)\.")
        before = self.order("status")
        for number in (4, 6, 8, 4294967295):
            self.assertEqual(self.order("partition %d on" % number)[0], code)
        self.assertEqual(self.order("status"), before)

    def test_every_order_of_the_back_end_is_listed(self):
        verbs = set(re.findall(r'verb == "(\w+)"', read("board/backend/controlOrder.cpp")))
        listed = {codes_in(row[0])[0].split()[0] for row in self.table("order", "what happens")}
        self.assertEqual(listed, verbs)

    def test_switches_do_what_is_stated(self):
        code = self.order("refuse %d 1603 1" % 0x0201002F)[0]
        self.assertEqual(code, 0)
        self.assertEqual(self.board.ask(GET, 0x0201002F), (1603, b""))
        self.assertEqual(self.board.ask(GET, 0x0201002F)[0], 0)
        self.stated(r"(A LOGIN counts as a request of number 0)")
        self.order("refuse 0 1603 1")
        self.assertEqual(self.login(b"admin", b"admin", b"address three", b"")[0], 1603)
        self.stated(r"(CONTROL itself meets no fault)")
        self.order("refuse 0 1603 1")
        self.assertEqual(self.order("status")[0], 0)
        self.stated(r"(also when it comes back)")
        self.board.control("die")
        self.assertEqual(self.board.wait_for_backend(), (0, b""))

    def test_codes_are_those_of_the_headers(self):
        ours, channels = [dict(rows) for cells, rows in self.document.tables()
                          if cells == ["code", "meaning"]]
        errors = enumerators("platform/host/channel/BackendError.h", "BackendError")
        self.assertEqual(set(map(int, ours)), set(errors.values()))
        header = read(CHANNEL)
        codes = set(map(int, re.findall(r"int CHANNEL_\w+ = (2\d+);", header)))
        self.assertEqual(set(map(int, channels)), codes)

    def test_meanings_are_those_of_the_headers(self):
        """The meaning of each code has the words of the comment beside it, or says more."""
        header = read("platform/host/channel/BackendError.h") + read(CHANNEL)
        for cells, rows in self.document.tables():
            if cells != ["code", "meaning"]:
                continue
            for code, meaning in rows:
                comment = re.search(r"= %s[;,]\s*// (.*)" % code, header)
                self.assertIsNotNone(comment, code)
                words = {word for word in re.findall(r"[a-z]{4,}", comment[1].lower())}
                common = [word for word in words if word in meaning.lower()]
                self.assertGreaterEqual(2 * len(common), len(words), (code, meaning, comment[1]))

    def test_the_properties_are_where_and_what_is_stated(self):
        path = self.stated(r"The back-end writes the file `([^`]+)` when it starts")
        self.assertEqual(path, text_constant("platform/host/base/SystemPath.h",
                                             "BOARD_PROPERTIES"))
        mode = int(str(self.stated(r"one `name=value` per line, mode (0\d+)")), 8)
        self.assertEqual(stat.S_IMODE(self.board.path(path).stat().st_mode), mode)
        rows = dict(self.table("line", "meaning"))
        line, name, _, user, log = (row.strip("`") for row in rows)
        last = int(re.search(r"run from 0 to (\d+)", rows["`%s`" % line])[1])
        names = "".join("host=" + name + "\n" for name in ("127.0.0.1", "[::1]", "localhost"))
        nobody = re.sub(r" .* admin", " - viewer", user)
        self.assertEqual(self.board.path(path).read_text(),
                         line + "\n" + name + "\n" + names + user + "\n" + nobody + "\n")
        for row in (line, name, user, log):
            self.assertIn('= "%s"' % row.partition("=")[0], read(PROPERTIES))
        pattern = self.stated(r"to the web server as a pattern as well, in `([^`]+)`")
        self.assertTrue(self.board.path(pattern).exists())
        table = self.board.ask(GET, 0x0201002F)[1]
        self.assertEqual(struct.unpack(">H", table[:2])[0], last + 1)


if __name__ == "__main__":
    unittest.main()
