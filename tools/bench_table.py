"""Runs the benchmark programs and prints one table of what they measured; or prints it from figures that are there.

    bench_table.py --run BUILD_FOLDER/bench --out FOLDER [--repetitions N] [NAME...]
    bench_table.py FILE.json...

A program is google-benchmark's, or prints JSON lines of its own: {"name", "unit", "samples": [...]} or {"name", "unit",
"median", "p95", "p99"}, with "floor" where it has one. A case names its floor, the least that its work could cost, by the label
"floor=OTHER CASE" of the same program; the table shows median over floor. Times are worth something only against others of
the same run. NAME chooses programs (bench_NAME or part of it)."""
import argparse
import html
import json
import os
import platform
import re
import subprocess
import sys
import time


def percentile(values, share):
    values = sorted(values)
    place = (len(values) - 1) * share
    low = int(place)
    high = min(low + 1, len(values) - 1)
    return values[low] + (values[high] - values[low]) * (place - low)


NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def row(name, unit, samples=None, median=None, p95=None, p99=None, floor=None):
    fifth = None
    if samples:
        fifth, median, p95, p99 = (percentile(samples, share) for share in (0.05, 0.5, 0.95, 0.99))
    return {"name": name, "unit": unit, "runs": len(samples or []), "median": median, "p95": p95, "p99": p99, "p5": fifth, "floor": floor}


def floor_of(text):
    match = re.search(r"floor=(\S+)", text or "")
    return match.group(1) if match else None


def short(name):
    return re.sub(r"/(repeats:\d+|min_time:[\d.]+|iterations:\d+|real_time|process_time|manual_time)", "", name)


def from_google(data):
    """The rows of one google-benchmark result, in its order. Aggregates are left: they are of few runs, ours are of all."""
    samples, first = {}, {}
    for entry in data["benchmarks"]:
        if entry.get("run_type", "iteration") != "iteration":
            continue
        name = short(entry["name"])
        first.setdefault(name, entry)
        if entry.get("error_occurred"):
            raise ValueError(f"{name}: {entry.get('error_message', 'failed')}")
        samples.setdefault(name, []).append(entry["real_time"])
    return [row(name, entry["time_unit"], samples=samples[name], floor=floor_of(entry.get("label"))) for name, entry in first.items()]


def from_lines(text):
    rows = []
    for line in text.splitlines():
        if not line.startswith("{"):
            continue
        data = json.loads(line)
        rows.append(row(data["name"], data.get("unit", ""), data.get("samples"), data.get("median"), data.get("p95"), data.get("p99"), data.get("floor")))
    return rows


def with_ratios(rows):
    by_name = {r["name"]: r for r in rows}
    for r in rows:
        floor = by_name.get(r["floor"]) if r["floor"] else None
        if r["floor"] and not floor:
            raise ValueError(f"{r['name']} names the floor {r['floor']}, which is no case of its program")
        r["ratio"] = None
        if floor and floor["median"]:
            scale = NANOSECONDS.get(r["unit"], 1) / NANOSECONDS.get(floor["unit"], 1)
            r["ratio"] = r["median"] * scale / floor["median"]
    return rows


def number(value):
    if value is None:
        return "-"
    return f"{value:.0f}" if abs(value) >= 1000 else f"{value:.3g}"


def table(groups):
    lines = [("case", "median", "p95", "p99", "unit", "runs", "x floor", "floor")]
    for program, rows in groups:
        lines.append((f"-- {program}",) + ("",) * 7)
        for r in rows:
            lines.append((r["name"], number(r["median"]), number(r["p95"]), number(r.get("p99")), r["unit"], str(r["runs"] or "-"),
                          f"{r['ratio']:.2f}" if r["ratio"] is not None else "-", r["floor"] or ""))
    widths = [max(len(line[i]) for line in lines) for i in range(8)]
    return "\n".join("  ".join(cell.ljust(w) if i in (0, 4, 7) else cell.rjust(w) for i, (cell, w) in enumerate(zip(line, widths))).rstrip()
                     for line in lines)


def plot(program, rows):
    """Bars of each case that has a floor: how many times its floor it takes."""
    rows = [r for r in rows if r["ratio"] is not None]
    if not rows:
        return None
    longest, high, left = max(r["ratio"] for r in rows), 24, 330
    bars = [f'<text x="10" y="20" font-weight="bold">{html.escape(program)}: times the floor (median)</text>']
    for i, r in enumerate(rows):
        y = 34 + i * high
        bars.append(f'<text x="{left - 8}" y="{y + 14}" text-anchor="end">{html.escape(r["name"])}</text>'
                    f'<rect x="{left}" y="{y}" width="{max(1, r["ratio"] / longest * 400):.1f}" height="{high - 7}" fill="#3b6ea5"/>'
                    f'<text x="{left + r["ratio"] / longest * 400 + 6:.1f}" y="{y + 14}">{r["ratio"]:.2f}</text>')
    height = 44 + len(rows) * high
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="800" height="{height}" font-family="sans-serif" font-size="12">'
            f'<rect width="800" height="{height}" fill="white"/>{"".join(bars)}</svg>\n')


def machine():
    try:
        with open("/proc/cpuinfo", encoding="utf-8") as file:
            return re.search(r"model name\s*: (.*)", file.read()).group(1)
    except (OSError, AttributeError):
        return platform.processor()


def run(arguments):
    with open(os.path.join(arguments.run, "programs.txt"), encoding="utf-8") as file:
        programs = [line.rstrip("\n").split("\t") for line in file if line.strip()]
    chosen = [p for p in programs if not arguments.names or any(n in p[0] for n in arguments.names)]
    if not chosen:
        sys.exit("no such benchmark; there are: " + (", ".join(p[0] for p in programs) or "none yet"))
    os.makedirs(arguments.out, exist_ok=True)
    groups, failed, started = [], [], time.monotonic()
    for name, emulator, program in chosen:
        print(f"bench {time.monotonic() - started:6.1f}s  {name}", file=sys.stderr, flush=True)
        out = os.path.join(arguments.out, name + ".json")
        if os.path.exists(out):
            os.remove(out)
        # The program may run in another directory: the file's place is given whole, as Windows sees it where Wine runs it.
        place = os.path.abspath(out)
        if emulator:
            place = "Z:" + place.replace("/", "\\")
        command = ([emulator] if emulator else []) + [
            program, f"--benchmark_out={place}", "--benchmark_out_format=json", f"--benchmark_repetitions={arguments.repetitions}",
            "--benchmark_min_time=0.05s", "--benchmark_enable_random_interleaving=true"]
        result = subprocess.run(command, stdout=subprocess.PIPE, text=True, errors="replace")
        if result.returncode:
            print(result.stdout[-3000:], file=sys.stderr)
            print(f"{name} ended with {result.returncode}", file=sys.stderr)
            failed.append(name)
            continue
        try:
            if os.path.exists(out) and os.path.getsize(out):
                with open(out, encoding="utf-8") as file:
                    data = json.load(file)
                rows = with_ratios(from_google(data))
            else:
                data, rows = {}, with_ratios(from_lines(result.stdout))
            if not rows:
                raise ValueError("measured nothing")
        except (ValueError, KeyError) as error:
            print(f"{name}: {error}", file=sys.stderr)
            failed.append(name)
            continue
        data["machine"] = {"cpu": machine(), "cores": os.cpu_count(), "commit": arguments.commit}
        data["rows"] = rows
        with open(out, "w", encoding="utf-8") as file:
            json.dump(data, file, indent=1)
        picture = plot(name, rows)
        if picture:
            with open(os.path.join(arguments.out, name + ".svg"), "w", encoding="utf-8") as file:
                file.write(picture)
        groups.append((name, rows))
    return groups, failed


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--run", metavar="FOLDER")
    parser.add_argument("--out", metavar="FOLDER", default="out/bench")
    parser.add_argument("--repetitions", type=int, default=20)
    parser.add_argument("--commit", default=os.environ.get("ZEMO_COMMIT", ""))
    parser.add_argument("names", nargs="*")
    arguments = parser.parse_args()
    failed = []
    if arguments.run:
        groups, failed = run(arguments)
    else:
        groups = []
        for path in arguments.names:
            with open(path, encoding="utf-8") as file:
                data = json.load(file)
            groups.append((os.path.basename(path)[:-5], data.get("rows") or with_ratios(from_google(data))))
    if groups:
        print(table(groups))
    if arguments.run and groups:
        print(f"\non {machine()} ({os.cpu_count()} cores); figures and plots are in {arguments.out}")
    if failed:
        sys.exit("failed: " + ", ".join(failed))


if __name__ == "__main__":
    main()
