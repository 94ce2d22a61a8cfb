"""Runs the benchmark programs in Brannoc Basic and in the peer implementations and prints one table.

Each program exists once per language (basic/, lua/, python/, vbscript/, c/) and prints a line
"checksum N"; every run of every implementation must print the same N. Times are medians of several
runs, without start-up: Brannoc Basic is timed inside the process by bbbench (compile plus run, from
QueryPerformanceCounter), the others from outside minus the median time of an empty program in the same
implementation. C is compiled with gcc -O2 beforehand; its row in the compile line is the gcc time.
Peak memory is the largest resident set of the process (Wine's own share included for the programs
that run under Wine).
"""

import argparse
import math
import os
import pathlib
import re
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import threading
import time

import large_module

BENCH = pathlib.Path(__file__).resolve().parent
ROOT = BENCH.parent

PROGRAMS = [
    "loop_long",
    "loop_variant",
    "fib",
    "byref_calls",
    "strings",
    "sieve",
    "sort",
    "select_case",
    "class_calls",
    "select_string",
    "string_copies",
    "string_build",
    "deep_recursion",
    "variant_kinds",
]

CHECKSUM = re.compile(rb"checksum (-?\d+)")
FAST_SECONDS = 1.0
FAST_RUNS = 15


class Failure(Exception):
    pass


class Sample:
    """One run: wall and processor seconds (user plus system), peak resident KB, its output."""

    def __init__(self, wall, processor, peak, out, err):
        self.wall, self.processor, self.peak, self.out, self.err = wall, processor, peak, out, err


def measure_child(command, cwd, timeout):
    """Runs command; answers a Sample.

    The command runs under GNU time, a small process that forks and waits for it. Processor time is that
    process's resource use as wait4 reports it (to the microsecond, the program's and its own); the peak
    resident set is the program's own as GNU time reports it. (Linux carries the resident high-water
    mark of a process that forks over into the program it then executes, so the peak must come from a
    small process that forked the program, not from this one.)"""
    # Output goes to files, not pipes: Wine's service processes, started by the first program of a Wine
    # session, inherit the handles and would hold a pipe open long after the program ended.
    with tempfile.TemporaryDirectory(prefix="brannoc-bench-run-") as folder:
        out_path, err_path, report = (pathlib.Path(folder) / name for name in ("out", "err", "peak"))
        full = ["/usr/bin/time", "-q", "-f", "%M", "-o", report] + [str(part) for part in command]
        with open(out_path, "wb") as out_file, open(err_path, "wb") as err_file:
            start = time.perf_counter()
            process = subprocess.Popen(full, cwd=cwd, stdin=subprocess.DEVNULL, stdout=out_file, stderr=err_file,
                                       start_new_session=True)
            # The program leads its own process group: on time-out, whatever it started goes too.
            timer = threading.Timer(timeout, lambda: os.killpg(process.pid, signal.SIGKILL))
            timer.start()
            try:
                _, status, usage = os.wait4(process.pid, 0)
            finally:
                timer.cancel()
            wall = time.perf_counter() - start
            process.returncode = os.waitstatus_to_exitcode(status)
        out, err = out_path.read_bytes(), err_path.read_bytes()
        if process.returncode == -signal.SIGKILL and wall >= timeout:
            raise Failure(f"{' '.join(map(str, command))}: no end after {timeout} s")
        if process.returncode != 0:
            raise Failure(f"{' '.join(map(str, command))}: exit {process.returncode}\n"
                          f"{out.decode(errors='replace')}{err.decode(errors='replace')}")
        peak = report.read_text().split()
    return Sample(wall, usage.ru_utime + usage.ru_stime, int(peak[-1]) if peak else 0, out, err)


class Implementation:
    """One way of running the programs. Subclasses fill in the command and the timing rule."""

    name = ""
    extension = ""
    folder = ""

    def __init__(self, work, clock):
        self.work = work
        self.clock = clock
        self.startup = {"wall": 0.0, "cpu": 0.0}

    def source(self, program):
        return BENCH / self.folder / f"{program}.{self.extension}"

    def prepare(self, program, source):
        """Answers the command that runs source (compiling first where needed)."""
        raise NotImplementedError

    def seconds(self, sample, clock=None):
        """The time a run took without start-up, on the wall clock or in processor time."""
        clock = clock or self.clock
        measured = sample.wall if clock == "wall" else sample.processor
        return max(measured - self.startup[clock], 0.0)

    def measure_startup(self, runs, timeout):
        empty = self.write_empty()
        if empty is None:
            return
        command = self.prepare("empty", empty)
        samples = [measure_child(command, empty.parent, timeout) for _ in range(runs)]
        self.startup = {"wall": statistics.median(s.wall for s in samples),
                        "cpu": statistics.median(s.processor for s in samples)}

    def write_empty(self):
        return None


class Brannoc(Implementation):
    name = "Brannoc"
    extension = "bas"
    folder = "basic"

    def __init__(self, work, clock, build):
        super().__init__(work, clock)
        self.build = build

    def prepare(self, program, source):
        return [self.build / "wine-run", self.build / "bin" / "bbbench.exe", source]

    def seconds(self, sample, clock=None):
        compile_time, run_time, processor = self.parts(sample.err)
        return compile_time + run_time if (clock or self.clock) == "wall" else processor

    @staticmethod
    def parts(err):
        """bbbench's compile and run seconds (wall clock) and the processor time of both."""
        found = re.search(rb"bbbench: compile ([0-9.]+) run ([0-9.]+) cpu ([0-9.]+)", err)
        if not found:
            raise Failure("bbbench printed no timing line:\n" + err.decode(errors="replace"))
        return float(found.group(1)), float(found.group(2)), float(found.group(3))


class Lua(Implementation):
    name = "Lua 5.4"
    extension = "lua"
    folder = "lua"

    def prepare(self, program, source):
        return ["lua5.4", source]

    def write_empty(self):
        path = self.work / "empty.lua"
        path.write_text("\n")
        return path


class Python(Implementation):
    name = "Python 3"
    extension = "py"
    folder = "python"

    def prepare(self, program, source):
        return ["/usr/bin/python3", source]

    def write_empty(self):
        path = self.work / "empty.py"
        path.write_text("\n")
        return path


class VBScript(Implementation):
    name = "VBScript"
    extension = "vbs"
    folder = "vbscript"

    def __init__(self, work, clock, build):
        super().__init__(work, clock)
        self.build = build

    def prepare(self, program, source):
        # Named by its Windows path, Wine runs cscript in the process it starts (a bare "cscript.exe"
        # goes through start.exe into a process that no one waits for, whose processor time and memory
        # would not be counted). cscript reads an argument that starts with "/" as a switch, so the
        # script is named relative to the folder it runs in (the folder of the source).
        return [self.build / "wine-run", "C:\\windows\\system32\\cscript.exe", "//nologo", source.name]

    def write_empty(self):
        path = self.work / "empty.vbs"
        path.write_text("\r\n")
        return path


class C(Implementation):
    name = "C -O2"
    extension = "c"
    folder = "c"

    def __init__(self, work, clock):
        super().__init__(work, clock)
        self.compile_seconds = {}

    def prepare(self, program, source):
        binary = self.work / f"{program}-c"
        start = time.perf_counter()
        subprocess.run(["gcc", "-O2", "-o", binary, source, "-lm"], check=True)
        self.compile_seconds[program] = time.perf_counter() - start
        return [binary]

    def write_empty(self):
        path = self.work / "empty.c"
        path.write_text("int main(void) { return 0; }\n")
        return path


def checksum_of(out, what):
    found = CHECKSUM.findall(out)
    if len(found) != 1:
        raise Failure(f"{what}: expected one checksum line, got:\n{out.decode(errors='replace')}")
    return int(found[0])


def run_program(implementation, program, source, runs, timeout):
    """Answers (median seconds, peak KB, checksum) of runs of one program."""
    command = implementation.prepare(program, source)
    times, peaks, sums = [], [], set()
    # Short programs run more often (up to FAST_RUNS) so that their median is not one noisy sample.
    while len(times) < runs or (sum(times) < FAST_SECONDS and len(times) < FAST_RUNS):
        sample = measure_child(command, source.parent, timeout)
        times.append(implementation.seconds(sample))
        peaks.append(sample.peak)
        sums.add(checksum_of(sample.out, f"{implementation.name} {program}"))
    if len(sums) != 1:
        raise Failure(f"{implementation.name} {program}: checksums differ between runs: {sorted(sums)}")
    return statistics.median(times), max(peaks), sums.pop()


def run_compile_row(implementations, runs, timeout, work):
    """The large generated module: compile time per implementation (see large_module.py).

    Brannoc's time is bbbench's compile time; C's is the time of gcc -O2; the interpreters' is the time
    of the whole run without start-up, which is almost all compiling. All on the wall clock: these
    times are short beside the processor clock's tick."""
    folder = work / "large"
    lines = large_module.write_all(folder)
    results = {}
    for implementation in implementations:
        source = folder / f"large_module.{implementation.extension}"
        times, peaks, sums = [], [], set()
        for _ in range(runs):
            command = implementation.prepare("large_module", source)
            sample = measure_child(command, folder, timeout)
            if isinstance(implementation, Brannoc):
                times.append(Brannoc.parts(sample.err)[0])
            elif isinstance(implementation, C):
                times.append(implementation.compile_seconds["large_module"])
            else:
                times.append(implementation.seconds(sample, "wall"))
            peaks.append(sample.peak)
            sums.add(checksum_of(sample.out, f"{implementation.name} large module"))
        if len(sums) != 1:
            raise Failure(f"{implementation.name} large module: checksums differ between runs: {sorted(sums)}")
        results[implementation.name] = (statistics.median(times), max(peaks), sums.pop())
    return lines, results


def format_seconds(value):
    if value is None:
        return "-"
    if value == 0:
        return "<0.01"
    if value < 0.01:
        return f"{value:.4f}"
    return f"{value:.3f}"


def format_ratio(numerator, denominator):
    if numerator is None or not denominator:
        return "-"
    return f"{numerator / denominator:.2f}"


def print_table(names, rows, compile_row, lines, runs, clock):
    """rows: program -> {implementation name: (seconds, peak KB, checksum)}."""
    header = ["program", "checksum"] + [f"{name} s" for name in names]
    has_lua, has_vbs = "Lua 5.4" in names, "VBScript" in names
    if "Brannoc" in names and has_lua:
        header.append("Brannoc/Lua")
    if "Brannoc" in names and has_vbs:
        header.append("Brannoc/VBScript")
    header.append("peak MB (" + ", ".join(names) + ")")
    table = [header]

    def ratio_cells(result):
        cells = []
        brannoc = result.get("Brannoc", (None,))[0]
        if "Brannoc" in names and has_lua:
            cells.append(format_ratio(brannoc, result.get("Lua 5.4", (None,))[0]))
        if "Brannoc" in names and has_vbs:
            cells.append(format_ratio(brannoc, result.get("VBScript", (None,))[0]))
        return cells

    logs = {name: [] for name in names}
    for program, result in rows.items():
        checksums = {entry[2] for entry in result.values()}
        checksum = str(checksums.pop()) if len(checksums) == 1 else "DIFFER"
        line = [program, checksum] + [format_seconds(result[name][0]) if name in result else "-" for name in names]
        line += ratio_cells(result)
        line.append(" / ".join(f"{result[name][1] / 1024:.1f}" if name in result else "-" for name in names))
        table.append(line)
        for name in names:
            if name in result and result[name][0] > 0:
                logs[name].append(math.log(result[name][0]))
    geometric = {name: (math.exp(sum(values) / len(values)), 0, 0) for name, values in logs.items()
                 if values and len(values) == len(rows)}
    line = ["geometric mean", ""] + [format_seconds(geometric[name][0]) if name in geometric else "-"
                                     for name in names]
    line += ratio_cells(geometric)
    line.append("")
    table.append(line)
    if compile_row:
        checksums = {entry[2] for entry in compile_row.values()}
        checksum = str(checksums.pop()) if len(checksums) == 1 else "DIFFER"
        line = [f"compile {lines}-line module", checksum]
        line += [format_seconds(compile_row[name][0]) if name in compile_row else "-" for name in names]
        line += ratio_cells(compile_row)
        line.append(" / ".join(f"{compile_row[name][1] / 1024:.1f}" if name in compile_row else "-"
                               for name in names))
        table.append(line)

    widths = [max(len(row[i]) for row in table) for i in range(len(header))]
    def emit(row):
        print("| " + " | ".join(cell.ljust(widths[i]) if i == 0 else cell.rjust(widths[i])
                                for i, cell in enumerate(row)) + " |")
    emit(table[0])
    print("|" + "|".join("-" * (w + 2) if i == 0 else "-" * (w + 1) + ":" for i, w in enumerate(widths)) + "|")
    for row in table[1:]:
        emit(row)
    print()
    kind = "processor seconds (user and system)" if clock == "cpu" else "wall-clock seconds"
    print(f"Median of at least {runs} runs (up to {FAST_RUNS} for programs under {FAST_SECONDS:g} s in all), "
          f"{kind} without start-up (the compile row: wall clock); ratios are Brannoc's time over the peer's "
          "(below 1: Brannoc is faster).")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--runs", type=int, default=3, help="runs of each program in each implementation")
    parser.add_argument("--programs", default=",".join(PROGRAMS), help="comma-separated program names")
    parser.add_argument("--implementations", default="brannoc,lua,python,vbscript,c",
                        help="comma-separated: brannoc, lua, python, vbscript, c")
    parser.add_argument("--no-compile-row", action="store_true", help="leave out the large-module compile row")
    parser.add_argument("--timeout", type=float, default=600, help="seconds one run may take")
    parser.add_argument("--clock", choices=["cpu", "wall"], default="cpu",
                        help="time programs by processor time (default; steady on a shared machine) or wall clock")
    parser.add_argument("--build", default=os.environ.get("BRANNOC_BUILD_DIR", str(ROOT / "build")))
    arguments = parser.parse_args()

    build = pathlib.Path(arguments.build).resolve()
    work = pathlib.Path(tempfile.mkdtemp(prefix="brannoc-bench-"))
    try:
        clock = arguments.clock
        makers = {
            "brannoc": lambda: Brannoc(work, clock, build),
            "lua": lambda: Lua(work, clock),
            "python": lambda: Python(work, clock),
            "vbscript": lambda: VBScript(work, clock, build),
            "c": lambda: C(work, clock),
        }
        chosen = [part.strip() for part in arguments.implementations.split(",") if part.strip()]
        unknown = [part for part in chosen if part not in makers]
        if unknown:
            parser.error(f"unknown implementations: {', '.join(unknown)}")
        implementations = [makers[part]() for part in chosen]
        programs = [part.strip() for part in arguments.programs.split(",") if part.strip()]
        for program in programs:
            if program not in PROGRAMS:
                parser.error(f"unknown program: {program}")

        for implementation in implementations:
            implementation.measure_startup(arguments.runs, arguments.timeout)
            if any(implementation.startup.values()):
                print(f"start-up of {implementation.name}: {implementation.startup['wall']:.3f} s wall, "
                      f"{implementation.startup['cpu']:.3f} s processor", file=sys.stderr)

        rows = {}
        failed = False
        for program in programs:
            rows[program] = {}
            for implementation in implementations:
                source = implementation.source(program)
                try:
                    result = run_program(implementation, program, source, arguments.runs, arguments.timeout)
                except Failure as failure:
                    print(f"FAILED: {failure}", file=sys.stderr)
                    failed = True
                    continue
                rows[program][implementation.name] = result
                print(f"{program:14} {implementation.name:10} {result[0]:8.3f} s  checksum {result[2]}",
                      file=sys.stderr)
            if len({entry[2] for entry in rows[program].values()}) > 1:
                failed = True

        compile_row, lines = None, 0
        if not arguments.no_compile_row:
            lines, compile_row = run_compile_row(implementations, arguments.runs, arguments.timeout, work)
            if len({entry[2] for entry in compile_row.values()}) > 1:
                failed = True

        print_table([implementation.name for implementation in implementations], rows, compile_row, lines,
                    arguments.runs, clock)
        if failed:
            print("Some runs failed or checksums differ (see above).", file=sys.stderr)
            return 1
        return 0
    finally:
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
