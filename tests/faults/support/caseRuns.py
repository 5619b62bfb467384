"""Runs the cases of a row in several processes, and keeps what is needed to repeat a violation."""

import json
import multiprocessing
import os
import random
import time
import traceback


class Result:
    """What a row came to: how many runs met their fault, what was violated, and its figures."""

    def __init__(self, runs=0, violations=None, figures=None, skipped=None):
        self.runs = runs
        self.violations = violations or []
        self.figures = figures or {}
        self.skipped = skipped


class Context:
    """What every row is given. `folder` takes the results."""

    def __init__(self, project, installation, long, seed, jobs, folder, minutes=None):
        self.project = project
        self.installation = installation
        self.long = long
        self.seed = seed
        self.jobs = jobs
        self.folder = folder
        self.minutes = minutes
        self.end = None
        self.partEnd = None

    def beginRow(self):
        self.end = None if self.minutes is None else time.monotonic() + 60 * self.minutes
        self.partEnd = self.end

    def beginPart(self, share):
        """The next part of the row gets this share of the time that is left."""
        if self.end is not None:
            now = time.monotonic()
            self.partEnd = now + max(0, self.end - now) * share

    def isOver(self):
        """Whether the time of the row, or of its part, is up."""
        return self.partEnd is not None and time.monotonic() > self.partEnd

    def sample(self, cases, shortCount):
        """All cases in the long form; in the short form about so many, in equal steps from a
        place that the seed chooses."""
        if self.long or len(cases) <= shortCount:
            return cases
        stride = -(-len(cases) // shortCount)
        return cases[self.seed % stride::stride]


class Outcome:
    """What became of one case. A fault that was not met, because the program took another way,
    does not count as a run. `tally` names what the row counts this run as."""

    def __init__(self, problems, met=True, details=None, tally=None):
        self.tally = tally
        self.problems = problems
        self.met = met
        self.details = details or {}


def runCases(context, row, cases, makeWorker, workers=None):
    """Runs each case in one of several processes; `makeWorker()` is called once in each of them
    and returns an object with run(case), an Outcome, and close()."""
    count = max(1, min(workers or context.jobs, len(cases)))
    if context.end is not None:
        # What the time suffices for is then a sample of all.
        cases = random.Random(context.seed).sample(cases, len(cases))
    queue = multiprocessing.Queue()
    # Dealt out in turns, so that slow neighbours are shared.
    processes = [multiprocessing.Process(target=work, args=(queue, cases[index::count], makeWorker,
                                                      context))
                 for index in range(count)]
    for process in processes:
        process.start()
    result = Result(figures={"cases": len(cases)})
    ended = tried = 0
    began = time.monotonic()
    while ended < count:
        message = queue.get()
        if message is None:
            ended += 1
            continue
        case, outcome = message
        tried += 1
        result.runs += 1 if outcome.met else 0
        if outcome.tally is not None:
            result.figures[outcome.tally] = result.figures.get(outcome.tally, 0) + 1
        if outcome.problems:
            result.violations.append(keep(context, row, case, outcome))
    for process in processes:
        process.join()
    result.figures["tried"] = tried
    result.figures["seconds"] = round(time.monotonic() - began)
    return result


def work(queue, cases, makeWorker, context):
    worker = None
    try:
        for case in cases:
            if context.isOver():
                break
            try:
                if worker is None:
                    worker = makeWorker()
                queue.put((case, worker.run(case)))
            except Exception:
                queue.put((case, Outcome(["the test itself failed: " + traceback.format_exc()])))
                if worker is not None:
                    worker.close()
                worker = None
    finally:
        if worker is not None:
            worker.close()
        queue.put(None)


def keep(context, row, case, outcome):
    """Writes a violation down; returns it with the name of its file."""
    folder = os.path.join(context.folder, "violations")
    os.makedirs(folder, exist_ok=True)
    number = len(os.listdir(folder))
    path = os.path.join(folder, f"{row}-{number:05}.json")
    violation = {"row": row, "case": case, "problems": outcome.problems, **outcome.details}
    with open(path, "w", encoding="utf-8") as file:
        json.dump(violation, file, indent=1, default=lambda data: data.decode("latin-1"))
    return {"file": path, "case": case, "problems": outcome.problems}
