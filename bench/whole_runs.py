"""Whole runs on three files of many lines, in turn with other ways to make the same edits; called by scripts/bench."""
import argparse
import os
import pathlib
import platform
import statistics
import subprocess
import sys

PROJECT = pathlib.Path(__file__).resolve().parent.parent
NAMES = ["QovConfiguration.xml", "QovSettings.xml", "ApoPipelinesDefinition.xml"]
EDITED_LINES = 12  # of the example files on the example laptop, of all three
FLOOR, LIBRARY, APPLY = "floor", "library", "apply --backup"


def programs(build):
    competitors = PROJECT / "bench/competitors"
    laptop = PROJECT / "examples/machines/laptop-spatialf.json"
    files = ["--configuration", NAMES[0], "--settings", NAMES[1], "--pipelines", NAMES[2]]
    return {
        FLOOR: [build / "bench_floor", *NAMES],
        LIBRARY: [build / "bench_library", laptop, *NAMES],
        APPLY: [build / "qovxml-configure", "apply", *files, "--machine", laptop, "--backup", "--quiet"],
        "sed -u -i": ["/usr/bin/sed", "-u", "-i", "-f", competitors / "edit.sed", *NAMES],
        "pugixml": [build / "bench_pugixml", *NAMES],
        "Python": ["/usr/bin/python3", competitors / "edit.py", *NAMES],
    }


def make_files(lines):
    """The example files, filled up to that many lines before the last."""
    files = []
    for name in NAMES:
        *head, last, nothing = (PROJECT / "examples/xml" / name).read_bytes().split(b"\r\n")
        filler = [b'    <Entry Name="filler %07d" Value="%d" Unit="dB" Enabled="yes" />' % (number, number * 7 % 1000)
                  for number in range(lines - len(head) - 1)]
        files.append(b"\r\n".join([*head, *filler, last, nothing]))
    return files


def run(measure, command, folder, files):
    for name, content in zip(NAMES, files):
        (folder / name).write_bytes(content)
        (folder / (name + ".bak")).unlink(missing_ok=True)
    os.sync()
    result = subprocess.run([measure, *command], cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False)
    if result.returncode != 0:
        sys.exit(f"{command[0]} failed: {result.stderr.decode()}")
    wall, user, system, memory = map(float, result.stderr.split()[-4:])
    return wall, user + system, memory


def other_changes(folder, files, wanted):
    """How many lines differ from what the edits alone come to; the floor edits nothing."""
    count = 0
    for name, content, goal in zip(NAMES, files, wanted):
        now = (folder / name).read_bytes().split(b"\n")
        for expected in (goal, content):
            expected = expected.split(b"\n")
            if now == expected:
                break
        else:
            goal = goal.split(b"\n")
            count += abs(len(goal) - len(now)) + sum(one != other for one, other in zip(goal, now))
    return count


def verdict(label, changes):
    if label == FLOOR:
        return "edits nothing"
    return "kept" if changes == 0 else f"{changes} other lines changed"


def measure_size(build, folder, lines, rounds, log):
    files = make_files(lines)
    commands = programs(build)
    taken = {label: [] for label in commands}
    run(build / "bench_measure", commands[LIBRARY], folder, files)
    wanted = [(folder / name).read_bytes() for name in NAMES]
    edits = sum(one != other for before, after in zip(files, wanted)
                for one, other in zip(before.split(b"\n"), after.split(b"\n")))
    if edits != EDITED_LINES:
        sys.exit(f"The library changed {edits} lines instead of {EDITED_LINES}")
    bytes_kept = {}
    for number in range(rounds):
        for label, command in commands.items():
            taken[label].append(run(build / "bench_measure", command, folder, files))
            if number == 0:
                bytes_kept[label] = verdict(label, other_changes(folder, files, wanted))
        log(f"{lines} lines: round {number + 1} of {rounds}")
    largest = max(map(len, files))
    rows = {}
    for label, runs in taken.items():
        wall, cpu, memory = (statistics.median(values) for values in zip(*runs))
        rows[label] = {"wall": wall, "cpu": cpu, "memory": memory, "largest": largest, "kept": bytes_kept[label]}
    return rows


def table(lines, rows):
    floor, library = rows[FLOOR], rows[LIBRARY]
    text = [f"Three files of {lines:,} lines, the largest of {library['largest'] / 1e6:.1f} MB:", "",
            "| | seconds | of the floor | processor seconds | of the floor | peak memory, of the largest file | "
            "other bytes |", "| --- | ---: | ---: | ---: | ---: | ---: | --- |"]
    for label, row in rows.items():
        text.append(f"| {label} | {row['wall']:.4f} | {row['wall'] / floor['wall']:.2f} | {row['cpu']:.4f} | "
                    f"{row['cpu'] / floor['cpu']:.2f} | {row['memory'] / 1e6:.1f} MB, "
                    f"{row['memory'] / row['largest']:.2f} | {row['kept']} |")
    text += ["", f"`apply --backup` takes {rows[APPLY]['wall'] / library['wall']:.2f} of the library's seconds, "
                 f"{rows[APPLY]['cpu'] / library['cpu']:.2f} of its processor seconds.", ""]
    return "\n".join(text)


def goals(results):
    """What the library and the program are meant to keep to, beside what was measured."""
    rows = []
    for size, measured in results.items():
        floor, library, apply = (measured[label] for label in (FLOOR, LIBRARY, APPLY))
        if size != 10_000:
            rows.append((f"library of the floor, {size:,} lines", 2.5 if size < 10_000 else 1.1,
                         library["wall"] / floor["wall"]))
        rows.append((f"`apply --backup` of the library, {size:,} lines", 2.5, apply["wall"] / library["wall"]))
        rows.append((f"library's memory of 2.5 times the largest file and 8 MB, {size:,} lines", 1,
                     library["memory"] / (2.5 * library["largest"] + 8e6)))
    before, last = sorted(results)[-2:]
    rows.append((f"library's time per line at {last:,} lines of that at {before:,}", 1.1,
                 results[last][LIBRARY]["wall"] / results[before][LIBRARY]["wall"] * before / last))
    text = ["| goal, in seconds or bytes | at most | measured | |", "| --- | ---: | ---: | --- |"]
    text += [f"| {name} | {most} | {value:.2f} | {'kept' if value <= most else 'missed'} |" for name, most, value in rows]
    return "\n".join(text)


def draw(results, path):
    import matplotlib
    matplotlib.use("svg")
    matplotlib.rcParams["svg.hashsalt"] = "whole runs"
    from matplotlib import pyplot
    figure, axes = pyplot.subplots(figsize=(8, 5))
    sizes = sorted(results)
    for label in results[sizes[0]]:
        axes.plot(sizes, [results[size][label]["wall"] for size in sizes], marker="o", label=label)
    axes.set(xscale="log", yscale="log", xlabel="lines in each of three files", ylabel="seconds, median of whole runs")
    axes.grid(True, which="major", alpha=0.4)
    axes.legend()
    figure.savefig(path, metadata={"Date": None}, bbox_inches="tight")


def processor():
    lines = pathlib.Path("/proc/cpuinfo").read_text().splitlines()
    name = next((line.split(":")[1].strip() for line in lines if line.startswith("model name")), platform.machine())
    return f"{name}, {os.cpu_count()} cores, {platform.system()} {platform.release().split('-')[0]}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--picture", type=pathlib.Path)
    parser.add_argument("--quick", action="store_true")
    arguments = parser.parse_args()
    arguments.folder.mkdir(parents=True, exist_ok=True)
    plan = {1_000: 11, 10_000: 5, 100_000: 3} if arguments.quick else {1_000: 31, 10_000: 15, 100_000: 9, 1_000_000: 3}
    build, folder = arguments.build.resolve(), arguments.folder.resolve()
    results = {size: measure_size(build, folder, size, rounds, lambda text: print(text, file=sys.stderr))
               for size, rounds in plan.items()}
    print(f"Measured on: {processor()}.\n")
    for size, rows in results.items():
        print(table(size, rows))
    print(goals(results))
    if arguments.picture:
        draw(results, arguments.picture)


if __name__ == "__main__":
    main()
