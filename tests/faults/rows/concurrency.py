"""Runs many sessions at once, and races within one session: no file may be mixed or lost."""

import bisect
import hashlib
import multiprocessing
import os
import random
import re
import threading
import time
from collections import Counter
from datetime import datetime

from faults import audit_log
from faults.board import Board, OPERATOR, identifier_of
from faults.case_runs import Outcome, Result, keep
from faults.configuration_file import ConfigurationFile, decode_configuration_file, decode_state
from faults.program import run_program
from faults.request_types import get, multipart, notices_of, post, post_parts
from faults.response import MalformedResponse, parse_response
from faults.scene import STATE, TARGETS, backup_file, staged_file

HELP = "many sessions at once and races within one session; files are compared by SHA-256"

# (sessions, rounds of each, races)
SHORT = (8, 5, 60)
LONG = (64, 500, 10000)

DEADLINE_SECONDS = 120  # all programs share the processors
DOWNLOAD_EVERY = 10
LOCK_NOT_OBTAINED = re.compile(r"[-\[]1101\]")
UPLOAD_SIZES = (300, 5000, 70000)
SESSIONS_OF_A_USER = 8


def digest(data):
    return hashlib.sha256(data).hexdigest()


def payload_of(session, number):
    """Returns a unique payload that repeats the session and the number throughout."""
    mark = f"session {session} upload {number} ".encode()
    return mark * (UPLOAD_SIZES[number % len(UPLOAD_SIZES)] // len(mark) + 1)


def file_of(payload):
    return ConfigurationFile(3, "1.23 B", "Sample", payload).encode()


def said_in(answer):
    """Returns the text of a page's main part, shortened."""
    return "no answer" if answer is None else " ".join(
        re.sub(r"<[^>]*>", " ", answer.text.split("<main>")[-1]).split())[:300]


class Session:
    """One operator. Records requests and answers."""

    def __init__(self, board, number, cookie):
        self.board = board
        self.number = number
        self.cookie = cookie
        self.problems = []
        self.requests = 0
        self.rounds = 0
        self.busy = 0
        self.restores = []  # confirmed ones: (begin, end, digest of the payload)
        self.backups = []  # (begin, end, digest of the payload)
        self.noted = []  # expected in the audit log: (time, event, session, digest of the file)

    def note(self, event, data=None):
        self.noted.append((time.time(), event, identifier_of(self.cookie),
                          None if data is None else digest(data)))

    def ask(self, request):
        """Returns the answer, or None if it is not valid."""
        run = run_program(self.board, request, deadline=DEADLINE_SECONDS)
        self.requests += 1
        try:
            if run.timed_out or run.signal is not None:
                raise MalformedResponse(f"signal {run.signal}, timed out: {run.timed_out}")
            return parse_response(run.output)
        except MalformedResponse as reason:
            self.problems.append(f"session {self.number}: {reason}")
            return None

    def expect(self, true, problem):
        if not true:
            self.problems.append(f"session {self.number}: {problem}")

    def round(self, number):
        payload = payload_of(self.number, number)
        if self.upload(file_of(payload)):
            self.restore(payload)
        self.backup(number)
        self.discard()

    def is_busy(self, answer):
        """Returns true if the page reports a timeout of the lock that all sessions share, which can
        happen on a busy machine."""
        busy = answer is not None and LOCK_NOT_OBTAINED.search(answer.text) is not None
        self.busy += busy
        return busy

    def upload(self, data):
        """Returns true if the file was staged, false if the lock timed out."""
        before = self.board.read(staged_file(self.cookie))
        answer = self.ask(post_parts(self.cookie, multipart(
            {"functionID": 106, "hidden_status": 1}, "conf.dat", data)))
        if self.is_busy(answer):
            self.expect(self.board.read(staged_file(self.cookie)) == before,
                        "a refused upload has changed the staged file")
            return False
        self.expect(answer and 'class="facts"' in answer.text,
                    f"an upload failed: {said_in(answer)}")
        staged = self.board.read(staged_file(self.cookie))
        self.expect(staged is not None and digest(staged) == digest(data),
                    "the staged file is not the one that was uploaded")
        self.note("upload", data)
        return True

    def restore(self, payload):
        begin = time.monotonic()
        fields = {"functionID": 106, "hidden_status": 2, **{f"pid{n}": n for n in TARGETS}}
        answer = self.ask(post_parts(self.cookie, multipart(fields)))
        notice = notices_of(answer) if answer else ""
        confirmed = "configuration was restored." in notice
        # [250-1047]: the restore of another session is running.
        self.expect(confirmed or "[250-1047]" in notice, f"a restore failed: {notice}")
        if confirmed:
            self.restores.append((begin, time.monotonic(), digest(payload)))
            self.note("restore", file_of(payload))

    def backup(self, number):
        begin = time.monotonic()
        body = f"functionID=105&hidden_status=BACKUP&radio_button={TARGETS[number % 2]}".encode()
        answer = self.ask(post(self.cookie, body))
        if not (answer and 'id="download_link"' in answer.text):
            self.expect(False, f"a backup failed: {said_in(answer)}")
            return
        saved = self.board.read(backup_file(self.cookie)) or b""
        file = decode_configuration_file(saved)
        self.expect(file and file.partition == TARGETS[number % 2], "a backup is incomplete")
        if file:
            self.backups.append((begin, time.monotonic(), digest(file.payload)))
            self.note("backup", saved)
        if number % DOWNLOAD_EVERY == 0:
            name = answer.text.split('id="download_link" href="')[1].split('"')[0].split("=")[-1]
            download = self.ask(get(self.cookie, f"functionID=5&filename={name}",
                                    "common/download.cgi"))
            self.expect(download and digest(download.body) == digest(saved),
                        "a download is not the backup")
            self.note("download", saved)

    def discard(self):
        before = self.board.read(staged_file(self.cookie))
        answer = self.ask(post(self.cookie, b"functionID=106&hidden_status=3"))
        if self.is_busy(answer):
            return
        self.expect(self.board.read(staged_file(self.cookie)) is None, "a discarded file remains")
        if before is not None:
            self.note("discard")


def find_lost(restores, backups, initial):
    """Reports backups with a configuration that no restore wrote, or that another restore had
    certainly replaced."""
    problems = []
    made = {restore[2]: restore for restore in restores}
    by_end = sorted(restores, key=lambda restore: restore[1])
    ends = [restore[1] for restore in by_end]
    latest_begin = []
    for restore in by_end:
        latest_begin.append(max(restore[0], latest_begin[-1] if latest_begin else 0))
    for begin, end, payload in backups:
        known = made.get(payload)
        if known is None and payload not in initial:
            problems.append("a backup contains a configuration that no confirmed restore wrote")
            continue
        before = bisect.bisect_left(ends, begin)
        replaced = before > 0 and (known[1] if known else 0) < latest_begin[before - 1]
        if replaced or (known and known[0] > end):
            problems.append("a backup contains a configuration of another time")
    return problems


def run_sessions(context, root, programs, numbers, cookies, rounds, queue):
    """Runs the sessions of one process, each in a thread."""
    board = RunningBoard(root, programs)
    sessions = [Session(board, number, cookie) for number, cookie in zip(numbers, cookies)]

    def work(session):
        for number in range(rounds):
            if context.is_over():
                break
            session.round(number)
            session.rounds += 1

    threads = [threading.Thread(target=work, args=(session,)) for session in sessions]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    for session in sessions:
        queue.put((session.requests, session.rounds, session.restores, session.backups,
                   session.noted, session.problems))


class RunningBoard:
    """A board that another process started and stops."""

    def __init__(self, root, programs):
        self.root = root
        self.programs = programs

    path = Board.path
    read = Board.read


def run_many_sessions(context, board, count, rounds):
    initial = {digest(decode_state(board.read(STATE))[target]) for target in TARGETS}
    cookies = [board.log_in(user_of(number), OPERATOR) for number in range(count)]
    queue = multiprocessing.Queue()
    processes = []
    for index in range(context.jobs):
        numbers = list(range(count))[index::context.jobs]
        processes.append(multiprocessing.Process(target=run_sessions, args=(
            context, board.root, board.programs, numbers, [cookies[n] for n in numbers], rounds,
            queue)))
    for process in processes:
        process.start()
    requests, all_rounds, restores, backups, noted, problems = 0, [], [], [], [], []
    for _ in range(count):
        asked, done, restored, saved, logged, wrong = queue.get()
        requests += asked
        all_rounds.append(done)
        restores += restored
        backups += saved
        noted += logged
        problems += wrong
    for process in processes:
        process.join()
    board.wait_until_quiet()
    state = decode_state(board.read(STATE))
    now = time.monotonic()
    backups += [(now, now, digest(state[target])) for target in TARGETS]
    if state[TARGETS[0]] != state[TARGETS[1]]:
        problems.append("the targets of a restore have different configurations")
    problems += find_lost(restores, backups, initial)
    problems += leftovers(board) + find_unrecorded(board, noted, state)
    return requests, min(all_rounds), len(restores), problems


def find_unrecorded(board, noted, state):
    """Reports confirmed actions missing from the audit log, unless they may have rotated out."""
    lines, damaged, rest = audit_log.parse_lines(audit_log.read_log(board))
    problems = audit_log.unexplained(lines, state)
    if damaged or rest:
        problems.append(f"the audit log contains malformed lines: {[*damaged, rest]!r:.300}")
    recorded = Counter((line["event"], line["session"], line.get("file", {}).get("sha256"))
                       for line in lines if line.get("result") == "done")
    first = datetime.fromisoformat(lines[0]["time"].replace("Z", "+00:00")).timestamp()
    # A line is written before its answer is sent; an answer takes at most DEADLINE_SECONDS.
    since = first + DEADLINE_SECONDS if is_rotated(board) else 0
    expected = Counter(tuple(what) for when, *what in noted if when > since)
    missing = expected - recorded
    problems += [f"the audit log lacks {what}" for what in list(missing)[:20]]
    return problems


def is_rotated(board):
    """Returns true if a rotation may have removed lines."""
    return os.path.exists(board.path(audit_log.former_files()[-1]))


def user_of(number):
    return f"operator{number // SESSIONS_OF_A_USER}"


def describe_users(installation, count):
    """Writes a board description with a user for every SESSIONS_OF_A_USER sessions, all with the
    operator's password; returns its path."""
    with open(installation.description, encoding="utf-8") as file:
        text = file.read()
    found = re.search(r'\[\[user\]\]\nname = "%s"\n(password_hash = .*\n)' % OPERATOR, text)
    for number in range(0, count, SESSIONS_OF_A_USER):
        text += (f'\n[[user]]\nname = "{user_of(number)}"\n{found[1]}functions = [105, 106]\n')
    path = os.path.join(installation.folder, "many.toml")
    with open(path, "w", encoding="utf-8", opener=lambda p, f: os.open(p, f, 0o600)) as file:
        file.write(text)
    return path


def leftovers(board):
    return [f"{path} is left behind" for path in board.files("var/tmp", "var/lib/board")
            if "upload_" in path or ".aside-" in path]


def race(board, session, one, other):
    """Makes two requests of one session at the same time; then every file must be one of theirs or
    unchanged."""
    before = {path: board.read(path) for path in (staged_file(session.cookie),
                                                  backup_file(session.cookie))}
    staged = {None, before[staged_file(session.cookie)]}
    state = decode_state(board.read(STATE))
    payloads = {digest(state[target]) for target in TARGETS}
    answers = {}

    def work(name, step):
        answers[name] = session.ask(step(session.cookie))

    threads = []
    for name, (step, data) in (("one", one), ("other", other)):
        if data is not None:
            staged.add(data)
        threads.append(threading.Thread(target=work, args=(name, step)))
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    board.wait_until_quiet()
    now = board.read(staged_file(session.cookie))
    session.expect(now in staged, "a race has left a mixed staged file")
    state = decode_state(board.read(STATE))
    session.expect(state is not None, "a race has left a damaged state")
    payloads |= {digest(state[target]) for target in TARGETS}
    saved = board.read(backup_file(session.cookie))
    if saved and saved != before[backup_file(session.cookie)]:
        file = decode_configuration_file(saved)
        session.expect(file is not None and digest(file.payload) in payloads,
                       "a race has left a mixed backup")


def steps(number):
    """Returns the steps that may race: (function from cookie to request, file that it stages)."""

    def upload(data):
        return (lambda cookie: post_parts(cookie, multipart(
            {"functionID": 106, "hidden_status": 1}, "conf.dat", data)), data)

    def backup(partition):
        body = f"functionID=105&hidden_status=BACKUP&radio_button={partition}".encode()
        return (lambda cookie: post(cookie, body), None)

    restore = (lambda cookie: post_parts(cookie, multipart(
        {"functionID": 106, "hidden_status": 2, **{f"pid{n}": n for n in TARGETS}})), None)
    discard = (lambda cookie: post(cookie, b"functionID=106&hidden_status=3"), None)
    return [upload(file_of(payload_of("one", number))), upload(file_of(payload_of("other", number))),
            backup(TARGETS[0]), backup(TARGETS[1]), restore, restore, discard]


def run_races(context, board, count):
    session = Session(board, "of the races", board.log_in(OPERATOR))
    choice = random.Random(context.seed)
    for number in range(count):
        if context.is_over():
            count = number
            break
        one, other = choice.sample(steps(number), 2)
        race(board, session, one, other)
    return session.requests, count, session.problems + leftovers(board)


def run(context):
    count, rounds, races = LONG if context.long else SHORT
    board = Board(context.installation)
    board.description = describe_users(context.installation, count)
    board.start()
    try:
        context.begin_part(0.2)
        raced, races, more = run_races(context, board, races)
        context.begin_part(1)
        requests, rounds, restored, problems = run_many_sessions(context, board, count, rounds)
    finally:
        board.remove()
    result = Result(requests + raced, figures={"sessions": count, "rounds each": rounds,
                                               "confirmed restores": restored, "races": races})
    for problem in problems + more:
        result.violations.append(keep(context, "concurrency", None, Outcome([problem])))
    return result
