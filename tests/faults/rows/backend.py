"""Faults of a back-end that is dead, silent or slow, or sends truncated or invalid replies."""

from faults.board import sample_file
from faults.case_runs import run_cases
from faults.fake_backend import Player, Recorder, SocketSwitch, is_backup_request
from faults.judge import Fault
from faults.program import run_program
from faults.request_types import BACKEND_REQUESTS, REQUEST_TYPES
from faults.scene import backup_file
from faults.worker import RequestWorker

HELP = "a dead, silent or slow back-end; replies cut at each byte, wrong bytes and wrong lengths"
SHORT_RUNS = 250

# Values for the length before a reply; a frame contains at most 1048576 bytes.
LENGTHS = (0, 1, 2, 3, 4, 1048575, 1048576, 1048577, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF)
LARGEST_DIFFERENCE = 5
EXTRA_BYTES = (1, 2, 4, 100, 60000)
SLOW_SECONDS = 0.002
TRICKLE_SECONDS = 2

# Each of these takes 10 s, the time limit of an exchange.
LONG_WAITS = ("silent", "trickle")
# The reply arrives whole and unchanged, possibly followed by surplus bytes.
HARMLESS = ("slow", "early", "extra")
WAITING_WORKERS = 8


class Worker(RequestWorker):
    def __init__(self, installation):
        super().__init__(installation)
        self.switch = SocketSwitch(self.board)
        self.recorded = {}

    def record(self, name):
        """Returns the real back-end's [(request, reply), ...] for a request of this type."""
        if name not in self.recorded:
            request = REQUEST_TYPES[name]().prepare(self.scene)
            recorder = Recorder(self.switch)
            self.switch.to_fake()
            recorder.start()
            run_program(self.board, request)
            recorder.end()
            self.switch.to_real()
            self.recorded[name] = recorder.exchanges
            self.judge.settle()
        return self.recorded[name]

    def run(self, case):
        exchanges = self.record(case["request"])
        kind, request, before = self.begin(case)
        run = self.run_dead(request) if case["how"] == "dead" else self.run_altered(
            case, kind, request, exchanges)
        self.forgive(case, kind, exchanges)
        problems = self.judge.judge(kind, before, run, Fault())
        problems += self.judge.settle()
        return self.outcome(problems, run)

    def run_dead(self, request):
        self.switch.to_nothing()
        try:
            return run_program(self.board, request)
        finally:
            self.switch.from_nothing()

    def run_altered(self, case, kind, request, exchanges):
        path = backup_file(self.scene.operator)

        def on_request(frame):
            if is_backup_request(frame):
                self.board.write(sample_file("played back", 5000), path)

        if kind.name == "backup":
            kind.allowed[path].append(sample_file("played back", 5000))
        player = Player(self.switch, exchanges, case["reply"],
                        (case["how"], case.get("at"), case.get("value")), on_request)
        self.switch.to_fake()
        player.start()
        try:
            return run_program(self.board, request)
        finally:
            player.end()
            self.switch.to_real()

    @staticmethod
    def forgive(case, kind, exchanges):
        """Adapts the expectations: nothing is really restored here, so that the program can only
        trust a whole answer, and a page shows an altered table as it is."""
        if case["how"] == "dead" or kind.name in ("upload", "login"):
            return
        is_set = exchanges[case["reply"]][0][4] == 2
        believable = case["how"] in HARMLESS or not is_set
        kind.happened = lambda scene, response, after: believable
        kind.tells_done = lambda response, scene, after: False

    def close(self):
        self.switch.close()
        super().close()


def make_cases(recorded):
    cases = [{"request": request, "how": "dead"} for request in BACKEND_REQUESTS]
    for request, exchanges in recorded.items():
        for number, (_, reply) in enumerate(exchanges):
            case = {"request": request, "reply": number}
            cases += [{**case, "how": "cut", "at": at} for at in range(len(reply))]
            for at, byte in enumerate(reply):
                for value in sorted({0, 0xFF, byte ^ 1, byte ^ 0x80, (byte + 1) & 0xFF} - {byte}):
                    cases.append({**case, "how": "byte", "at": at, "value": value})
            size = len(reply) - 4
            near = {max(0, size + difference)
                    for difference in range(-LARGEST_DIFFERENCE, LARGEST_DIFFERENCE + 1)}
            cases += [{**case, "how": "length", "value": length}
                      for length in sorted(near.union(LENGTHS) - {size})]
            cases += [{**case, "how": "extra", "value": extra} for extra in EXTRA_BYTES]
            cases += [{**case, "how": how} for how in ("unread", "early")]
            cases.append({**case, "how": "slow", "value": SLOW_SECONDS})
    return cases


def make_long_cases(recorded):
    cases = []
    for request, exchanges in recorded.items():
        for number in range(len(exchanges)):
            cases.append({"request": request, "reply": number, "how": "silent"})
            cases.append({"request": request, "reply": number, "how": "trickle",
                          "value": TRICKLE_SECONDS})
    return cases


def record_all(installation):
    worker = Worker(installation)
    try:
        return {name: worker.record(name) for name in BACKEND_REQUESTS}
    finally:
        worker.close()


def make_worker(installation, case):
    return Worker(installation)


def run(context):
    installation = context.installation
    recorded = record_all(installation)
    cases = context.sample(make_cases(recorded), SHORT_RUNS)
    result = run_cases(context, "backend", cases, lambda: Worker(installation))
    waiting = make_long_cases(recorded)
    waiting = waiting if context.long else waiting[:2]
    other = run_cases(context, "backend", waiting, lambda: Worker(installation),
                      workers=WAITING_WORKERS)
    result.figures["of them until the deadline"] = other.runs
    result.runs += other.runs
    result.violations += other.violations
    return result
