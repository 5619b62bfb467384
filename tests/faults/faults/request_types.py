"""All kinds of requests to the board's programs, and their permitted changes."""

import itertools
import re

from faults import audit_log
from faults.board import identifier_of, sample_file
from faults.configuration_file import LARGEST_FILE, decode_configuration_file, decode_state
from faults.scene import STATE, TARGETS, backup_file, session_file, staged_file

SCREEN = "maintenance/efi_backup_restore.cgi"
INSTALLED_PARTITIONS = 5
BOUNDARY = "----faults"

# Contents that a request may leave in a file, besides the old content.
ABSENT = None
EMPTY = b""

NOTICE = re.compile(r'role="alert"[^>]*>(.*?)</div>', re.S)


def multipart(fields, file_name=None, data=b""):
    """Returns the body of a multipart form."""
    parts = [f'--{BOUNDARY}\r\nContent-Disposition: form-data; name="{name}"\r\n\r\n{value}\r\n'
             .encode() for name, value in fields.items()]
    if file_name is not None:
        parts.append((f'--{BOUNDARY}\r\nContent-Disposition: form-data; name="filename"; '
                      f'filename="{file_name}"\r\nContent-Type: application/octet-stream\r\n\r\n')
                     .encode() + data + b"\r\n")
    return b"".join(parts) + f"--{BOUNDARY}--\r\n".encode()


def notices_of(response):
    """Returns the text of the page's notices about the request."""
    return " ".join(NOTICE.findall(response.text))


def post(cookie, body, kind="application/x-www-form-urlencoded", program=SCREEN):
    return {"program": program, "method": "POST", "cookie": cookie, "body": body, "type": kind}


def post_parts(cookie, body):
    return post(cookie, body, f"multipart/form-data; boundary={BOUNDARY}")


def get(cookie, query="", program=SCREEN):
    return {"program": program, "method": "GET", "cookie": cookie, "query": query}


class RequestType:
    """A kind of request. prepare() stages the board's files and log and returns the request; then
    `files` contains the operator's files before the request, and `allowed` the other contents that
    each file may have after it."""

    name = ""
    writes = False  # true if the request cannot be carried out on a full disk
    events = ()  # events that it may add to the audit log
    counts = None  # events before it that were only counted

    def prepare(self, scene):
        self.files = {}
        self.allowed = {}
        request = self.make(scene)
        scene.stage(self.files)
        scene.stage_log(self.make_log(scene), self.counts)
        return request

    def make(self, scene):
        raise NotImplementedError

    def claims_success(self, response, scene):
        """Returns true if the page reports success."""
        return response.status == 200 and not notices_of(response)

    def happened(self, scene, response, after):
        """Returns true if the request was carried out; `after` contains the files afterwards."""
        return True

    def make_log(self, scene):
        """Returns the audit log before the request."""
        return scene.log_line()

    def tells_done(self, response, scene, after):
        """Returns true if the answer reports an action that the audit log must contain."""
        return bool(self.events) and self.claims_success(response, scene)

    def expected_line(self, scene, response):
        """Returns fields of the line that the audit log must then contain."""
        return {"event": self.name, "user": "admin", "session": identifier_of(scene.operator),
                "result": "done"}


def file_sum(data):
    return {"sha256": audit_log.sum_of(data)}


class BackupPage(RequestType):
    name = "backup page"

    def make(self, scene):
        return get(scene.operator, "functionID=105")

    def happened(self, scene, response, after):
        return response.text.count('name="radio_button"') == INSTALLED_PARTITIONS


class RestorePage(RequestType):
    name = "restore page"

    def make(self, scene):
        return get(scene.operator, "functionID=106")

    def happened(self, scene, response, after):
        return 'type="file"' in response.text and 'name="hidden_status"' in response.text


class Backup(RequestType):
    name = "backup"
    writes = True
    events = ("backup",)

    def make(self, scene):
        path = backup_file(scene.operator)
        self.files[path] = sample_file("an earlier backup", 5000)
        payload = decode_state(scene.board.read(STATE))[3]

        def is_new(data):
            file = decode_configuration_file(data)
            return file is not None and file.partition == 3 and file.payload == payload

        # The program empties the file before it requests the backup; the download refuses an empty
        # file. A backup without a line in the audit log is removed.
        self.allowed[path] = [EMPTY, ABSENT, is_new]
        return post(scene.operator, b"functionID=105&hidden_status=BACKUP&radio_button=3")

    def claims_success(self, response, scene):
        return 'id="download_link"' in response.text

    def happened(self, scene, response, after):
        path = backup_file(scene.operator)
        return after.get(path) not in (None, EMPTY, self.files[path])

    def expected_line(self, scene, response):
        saved = scene.board.read(backup_file(scene.operator)) or b""
        return {**super().expected_line(scene, response), "partitions": [3], "file": file_sum(saved)}


class Upload(RequestType):
    name = "upload"
    writes = True
    events = ("upload",)

    def make(self, scene):
        path = staged_file(scene.operator)
        self.files[path] = sample_file("an earlier file", 5000)
        self.data = sample_file("a new file", 350000)
        # A file that cannot be read back is removed, and the page says so.
        self.allowed[path] = [self.data, ABSENT]
        body = multipart({"functionID": 106, "hidden_status": 1}, "conf.dat", self.data)
        return post_parts(scene.operator, body)

    def claims_success(self, response, scene):
        return 'class="facts"' in response.text

    def happened(self, scene, response, after):
        return after.get(staged_file(scene.operator)) == self.data and "Sample" in response.text

    def expected_line(self, scene, response):
        return {**super().expected_line(scene, response), "file": file_sum(self.data)}


class UnusableUpload(Upload):
    """An upload of a file that is not a configuration file: it is removed."""

    name = "unusable upload"

    def make(self, scene):
        path = staged_file(scene.operator)
        self.files[path] = sample_file("an earlier file", 5000)
        self.data = b"no configuration file " * 1000
        self.allowed[path] = [ABSENT, self.data]
        body = multipart({"functionID": 106, "hidden_status": 1}, "conf.dat", self.data)
        return post_parts(scene.operator, body)

    def happened(self, scene, response, after):
        return False


class RefusedUpload(RequestType):
    """An upload that must leave the staged file unchanged."""

    writes = True
    events = ("upload",)

    def make(self, scene):
        self.files[staged_file(scene.operator)] = sample_file("an earlier file", 5000)
        return self.make_upload(scene)

    def make_upload(self, scene):
        raise NotImplementedError

    def claims_success(self, response, scene):
        return 'class="facts"' in response.text

    def happened(self, scene, response, after):
        return False


class LargeUpload(RefusedUpload):
    name = "too large upload"

    def make_upload(self, scene):
        data = sample_file("large", LARGEST_FILE + 1)
        return post_parts(scene.operator, multipart({"functionID": 106, "hidden_status": 1},
                                                    "conf.dat", data))


class BrokenUpload(RefusedUpload):
    name = "broken upload"

    def make_upload(self, scene):
        body = multipart({"functionID": 106, "hidden_status": 1}, "conf.dat",
                         sample_file("broken", 200000))
        return {**post_parts(scene.operator, body[:100000]), "announced": len(body)}


class Restore(RequestType):
    name = "restore"
    writes = True
    events = ("restore",)

    def make(self, scene):
        self.payload = scene.next_payload()
        self.files[staged_file(scene.operator)] = sample_file(scene.letter)
        self.new_state = scene.expected_state(self.payload)
        self.allowed[STATE] = [self.new_state]
        fields = {"functionID": 106, "hidden_status": 2}
        fields.update({f"pid{target}": target for target in TARGETS})
        return post_parts(scene.operator, multipart(fields, "", b""))

    def claims_success(self, response, scene):
        notice = notices_of(response)
        return "configuration was restored." in notice or "Text 70 " in notice

    def happened(self, scene, response, after):
        return after.get(STATE) == self.new_state

    def expected_line(self, scene, response):
        return {**super().expected_line(scene, response), "partitions": list(TARGETS),
                "file": file_sum(self.files[staged_file(scene.operator)])}


class RefusedRestore(RequestType):
    """A restore to two partitions, one of them running: neither is changed."""

    name = "refused restore"
    events = ("restore",)

    def make(self, scene):
        self.files[staged_file(scene.operator)] = sample_file("refused")
        fields = {"functionID": 106, "hidden_status": 2, "pid3": 3, "pid7": 7}
        return post_parts(scene.operator, multipart(fields))

    def claims_success(self, response, scene):
        return Restore.claims_success(self, response, scene)

    def happened(self, scene, response, after):
        return False


class Discard(RequestType):
    name = "discard"
    events = ("discard",)

    def make(self, scene):
        path = staged_file(scene.operator)
        self.files[path] = sample_file("to be discarded")
        self.allowed[path] = [ABSENT]
        return post(scene.operator, b"functionID=106&hidden_status=3")

    # The next page does not report the discard; it only shows no file.
    def claims_success(self, response, scene):
        return False

    def tells_done(self, response, scene, after):
        return (response.status == 200 and not notices_of(response)
                and staged_file(scene.operator) not in after)

    def expected_line(self, scene, response):
        return {**super().expected_line(scene, response), "event": "discard"}


class RotatingDiscard(Discard):
    """A discard that causes a rotation of the log."""

    name = "rotating discard"

    def make_log(self, scene):
        return audit_log.fill_up(super().make_log(scene))


class NoSession(RequestType):
    name = "no session"

    def make(self, scene):
        self.files[staged_file(scene.operator)] = sample_file("staged")
        token = "0" * 32
        forged = scene.operator.split("-")[0] + "-" + token
        return post(forged, b"functionID=106&hidden_status=2&pid2=2&pid3=3")

    def happened(self, scene, response, after):
        return False


class NoAuthority(RequestType):
    name = "no authority"
    events = ("refusal",)

    def make(self, scene):
        # Files of a function that the user may no longer use are removed.
        for path in (staged_file(scene.viewer), backup_file(scene.viewer)):
            self.allowed[path] = [ABSENT]
        return post(scene.viewer, b"functionID=106&hidden_status=2&pid2=2&pid3=3")

    def claims_success(self, response, scene):
        return Restore.claims_success(self, response, scene) or super().claims_success(response, scene)

    def tells_done(self, response, scene, after):
        return False

    def happened(self, scene, response, after):
        return False


class Menu(RequestType):
    name = "menu"

    def make(self, scene):
        return get(scene.operator, program="index.cgi")

    def claims_success(self, response, scene):
        return response.status == 200

    def happened(self, scene, response, after):
        return "<strong>admin</strong>" in response.text


class Download(RequestType):
    name = "download"
    events = ("download",)

    def make(self, scene):
        self.data = sample_file("downloaded")
        self.files[backup_file(scene.operator)] = self.data
        query = "functionID=5&filename=Partition3_20231114_123B.dat"
        return get(scene.operator, query, "common/download.cgi")

    def claims_success(self, response, scene):
        return (response.status == 200 or "content-disposition" in response.headers
                or response.headers["content-type"] == "application/octet-stream")

    def happened(self, scene, response, after):
        return response.status == 200 and response.body == self.data

    def expected_line(self, scene, response):
        return {**super().expected_line(scene, response), "file": file_sum(self.data)}


class LoginPage(RequestType):
    name = "login page"

    def make(self, scene):
        return get(None, program="login.cgi")

    def happened(self, scene, response, after):
        return 'type="password"' in response.text


class Login(RequestType):
    """A login, which may also remove an expired session and its files."""

    name = "login"
    writes = True
    events = ("login", "login_failed", "session_expired")

    def make(self, scene):
        identifier = "0123456789abcdef"
        expired = scene.sessions[session_file(scene.operator)]
        expired = re.sub(rb"created=\d+", b"created=1", expired)
        for path, data in ((f"var/lib/session/{identifier}", expired),
                           (f"var/tmp/restored_eficonf{identifier}", b"staged"),
                           (f"var/tmp/efi_backup{identifier}", b"backup")):
            self.files[path] = data
            self.allowed[path] = [ABSENT]
        return post(None, b"user=admin&password=admin", program="login.cgi")

    def claims_success(self, response, scene):
        return response.status < 400

    def happened(self, scene, response, after):
        match = self.cookie_in(response)
        return (match is not None and response.status == 303
                and b"token_sha256=" + audit_log.sum_of(match[3].encode()).encode() + b"\n"
                in after.get(f"var/lib/session/{match[2]}", b""))

    @staticmethod
    def cookie_in(response):
        return re.match(r"session=(([0-9a-f]{16})-([0-9a-f]{32}));",
                        response.headers.get("set-cookie", ""))

    def expected_line(self, scene, response):
        match = self.cookie_in(response)
        return {"event": "login", "user": "admin", "session": match and match[2]}


class WrongPassword(RequestType):
    name = "wrong password"
    events = ("login_failed", "anonymous")
    counts = audit_log.OLD_COUNTS
    count = itertools.count()

    def make(self, scene):
        # A new name and address each time, because repeated guesses would have to wait.
        number = next(self.count)
        address = f"10.{number >> 16 & 255}.{number >> 8 & 255}.{number & 255}"
        return {**post(None, b"user=guess%06d&password=guess" % number, program="login.cgi"),
                "address": address}

    def claims_success(self, response, scene):
        return response.status < 400 or "set-cookie" in response.headers

    def tells_done(self, response, scene, after):
        return False

    def happened(self, scene, response, after):
        return False


class Language(RequestType):
    name = "language"

    def make(self, scene):
        return post(None, b"language=ja", program="index.cgi")

    def claims_success(self, response, scene):
        return response.status < 400

    def happened(self, scene, response, after):
        return "language=ja" in response.headers.get("set-cookie", "")


class Logout(RequestType):
    name = "logout"
    events = ("logout",)

    def make(self, scene):
        # A separate session, so that the operator's remains for the next request.
        cookie = "fedcba9876543210-" + scene.operator.split("-")[1]
        self.session = session_file(cookie)
        self.files[self.session] = scene.sessions[session_file(scene.operator)]
        self.files[staged_file(cookie)] = sample_file("staged", 5000)
        self.files[backup_file(cookie)] = sample_file("backup", 5000)
        for path in self.files:
            self.allowed[path] = [ABSENT]
        return post(cookie, b"", program="logout.cgi")

    def claims_success(self, response, scene):
        return response.status < 400

    def happened(self, scene, response, after):
        return self.session not in after

    def make_log(self, scene):
        """Returns a log that ends with half a line, as after a power cut."""
        return super().make_log(scene) + b'{"time":"2026-01-31T23:59'

    def expected_line(self, scene, response):
        return {"event": "logout", "user": "admin", "session": "fedcba9876543210"}


REQUEST_TYPES = {kind.name: kind for kind in (
    BackupPage, RestorePage, Backup, Upload, UnusableUpload, LargeUpload, BrokenUpload, Restore,
    RefusedRestore, Discard, RotatingDiscard, NoSession, NoAuthority, Menu, Language, Download, LoginPage, Login,
    WrongPassword, Logout)}

# Requests that need the back-end, with every kind of exchange.
BACKEND_REQUESTS = ("backup page", "backup", "upload", "restore", "login")
