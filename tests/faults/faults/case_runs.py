"""Runs the cases of a row in several processes, and records violations for repetition."""

import json
import multiprocessing
import os
import random
import time
import traceback


class Result:
    """The result of a row: the number of runs that met their fault, the violations, and figures."""

    def __init__(self, runs=0, violations=None, figures=None, skipped=None):
        self.runs = runs
        self.violations = violations or []
        self.figures = figures or {}
        self.skipped = skipped


class Context:
    """The settings of a run, passed to every row. Results go into `folder`."""

    def __init__(self, project, installation, long, seed, jobs, folder, minutes=None):
        self.project = project
        self.installation = installation
        self.long = long
        self.seed = seed
        self.jobs = jobs
        self.folder = folder
        self.minutes = minutes
        self.end = None
        self.part_end = None

    def begin_row(self):
        self.end = None if self.minutes is None else time.monotonic() + 60 * self.minutes
        self.part_end = self.end

    def begin_part(self, share):
        """Begins a part of the row, with this share of the remaining time."""
        if self.end is not None:
            now = time.monotonic()
            self.part_end = now + max(0, self.end - now) * share

    def is_over(self):
        """Returns true if the time of the row or of its part is over."""
        return self.part_end is not None and time.monotonic() > self.part_end

    def sample(self, cases, short_count):
        """Returns all cases in the long form. In the short form, returns every n-th case, at most
        `short_count`; the seed chooses the first."""
        if self.long or len(cases) <= short_count:
            return cases
        stride = -(-len(cases) // short_count)
        return cases[self.seed % stride::stride]


class Outcome:
    """The result of a case. If the fault was not met, because the program took another path, the
    case does not count as a run. `tally` is the name of the figure that counts this run."""

    def __init__(self, problems, met=True, details=None, tally=None):
        self.tally = tally
        self.problems = problems
        self.met = met
        self.details = details or {}


def run_cases(context, row, cases, make_worker, workers=None):
    """Runs each case in one of several processes and returns the Result. Each process calls
    `make_worker()`, which returns an object with run(case), returning an Outcome, and close()."""
    count = max(1, min(workers or context.jobs, len(cases)))
    if context.end is not None:
        # The cases run until the time is over are then a random sample.
        cases = random.Random(context.seed).sample(cases, len(cases))
    queue = multiprocessing.Queue()
    # Neighbouring cases, which may all be slow, go to different processes.
    processes = [multiprocessing.Process(target=work, args=(queue, cases[index::count], make_worker,
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


def work(queue, cases, make_worker, context):
    worker = None
    try:
        for case in cases:
            if context.is_over():
                break
            try:
                if worker is None:
                    worker = make_worker()
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
    """Writes a violation to a file; returns it with the file's path."""
    folder = os.path.join(context.folder, "violations")
    os.makedirs(folder, exist_ok=True)
    number = len(os.listdir(folder))
    path = os.path.join(folder, f"{row}-{number:05}.json")
    violation = {"row": row, "case": case, "problems": outcome.problems, **outcome.details}
    with open(path, "w", encoding="utf-8") as file:
        json.dump(violation, file, indent=1, default=lambda data: data.decode("latin-1"))
    return {"file": path, "case": case, "problems": outcome.problems}
