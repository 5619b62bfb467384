"""All kinds of requests to the board's programs, and their permitted changes."""

import itertools
import re

from support import auditLog
from support.board import identifierOf, sampleFile
from support.configurationFile import LARGEST_FILE, decodeConfigurationFile, decodeState
from support.scene import STATE, TARGETS, backupFile, sessionFile, stagedFile

SCREEN = "maintenance/efi_backup_restore.cgi"
INSTALLED_PARTITIONS = 5
BOUNDARY = "----faults"

# Contents that a request may leave in a file, besides the old content.
ABSENT = None
EMPTY = b""

NOTICE = re.compile(r'role="alert"[^>]*>(.*?)</div>', re.S)


def multipart(fields, fileName=None, data=b""):
    """Returns the body of a multipart form."""
    parts = [f'--{BOUNDARY}\r\nContent-Disposition: form-data; name="{name}"\r\n\r\n{value}\r\n'
             .encode() for name, value in fields.items()]
    if fileName is not None:
        parts.append((f'--{BOUNDARY}\r\nContent-Disposition: form-data; name="filename"; '
                      f'filename="{fileName}"\r\nContent-Type: application/octet-stream\r\n\r\n')
                     .encode() + data + b"\r\n")
    return b"".join(parts) + f"--{BOUNDARY}--\r\n".encode()


def noticesOf(response):
    """Returns the text of the page's notices about the request."""
    return " ".join(NOTICE.findall(response.text))


def post(cookie, body, kind="application/x-www-form-urlencoded", program=SCREEN):
    return {"program": program, "method": "POST", "cookie": cookie, "body": body, "type": kind}


def postParts(cookie, body):
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
        scene.stageLog(self.makeLog(scene), self.counts)
        return request

    def make(self, scene):
        raise NotImplementedError

    def claimsSuccess(self, response, scene):
        """Returns true if the page reports success."""
        return response.status == 200 and not noticesOf(response)

    def happened(self, scene, response, after):
        """Returns true if the request was carried out; `after` contains the files afterwards."""
        return True

    def makeLog(self, scene):
        """Returns the audit log before the request."""
        return scene.logLine()

    def tellsDone(self, response, scene, after):
        """Returns true if the answer reports an action that the audit log must contain."""
        return bool(self.events) and self.claimsSuccess(response, scene)

    def expectedLine(self, scene, response):
        """Returns fields of the line that the audit log must then contain."""
        return {"event": self.name, "user": "admin", "session": identifierOf(scene.operator),
                "result": "done"}


def fileSum(data):
    return {"sha256": auditLog.sumOf(data)}


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
        path = backupFile(scene.operator)
        self.files[path] = sampleFile("an earlier backup", 5000)
        payload = decodeState(scene.board.read(STATE))[3]

        def isNew(data):
            file = decodeConfigurationFile(data)
            return file is not None and file.partition == 3 and file.payload == payload

        # The program empties the file before it requests the backup; the download refuses an empty
        # file. A backup without a line in the audit log is removed.
        self.allowed[path] = [EMPTY, ABSENT, isNew]
        return post(scene.operator, b"functionID=105&hidden_status=BACKUP&radio_button=3")

    def claimsSuccess(self, response, scene):
        return 'id="download_link"' in response.text

    def happened(self, scene, response, after):
        path = backupFile(scene.operator)
        return after.get(path) not in (None, EMPTY, self.files[path])

    def expectedLine(self, scene, response):
        saved = scene.board.read(backupFile(scene.operator)) or b""
        return {**super().expectedLine(scene, response), "partitions": [3], "file": fileSum(saved)}


class Upload(RequestType):
    name = "upload"
    writes = True
    events = ("upload",)

    def make(self, scene):
        path = stagedFile(scene.operator)
        self.files[path] = sampleFile("an earlier file", 5000)
        self.data = sampleFile("a new file", 350000)
        # A file that cannot be read back is removed, and the page says so.
        self.allowed[path] = [self.data, ABSENT]
        body = multipart({"functionID": 106, "hidden_status": 1}, "conf.dat", self.data)
        return postParts(scene.operator, body)

    def claimsSuccess(self, response, scene):
        return 'class="facts"' in response.text

    def happened(self, scene, response, after):
        return after.get(stagedFile(scene.operator)) == self.data and "Sample" in response.text

    def expectedLine(self, scene, response):
        return {**super().expectedLine(scene, response), "file": fileSum(self.data)}


class UnusableUpload(Upload):
    """An upload of a file that is not a configuration file: it is removed."""

    name = "unusable upload"

    def make(self, scene):
        path = stagedFile(scene.operator)
        self.files[path] = sampleFile("an earlier file", 5000)
        self.data = b"no configuration file " * 1000
        self.allowed[path] = [ABSENT, self.data]
        body = multipart({"functionID": 106, "hidden_status": 1}, "conf.dat", self.data)
        return postParts(scene.operator, body)

    def happened(self, scene, response, after):
        return False


class RefusedUpload(RequestType):
    """An upload that must leave the staged file unchanged."""

    writes = True
    events = ("upload",)

    def make(self, scene):
        self.files[stagedFile(scene.operator)] = sampleFile("an earlier file", 5000)
        return self.makeUpload(scene)

    def makeUpload(self, scene):
        raise NotImplementedError

    def claimsSuccess(self, response, scene):
        return 'class="facts"' in response.text

    def happened(self, scene, response, after):
        return False


class LargeUpload(RefusedUpload):
    name = "too large upload"

    def makeUpload(self, scene):
        data = sampleFile("large", LARGEST_FILE + 1)
        return postParts(scene.operator, multipart({"functionID": 106, "hidden_status": 1},
                                                   "conf.dat", data))


class BrokenUpload(RefusedUpload):
    name = "broken upload"

    def makeUpload(self, scene):
        body = multipart({"functionID": 106, "hidden_status": 1}, "conf.dat",
                         sampleFile("broken", 200000))
        return {**postParts(scene.operator, body[:100000]), "announced": len(body)}


class Restore(RequestType):
    name = "restore"
    writes = True
    events = ("restore",)

    def make(self, scene):
        self.payload = scene.nextPayload()
        self.files[stagedFile(scene.operator)] = sampleFile(scene.letter)
        self.newState = scene.expectedState(self.payload)
        self.allowed[STATE] = [self.newState]
        fields = {"functionID": 106, "hidden_status": 2}
        fields.update({f"pid{target}": target for target in TARGETS})
        return postParts(scene.operator, multipart(fields, "", b""))

    def claimsSuccess(self, response, scene):
        notice = noticesOf(response)
        return "configuration was restored." in notice or "Text 70 " in notice

    def happened(self, scene, response, after):
        return after.get(STATE) == self.newState

    def expectedLine(self, scene, response):
        return {**super().expectedLine(scene, response), "partitions": list(TARGETS),
                "file": fileSum(self.files[stagedFile(scene.operator)])}


class RefusedRestore(RequestType):
    """A restore to two partitions, one of them running: neither is changed."""

    name = "refused restore"
    events = ("restore",)

    def make(self, scene):
        self.files[stagedFile(scene.operator)] = sampleFile("refused")
        fields = {"functionID": 106, "hidden_status": 2, "pid3": 3, "pid7": 7}
        return postParts(scene.operator, multipart(fields))

    def claimsSuccess(self, response, scene):
        return Restore.claimsSuccess(self, response, scene)

    def happened(self, scene, response, after):
        return False


class Discard(RequestType):
    name = "discard"
    events = ("discard",)

    def make(self, scene):
        path = stagedFile(scene.operator)
        self.files[path] = sampleFile("to be discarded")
        self.allowed[path] = [ABSENT]
        return post(scene.operator, b"functionID=106&hidden_status=3")

    # The next page does not report the discard; it only shows no file.
    def claimsSuccess(self, response, scene):
        return False

    def tellsDone(self, response, scene, after):
        return (response.status == 200 and not noticesOf(response)
                and stagedFile(scene.operator) not in after)

    def expectedLine(self, scene, response):
        return {**super().expectedLine(scene, response), "event": "discard"}


class RotatingDiscard(Discard):
    """A discard that causes a rotation of the log."""

    name = "rotating discard"

    def makeLog(self, scene):
        return auditLog.fillUp(super().makeLog(scene))


class NoSession(RequestType):
    name = "no session"

    def make(self, scene):
        self.files[stagedFile(scene.operator)] = sampleFile("staged")
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
        for path in (stagedFile(scene.viewer), backupFile(scene.viewer)):
            self.allowed[path] = [ABSENT]
        return post(scene.viewer, b"functionID=106&hidden_status=2&pid2=2&pid3=3")

    def claimsSuccess(self, response, scene):
        return Restore.claimsSuccess(self, response, scene) or super().claimsSuccess(response, scene)

    def tellsDone(self, response, scene, after):
        return False

    def happened(self, scene, response, after):
        return False


class Menu(RequestType):
    name = "menu"

    def make(self, scene):
        return get(scene.operator, program="index.cgi")

    def claimsSuccess(self, response, scene):
        return response.status == 200

    def happened(self, scene, response, after):
        return "<strong>admin</strong>" in response.text


class Download(RequestType):
    name = "download"
    events = ("download",)

    def make(self, scene):
        self.data = sampleFile("downloaded")
        self.files[backupFile(scene.operator)] = self.data
        query = "functionID=5&filename=Partition3_20231114_123B.dat"
        return get(scene.operator, query, "common/download.cgi")

    def claimsSuccess(self, response, scene):
        return (response.status == 200 or "content-disposition" in response.headers
                or response.headers["content-type"] == "application/octet-stream")

    def happened(self, scene, response, after):
        return response.status == 200 and response.body == self.data

    def expectedLine(self, scene, response):
        return {**super().expectedLine(scene, response), "file": fileSum(self.data)}


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
        expired = scene.sessions[sessionFile(scene.operator)]
        expired = re.sub(rb"created=\d+", b"created=1", expired)
        for path, data in ((f"var/lib/session/{identifier}", expired),
                           (f"var/tmp/restored_eficonf{identifier}", b"staged"),
                           (f"var/tmp/efi_backup{identifier}", b"backup")):
            self.files[path] = data
            self.allowed[path] = [ABSENT]
        return post(None, b"user=admin&password=admin", program="login.cgi")

    def claimsSuccess(self, response, scene):
        return response.status < 400

    def happened(self, scene, response, after):
        match = self.cookieIn(response)
        return (match is not None and response.status == 303
                and b"token_sha256=" + auditLog.sumOf(match[3].encode()).encode() + b"\n"
                in after.get(f"var/lib/session/{match[2]}", b""))

    @staticmethod
    def cookieIn(response):
        return re.match(r"session=(([0-9a-f]{16})-([0-9a-f]{32}));",
                        response.headers.get("set-cookie", ""))

    def expectedLine(self, scene, response):
        match = self.cookieIn(response)
        return {"event": "login", "user": "admin", "session": match and match[2]}


class WrongPassword(RequestType):
    name = "wrong password"
    events = ("login_failed", "anonymous")
    counts = auditLog.OLD_COUNTS
    count = itertools.count()

    def make(self, scene):
        # A new name and address each time, because repeated guesses would have to wait.
        number = next(self.count)
        address = f"10.{number >> 16 & 255}.{number >> 8 & 255}.{number & 255}"
        return {**post(None, b"user=guess%06d&password=guess" % number, program="login.cgi"),
                "address": address}

    def claimsSuccess(self, response, scene):
        return response.status < 400 or "set-cookie" in response.headers

    def tellsDone(self, response, scene, after):
        return False

    def happened(self, scene, response, after):
        return False


class Language(RequestType):
    name = "language"

    def make(self, scene):
        return post(None, b"language=ja", program="index.cgi")

    def claimsSuccess(self, response, scene):
        return response.status < 400

    def happened(self, scene, response, after):
        return "language=ja" in response.headers.get("set-cookie", "")


class Logout(RequestType):
    name = "logout"
    events = ("logout",)

    def make(self, scene):
        # A separate session, so that the operator's remains for the next request.
        cookie = "fedcba9876543210-" + scene.operator.split("-")[1]
        self.session = sessionFile(cookie)
        self.files[self.session] = scene.sessions[sessionFile(scene.operator)]
        self.files[stagedFile(cookie)] = sampleFile("staged", 5000)
        self.files[backupFile(cookie)] = sampleFile("backup", 5000)
        for path in self.files:
            self.allowed[path] = [ABSENT]
        return post(cookie, b"", program="logout.cgi")

    def claimsSuccess(self, response, scene):
        return response.status < 400

    def happened(self, scene, response, after):
        return self.session not in after

    def makeLog(self, scene):
        """Returns a log that ends with half a line, as after a power cut."""
        return super().makeLog(scene) + b'{"time":"2026-01-31T23:59'

    def expectedLine(self, scene, response):
        return {"event": "logout", "user": "admin", "session": "fedcba9876543210"}


REQUEST_TYPES = {kind.name: kind for kind in (
    BackupPage, RestorePage, Backup, Upload, UnusableUpload, LargeUpload, BrokenUpload, Restore,
    RefusedRestore, Discard, RotatingDiscard, NoSession, NoAuthority, Menu, Language, Download, LoginPage, Login,
    WrongPassword, Logout)}

# Requests that need the back-end, with every kind of exchange.
BACKEND_REQUESTS = ("backup page", "backup", "upload", "restore", "login")
