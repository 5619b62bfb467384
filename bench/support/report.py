"""The report of a run: a text table, JSON, and plots for the documents."""

import json
import subprocess


def table(heading, columns, rows):
    cells = [columns] + [[str(cell) for cell in row] for row in rows]
    widths = [max(len(row[i]) for row in cells) for i in range(len(columns))]
    lines = [heading, ""]
    for row in cells:
        first, rest = row[0], row[1:]
        lines.append(
            "  ".join([first.ljust(widths[0])] + [c.rjust(w) for c, w in zip(rest, widths[1:])])
        )
    return "\n".join(lines) + "\n\n"


def text_of(results):
    text = table(
        "Start to end (medians)",
        ["program", "us", "CPU us", "peak KiB", "system calls", "instructions", "stripped KiB"],
        [
            [
                name,
                "%.0f" % each["microseconds"],
                "%.0f" % each["processor"],
                each["peakKilobytes"],
                each["systemCalls"],
                each.get("instructions", "-"),
                "%.0f" % (each["size"] / 1024) if "size" in each else "-",
            ]
            for name, each in results["processes"].items()
        ],
    )
    for clients in results["clients"]:
        text += table(
            "Behind the web server, clients at once: %d" % clients,
            ["program", "requests/s", "50 % ms", "99 % ms"],
            [
                [name, "%.0f" % load["requests"], "%.2f" % load["half"], "%.2f" % load["most"]]
                for name, loads in results["web"].items()
                for load in [loads[clients]]
            ],
        )
    for heading, key in [("partitions", "rows"), ("sessions", "sessions")]:
        text += table(
            "Backup page against the number of " + heading,
            [heading, "us", "CPU us"],
            [
                [count, "%.0f" % each["microseconds"], "%.0f" % each["processor"]]
                for count, each in results[key].items()
            ],
        )
    return text + table(
        "Ratios",
        ["what", "measured", "wanted", "reached"],
        [
            [each["what"], "%.2f" % each["measured"], each["wanted"], each["reached"]]
            for each in results["ratios"]
        ],
    )


def comparison(former, results):
    """Returns a table that compares the costs of each program with those of an earlier run."""

    def change(before, now):
        return "%.2f" % (now / before) if before and now else "-"

    rows = []
    for name, now in results["processes"].items():
        before = former["processes"].get(name, {})
        rows.append(
            [name]
            + [
                change(before.get(key), now.get(key))
                for key in ["microseconds", "processor", "peakKilobytes", "systemCalls", "instructions"]
            ]
        )
    columns = ["program", "us", "CPU us", "peak KiB", "system calls", "instructions"]
    return table("Now / then", columns, rows)


def _plot(path, commands, data):
    script = "set terminal svg size 720,360 background '#ffffff' font 'sans-serif,12'\n"
    script += "set output '%s'\n%s\n" % (path, commands)
    subprocess.run(["gnuplot"], input=script + data, text=True, check=True)


def write(results, folder):
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "results.json").write_text(json.dumps(results, indent=4) + "\n")
    (folder / "results.txt").write_text(text_of(results))
    bars = "".join(
        '"%s" %f\n' % (name, each["microseconds"]) for name, each in results["processes"].items()
    )
    _plot(
        folder / "processes.svg",
        "set title 'A process from start to end'\nset ylabel 'microseconds'\nset logscale y\n"
        "set style fill solid 0.6\nset boxwidth 0.7\nset xtics rotate by -30\nset key off\n"
        "set grid y\nset rmargin 10\nplot '-' using 2:xtic(1) with boxes",
        bars + "e\n",
    )
    rows = "".join(
        "%s %f\n" % (count, each["microseconds"]) for count, each in results["rows"].items()
    )
    _plot(
        folder / "rows.svg",
        "set title 'The backup page against the number of partitions'\nset xlabel 'partitions'\n"
        "set ylabel 'microseconds'\nset key off\nset grid\nset yrange [0:]\n"
        "plot '-' with linespoints linewidth 2",
        rows + "e\n",
    )
    lines = "\n".join(
        "$load%d << end\n%s\nend"
        % (number, "\n".join("%s %f" % (c, load["requests"]) for c, load in loads.items()))
        for number, loads in enumerate(results["web"].values())
    )
    curves = ", ".join(
        "$load%d with linespoints title '%s'" % each for each in enumerate(results["web"])
    )
    _plot(
        folder / "web.svg",
        lines + "\nset title 'Behind the web server'\nset xlabel 'clients at once'\n"
        "set ylabel 'requests per second'\nset key outside\nset grid\nset yrange [0:]\n"
        "plot " + curves,
        "",
    )
