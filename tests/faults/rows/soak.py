"""Makes many requests in a row; nothing may grow."""

import html
import multiprocessing
import os
import re
import threading
import time

from faults.board import sample_file
from faults.case_runs import Outcome, Result, keep
from faults.idle_threads import serves_nobody
from faults.request_types import BOUNDARY, multipart
from faults.web_board import Browser, WebBoard

HELP = "200,000 requests in a row: no growth of files, memory, descriptors, zombies, logs"

SHORT_REQUESTS = 1500
LONG_REQUESTS = 200000

SCREEN = "/maintenance/efi_backup_restore.cgi"
PARTS = f"multipart/form-data; boundary={BOUNDARY}"

# Allowed growth of memory in KiB, measured in the second half only: the memory of a process is stable
# only after thousands of requests. In the short form, 8 MiB in 750 requests are 11 KiB each.
SHORT_MEMORY_GROWTH = 8192
LONG_MEMORY_GROWTH = 1024
# The web server keeps about 20 bytes for each program that it has started.
KEPT_BYTES = 32
LARGEST_LOG = 1024 * 1024
LOGS = re.compile(r"^((trace|web)\.log(\.1)?|audit\.log(\.\d+)?)$")
FORMER_LOG = re.compile(r"\.log\.\d+$")
MOST_AUDIT_FILES = 16
SLACK = 8192


class Client:
    """One user. Checks the status of every answer."""

    def __init__(self, board):
        self.browser = Browser(board)
        self.browser.log_in("admin")
        self.small = multipart({"functionID": 106, "hidden_status": 1}, "conf.dat",
                               sample_file("soak", 5000))
        self.broken = multipart({"functionID": 106, "hidden_status": 1}, "conf.dat", b"no file")
        self.restore = multipart({"functionID": 106, "hidden_status": 2, "pid3": 3})
        self.download = ""
        self.problems = []

    def expect(self, wanted, answer):
        if answer[0] != wanted and len(self.problems) < 20:
            self.problems.append(f"status {answer[0]} and not {wanted}: {answer[2][:200]!r}")
        return answer

    def backup(self):
        body = self.expect(200, self.browser.ask(
            "POST", SCREEN, b"functionID=105&hidden_status=BACKUP&radio_button=3"))[2]
        match = re.search(rb'id="download_link" href="([^"]*)"', body)
        self.download = html.unescape(match[1].decode()) if match else ""

    def log_in_anew(self):
        self.expect(303, self.browser.ask("POST", "/logout.cgi", b""))
        self.browser.log_in("admin")

    def step(self, number):
        ask, expect = self.browser.ask, self.expect
        turn = number % 20
        if turn == 0:
            self.backup()
        elif turn == 1 and self.download:
            expect(200, ask("GET", self.download))
        elif turn in (2, 3):
            expect(200, ask("POST", SCREEN, self.small, PARTS))
        elif turn == 4:
            # The page may say that another client's restore is running.
            answer = ask("POST", SCREEN, self.restore, PARTS)
            if answer[0] != 200:
                expect(200, answer)
        elif turn == 5:
            expect(200, ask("POST", SCREEN, b"functionID=106&hidden_status=3"))
        elif turn == 6:
            expect(200, ask("POST", SCREEN, self.broken, PARTS))
        elif turn == 7:
            expect(400, ask("GET", SCREEN + "?functionID=999"))
        elif turn == 8:
            expect(404, ask("GET", f"/nothing{number}"))
        elif turn == 9:
            expect(405, ask("PUT", SCREEN, b"x"))
        elif turn == 10 and number % 200 == 10:
            self.log_in_anew()
        elif turn < 14:
            expect(200, ask("GET", SCREEN + "?functionID=105"))
        elif turn < 17:
            expect(200, ask("GET", SCREEN + "?functionID=106"))
        else:
            expect(200, ask("GET", "/"))


def run_client(context, board, count, done, queue):
    client = Client(board)
    try:
        for number in range(count):
            if context.is_over():
                break
            client.step(number)
            done.value += 1
        client.expect(303, client.browser.ask("POST", "/logout.cgi", b""))
    except Exception as failure:
        client.problems.append(f"{type(failure).__name__}: {failure}")
    client.browser.close()
    queue.put(client.problems)


def status(pid, field):
    with open(f"/proc/{pid}/status", encoding="ascii", errors="replace") as lines:
        for line in lines:
            if line.startswith(field + ":"):
                return int(line.split()[1])
    return 0


def zombies(parents):
    count = 0
    for name in os.listdir("/proc"):
        if name.isdigit():
            try:
                with open(f"/proc/{name}/stat", encoding="ascii", errors="replace") as text:
                    state, parent = text.read().rpartition(")")[2].split()[:2]
            except OSError:
                continue
            count += state == "Z" and int(parent) in parents
    return count


def measure(board):
    """Returns the values that could grow."""
    figures = {}
    for name, pid in (("back-end", board.backend), ("web server", board.web_server)):
        figures[f"{name} memory"] = status(pid, "VmRSS")
        figures[f"{name} descriptors"] = len(os.listdir(f"/proc/{pid}/fd"))
        figures[f"{name} threads"] = status(pid, "Threads")
    figures["zombies"] = zombies({board.backend, board.web_server, board.process.pid})
    # Without rotated logs, which appear at some point; their size is limited.
    figures["files"] = sum(FORMER_LOG.search(name) is None
                           for _, _, names in os.walk(board.path("var")) for name in names)
    figures["audit files"] = sum(name.startswith("audit.log")
                                 for name in os.listdir(board.path("var/log")))
    figures["logs"] = max(os.path.getsize(board.path("var/log", name))
                          for name in os.listdir(board.path("var/log")) if LOGS.match(name))
    return figures


def compare(early, late, memory_growth, requests):
    """Reports values that grew more than allowed in this number of requests."""
    problems = []
    for name, value in late.items():
        if name == "logs":
            limit = LARGEST_LOG + SLACK
        elif name == "audit files":
            limit = MOST_AUDIT_FILES
        elif name == "zombies":
            limit = 0
        else:
            limit = early[name] + (memory_growth if name.endswith("memory") else 0)
            limit += KEPT_BYTES * requests // 1024 if name == "web server memory" else 0
        if value > limit:
            problems.append(f"{name} grew from {early[name]} to {value}")
    return problems


def at_rest(board, seconds=20):
    """Waits until all programs and connections have ended, then measures."""
    end = time.monotonic() + seconds
    while not serves_nobody(board.backend) and time.monotonic() < end:
        time.sleep(0.05)
    time.sleep(0.2)
    return measure(board)


def run_half(context, board, count, samples):
    """Makes `count` requests by several clients and waits until they have ended."""
    jobs = context.jobs
    queue = multiprocessing.Queue()
    done = [multiprocessing.Value("L", 0) for _ in range(jobs)]
    clients = [multiprocessing.Process(target=run_client,
                                       args=(context, board, count // jobs, value, queue))
               for value in done]
    for client in clients:
        client.start()
    ended = threading.Event()

    def watch():
        while not ended.wait(max(0.5, count / 20000)):
            samples.append((sum(value.value for value in done), measure(board)))

    watcher = threading.Thread(target=watch)
    watcher.start()
    problems = [problem for _ in clients for problem in queue.get()]
    for client in clients:
        client.join()
    ended.set()
    watcher.join()
    return sum(value.value for value in done), problems


def run(context):
    count = LONG_REQUESTS if context.long else SHORT_REQUESTS
    growth = LONG_MEMORY_GROWTH if context.long else SHORT_MEMORY_GROWTH
    board = WebBoard(context.project, os.path.basename(context.installation.build))
    samples = []
    try:
        context.begin_part(0.5)
        before, problems = run_half(context, board, count // 2, samples)
        early = at_rest(board)
        context.begin_part(1)
        after, more = run_half(context, board, count - count // 2, samples)
        late = at_rest(board)
    finally:
        board.remove()
    problems += more + compare(early, late, growth, after)
    worst = max(sample["zombies"] for _, sample in samples) if samples else 0
    result = Result(before + after, figures={
        **{name: f"{early[name]} -> {value}" for name, value in late.items()},
        "most zombies at once": worst})
    for problem in problems:
        result.violations.append(keep(context, "soak", None, Outcome([problem])))
    return result
