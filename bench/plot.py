#!/usr/bin/env python3
"""Turns the JSON output of the benchmark programs into tables and a chart.

Reads one or more files written with --benchmark_out_format=json (or
--benchmark_format=json) by wevlin_bench and wevlin_bench_browser, and

  --markdown FILE   replaces the text between the lines
                    "<!-- results:begin -->" and "<!-- results:end -->" of
                    FILE with the result tables (or writes the tables to
                    standard output when FILE is "-");
  --chart FILE      draws the chart (PNG) with matplotlib;
  --check           exits with status 1 when a benchmark reported an error,
                    other than a corpus document that is missing.

With repetitions, every figure is the median over the repetitions. Rates of
the native benchmarks come from CPU time, those of the browser from wall-clock
(or the page's own) time.
"""

import argparse
import json
import statistics
import sys
from collections import defaultdict

CORPUS = ["twitter", "citm_catalog", "canada", "github_events"]
GENERATED = [
    "flat_10k",
    "flat_1m",
    "objects_10k",
    "objects_1m",
    "escaped_10k",
    "escaped_1m",
    "coordinates_10k",
    "coordinates_1m",
    "nested_100",
    "nested_1000",
]
LIBRARIES = ["wevlin", "nlohmann", "rapidjson"]
BEGIN = "<!-- results:begin -->"
END = "<!-- results:end -->"


def base_name(run_name):
    for suffix in ("/manual_time", "/real_time"):
        if run_name.endswith(suffix):
            run_name = run_name[: -len(suffix)]
    # A benchmark with a fixed number of iterations carries it in its name.
    head, _, last = run_name.rpartition("/")
    if head and last.startswith("iterations:"):
        run_name = head
    return run_name


class Results:
    """The repetitions of every benchmark, by name."""

    def __init__(self, paths):
        self.runs = defaultdict(list)
        self.errors = {}
        self.contexts = []
        for path in paths:
            with open(path, encoding="utf-8") as stream:
                data = json.load(stream)
            self.contexts.append(data.get("context", {}))
            for run in data.get("benchmarks", []):
                name = base_name(run.get("run_name", run["name"]))
                if run.get("error_occurred"):
                    self.errors[name] = run.get("error_message", "")
                    continue
                if run.get("run_type", "iteration") != "iteration":
                    continue
                self.runs[name].append(run)

    def has(self, name):
        return name in self.runs

    def median(self, name, field):
        values = [run[field] for run in self.runs.get(name, []) if field in run]
        return statistics.median(values) if values else None

    def seconds(self, name, field="cpu_time"):
        """Median time per iteration in seconds."""
        runs = self.runs.get(name, [])
        if not runs:
            return None
        scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}[runs[0]["time_unit"]]
        return statistics.median(run[field] for run in runs) * scale


def fmt(value, digits=1):
    if value is None:
        return "-"
    return f"{value:,.{digits}f}"


def ratio(a, b):
    if a is None or b is None or b == 0:
        return None
    return a / b


def mb(value):
    return None if value is None else value / 1e6


def json_tables(results, direction):
    rows = [
        f"| Document | Bytes | wevlin MB/s | nlohmann MB/s | RapidJSON MB/s | "
        f"wevlin / nlohmann | wevlin / RapidJSON |",
        "|---|---:|---:|---:|---:|---:|---:|",
    ]
    for document in CORPUS + GENERATED:
        rates = {
            library: mb(results.median(f"Json/{direction}/{document}/{library}", "bytes_per_second"))
            for library in LIBRARIES
        }
        size = results.median(f"Json/{direction}/{document}/wevlin", "doc_bytes")
        if all(rate is None for rate in rates.values()):
            error = results.errors.get(f"Json/{direction}/{document}/wevlin")
            if error:
                rows.append(f"| {document} | - | skipped: {error} | | | | |")
            continue
        rows.append(
            f"| {document} | {fmt(size, 0)} | {fmt(rates['wevlin'])} | {fmt(rates['nlohmann'])} | "
            f"{fmt(rates['rapidjson'])} | {fmt(ratio(rates['wevlin'], rates['nlohmann']), 2)} | "
            f"{fmt(ratio(rates['wevlin'], rates['rapidjson']), 2)} |"
        )
    return rows


def peak_heap(results, document, library):
    return results.median(f"Json/Heap/{document}/{library}", "peak_heap_bytes")


def heap_table(results):
    rows = [
        "| Document | Bytes | wevlin peak heap | nlohmann peak heap | RapidJSON peak heap | "
        "wevlin / nlohmann | wevlin / document |",
        "|---|---:|---:|---:|---:|---:|---:|",
    ]
    for document in CORPUS + GENERATED:
        peaks = {library: peak_heap(results, document, library) for library in LIBRARIES}
        if peaks["wevlin"] is None:
            continue
        size = results.median(f"Json/Heap/{document}/wevlin", "doc_bytes")
        rows.append(
            f"| {document} | {fmt(size, 0)} | {fmt(peaks['wevlin'], 0)} | {fmt(peaks['nlohmann'], 0)} | "
            f"{fmt(peaks['rapidjson'], 0)} | {fmt(ratio(peaks['wevlin'], peaks['nlohmann']), 2)} | "
            f"{fmt(ratio(peaks['wevlin'], size), 2)} |"
        )
    return rows if len(rows) > 2 else []


def per_byte_ns(results, direction, document, library="wevlin"):
    rate = results.median(f"Json/{direction}/{document}/{library}", "bytes_per_second")
    return None if not rate else 1e9 / rate


def linearity_table(results):
    rows = [
        "| Comparison | Direction | wevlin | nlohmann | RapidJSON | goal for wevlin |",
        "|---|---|---:|---:|---:|---|",
    ]
    pairs = [
        ("flat: 1 MB vs 10 kB", "flat_1m", "flat_10k", "<= 1.20"),
        ("objects: 1 MB vs 10 kB", "objects_1m", "objects_10k", "<= 1.20"),
        ("escaped strings: 1 MB vs 10 kB", "escaped_1m", "escaped_10k", "<= 1.20"),
        ("coordinates: 1 MB vs 10 kB", "coordinates_1m", "coordinates_10k", "<= 1.20"),
        ("depth 1000 vs flat 10 kB", "nested_1000", "flat_10k", "<= 2.00"),
        ("depth 1000 vs depth 100", "nested_1000", "nested_100", "<= 1.20"),
    ]
    for label, big, small, goal in pairs:
        for direction in ("Read", "Write"):
            cells = []
            for library in LIBRARIES:
                cells.append(
                    fmt(
                        ratio(
                            per_byte_ns(results, direction, big, library),
                            per_byte_ns(results, direction, small, library),
                        ),
                        2,
                    )
                )
            rows.append(f"| {label} | {direction} | {' | '.join(cells)} | {goal} |")
    return rows


def contract_table(results):
    rows = [
        "| Message | Operation | wevlin MB/s | wevlin records/s | nlohmann MB/s | "
        "nlohmann records/s | wevlin / nlohmann |",
        "|---|---|---:|---:|---:|---:|---:|",
    ]
    for message, label in (
        ("refresh_10000", "RefreshMsg, 10,000 object references"),
        ("session_1000", "SessionMsg, 1,000 preferences"),
    ):
        for operation in ("Write", "Read"):
            ours = f"Contract/{operation}/{message}/wevlin"
            theirs = f"Contract/{operation}/{message}/nlohmann"
            if not results.has(ours):
                continue
            ours_rate = results.median(ours, "bytes_per_second")
            theirs_rate = results.median(theirs, "bytes_per_second")
            rows.append(
                f"| {label} | {operation} | {fmt(mb(ours_rate))} | "
                f"{fmt(results.median(ours, 'items_per_second'), 0)} | {fmt(mb(theirs_rate))} | "
                f"{fmt(results.median(theirs, 'items_per_second'), 0)} | "
                f"{fmt(ratio(ours_rate, theirs_rate), 2)} |"
            )
    return rows


def base64_table(results):
    rows = [
        "| Size | Encode GB/s | Decode GB/s | memcpy GB/s | encode / memcpy | decode / memcpy |",
        "|---:|---:|---:|---:|---:|---:|",
    ]
    for size, label in ((1 << 10, "1 KiB"), (64 << 10, "64 KiB"), (16 << 20, "16 MiB")):
        rates = {
            kind: results.median(f"Base64/{kind}/{size}", "bytes_per_second")
            for kind in ("Encode", "Decode", "Memcpy")
        }
        if rates["Encode"] is None:
            continue
        gb = {kind: None if rate is None else rate / 1e9 for kind, rate in rates.items()}
        rows.append(
            f"| {label} | {fmt(gb['Encode'], 2)} | {fmt(gb['Decode'], 2)} | {fmt(gb['Memcpy'], 2)} | "
            f"{fmt(ratio(rates['Encode'], rates['Memcpy']), 3)} | "
            f"{fmt(ratio(rates['Decode'], rates['Memcpy']), 3)} |"
        )
    return rows


def dispatch_table(results):
    rows = ["| Call | Services registered | ns per call (CPU) |", "|---|---:|---:|"]
    for services in (10, 100, 10000):
        name = f"Dispatch/HostMethod/services:{services}"
        seconds = results.seconds(name)
        if seconds is not None:
            rows.append(
                f"| HostAPI::tavoHostMethod, 100-byte payload, echo service | {services:,} | "
                f"{fmt(seconds * 1e9, 0)} |"
            )
    seconds = results.seconds("Dispatch/WebMethod")
    if seconds is not None:
        rows.append(
            f"| HostControlInstance::InvokeWebMethod, 100-byte payload, answering control | - | "
            f"{fmt(seconds * 1e9, 0)} |"
        )
    return rows


def scale_table(results):
    name = "Scale/Instances/100"
    if not results.has(name):
        return []
    per_instance = results.median(name, "time_per_instance")
    return [
        "| Host control instances | Set-up time per instance | Heap per instance | "
        "RSS growth for all (first set) |",
        "|---:|---:|---:|---:|",
        f"| 100 | {fmt(per_instance * 1e6 if per_instance else None)} us | "
        f"{fmt(results.median(name, 'heap_per_instance'), 0)} bytes | "
        f"{fmt(results.median(name, 'rss_delta_kib'), 0)} KiB |",
    ]


ENGINES = ["chromium", "webkitgtk"]


def browser_entries():
    """(benchmark name below Browser/<engine>/, label) of each browser benchmark, in table order."""
    entries = [("Evaluate", "bare script round trip (ExecuteScript(\"1\"))")]
    for size, size_label in ((100, "100 B"), (100 << 10, "100 KiB")):
        entries.append((f"HostToPage/{size}", f"host to page, InvokeWebMethod, {size_label}"))
        entries.append((f"PageToHost/bridge/{size}", f"page to host, wevlinHost bridge, {size_label}"))
        entries.append((f"PageToHost/library/{size}", f"page to host, wevlin.js invokeMethod, {size_label}"))
    return entries


def page_clock_us(results, engine):
    """The step of the page's clock (performance.now) in `engine`, in microseconds, or None."""
    for name in results.runs:
        if name.startswith(f"Browser/{engine}/PageToHost/"):
            return results.median(name, "page_clock_us")
    return None


def browser_engines(results):
    """The engines with at least one browser result, in ENGINES order."""
    return [engine for engine in ENGINES if any(name.startswith(f"Browser/{engine}/") for name in results.runs)]


def browser_row(results, engine, entry):
    """A dict with mean (s), p50 and p99 (us) and rate (calls/s) of one browser benchmark, or None.

    A page-side percentile below the step of the page's clock cannot be told
    from zero: p50 and p99 are then None and `below_clock` is True."""
    name = f"Browser/{engine}/{entry}"
    if not results.has(name):
        return None
    calls_per_second = results.median(name, "items_per_second")
    row = {
        "mean": None if not calls_per_second else 1.0 / calls_per_second,
        "p50": results.median(name, "p50_us"),
        "p99": results.median(name, "p99_us"),
        "rate": calls_per_second,
        "below_clock": False,
    }
    clock = page_clock_us(results, engine) if entry.startswith("PageToHost/") else None
    if clock:
        for field in ("p50", "p99"):
            if row[field] is not None and row[field] < clock:
                row[field] = None
                row["below_clock"] = True
    return row


def percentile_cell(row, field, clock):
    if row is None:
        return "-"
    if row[field] is None and row["below_clock"]:
        return f"< {fmt(clock, 0)}"
    return fmt(row[field], 0)


def browser_table(results):
    engines = browser_engines(results)
    if not engines:
        return []
    clocks = {engine: page_clock_us(results, engine) for engine in engines}
    rows = {
        engine: {entry: browser_row(results, engine, entry) for entry, _ in browser_entries()}
        for engine in engines
    }
    header = "| Call |"
    rule = "|---|"
    for engine in engines:
        header += f" {engine} calls/s | {engine} mean us | {engine} p50 us |"
        rule += "---:|---:|---:|"
    if len(engines) == 2:
        header += f" {engines[1]} / {engines[0]} (mean) |"
        rule += "---:|"
    table = [header, rule]
    for entry, label in browser_entries():
        if all(rows[engine][entry] is None for engine in engines):
            continue
        line = f"| {label} |"
        for engine in engines:
            row = rows[engine][entry]
            line += (
                f" {fmt(row['rate'] if row else None, 0)} |"
                f" {fmt(row['mean'] * 1e6 if row and row['mean'] else None, 0)} |"
                f" {percentile_cell(row, 'p50', clocks[engine])} |"
            )
        if len(engines) == 2:
            first, second = (rows[engine][entry] for engine in engines)
            line += f" {fmt(ratio(second and second['mean'], first and first['mean']), 2)} |"
        table.append(line)

    table.append("")
    table.append("Each engine against its own floor (the bare script round trip), and its tail:")
    table.append("")
    header = "| Call |"
    rule = "|---|"
    for engine in engines:
        header += f" {engine} mean / evaluate | {engine} p50 / evaluate | {engine} p99 us |"
        rule += "---:|---:|---:|"
    table.extend([header, rule])
    for entry, label in browser_entries():
        if all(rows[engine][entry] is None for engine in engines):
            continue
        line = f"| {label} |"
        for engine in engines:
            row = rows[engine][entry]
            floor = rows[engine]["Evaluate"]
            line += (
                f" {fmt(ratio(row and row['mean'], floor and floor['mean']), 2)} |"
                f" {fmt(ratio(row and row['p50'], floor and floor['p50']), 2)} |"
                f" {percentile_cell(row, 'p99', clocks[engine])} |"
            )
        table.append(line)

    steps = [f"{fmt(clocks[engine], 0)} us in {engine}" for engine in engines if clocks[engine]]
    if steps:
        table.append("")
        table.append(
            f"The page's clock (performance.now) moves in steps of {' and '.join(steps)} here, so "
            "the page-to-host percentiles are good to one step (\"< step\" where the call took less, "
            "and no ratio); the means are exact."
        )
    return table


BIG_SIZES = [(100 << 10, "100 KiB"), (1 << 20, "1 MiB"), (10 << 20, "10 MiB")]


def big_call_rows(results, engine):
    """Per payload size: the engine's channel and wevlin's calls, in seconds per call, with ratios.

    Every wevlin call measured is an echo, carrying the payload into the page
    and out again (or out and back in), so its floor is the channel carrying
    it in (Floor/in) plus carrying it out (Floor/out)."""
    rows = []
    for size, label in BIG_SIZES:
        def mean(entry):
            row = browser_row(results, engine, f"{entry}/{size}")
            return None if row is None else row["mean"]

        floor_in, floor_out = mean("Floor/in"), mean("Floor/out")
        floor = None if floor_in is None or floor_out is None else floor_in + floor_out
        calls = {
            "host to page": mean("HostToPage"),
            "page to host, bridge": mean("PageToHost/bridge"),
            "page to host, wevlin.js": mean("PageToHost/library"),
        }
        peaks = {
            "host to page": results.median(f"Browser/{engine}/HostToPage/{size}", "peak_rss_x"),
            "page to host, bridge": results.median(f"Browser/{engine}/PageToHost/bridge/{size}", "peak_rss_x"),
            "page to host, wevlin.js": results.median(f"Browser/{engine}/PageToHost/library/{size}", "peak_rss_x"),
        }
        rows.append((size, label, floor_in, floor_out, floor, calls, peaks))
    return rows


def big_call_table(results):
    table = []
    for engine in browser_engines(results):
        rows = [row for row in big_call_rows(results, engine) if row[4] is not None]
        if not rows:
            continue
        if table:
            table.append("")
        table.append(f"{engine}: ms per call, and each call over the channel's floor (in + out)")
        table.append("")
        table.append(
            "| Payload | floor in | floor out | floor in + out | host to page | / floor | "
            "page to host, bridge | / floor | page to host, wevlin.js | / floor | "
            "host peak RSS growth / payload (h->p, p->h bridge, p->h wevlin.js) |"
        )
        table.append("|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|---|")
        for size, label, floor_in, floor_out, floor, calls, peaks in rows:
            cells = []
            for key in ("host to page", "page to host, bridge", "page to host, wevlin.js"):
                value = calls[key]
                cells.append(fmt(None if value is None else value * 1e3, 2))
                cells.append(fmt(ratio(value, floor), 2))
            peak_text = ", ".join(fmt(peaks[key], 2) for key in peaks) if size >= (1 << 20) else "-"
            table.append(
                f"| {label} | {fmt(floor_in * 1e3, 2)} | {fmt(floor_out * 1e3, 2)} | {fmt(floor * 1e3, 2)} | "
                f"{' | '.join(cells)} | {peak_text} |"
            )
    return table


def big_call_goal_lines(results):
    """Per engine: the worst big call over its floor, the worst peak, and the small calls' p50s."""
    lines = []
    for engine in browser_engines(results):
        worst = None
        worst_peak = None
        for size, label, _, _, floor, calls, peaks in big_call_rows(results, engine):
            for key, value in calls.items():
                over = ratio(value, floor)
                if over is not None and (worst is None or over > worst[0]):
                    worst = (over, f"{key}, {label}")
                peak = peaks[key]
                if size >= (1 << 20) and peak is not None and (worst_peak is None or peak > worst_peak[0]):
                    worst_peak = (peak, f"{key}, {label}")
        if worst is not None:
            lines.append(
                f"- Big calls <= 1.5x the engine's own channel for the same bytes ({engine}, 100 KiB to "
                f"10 MiB, both directions): worst {fmt(worst[0], 2)}x ({worst[1]}): {verdict(worst[0] <= 1.5)}."
            )
        if worst_peak is not None:
            lines.append(
                f"- Host's peak resident set during a call < 3x the payload ({engine}, 1 MiB and 10 MiB): "
                f"worst {fmt(worst_peak[0], 2)}x ({worst_peak[1]}): {verdict(worst_peak[0] < 3.0)}."
            )
        evaluate = browser_row(results, engine, "Evaluate")
        host_to_page = browser_row(results, engine, "HostToPage/100")
        bridge = browser_row(results, engine, "PageToHost/bridge/100")
        if evaluate and host_to_page and bridge and evaluate["p50"]:
            parts = [f"host to page {fmt(ratio(host_to_page['p50'], evaluate['p50']), 2)}x"]
            ratios = [ratio(host_to_page["p50"], evaluate["p50"])]
            if bridge["p50"] is None and bridge["below_clock"]:
                parts.append(
                    f"page to host below the page clock's {fmt(page_clock_us(results, engine), 0)} us step "
                    f"(mean {fmt(ratio(bridge['mean'], evaluate['mean']), 2)}x)"
                )
                ratios.append(ratio(bridge["mean"], evaluate["mean"]))
            else:
                parts.append(f"page to host {fmt(ratio(bridge['p50'], evaluate['p50']), 2)}x")
                ratios.append(ratio(bridge["p50"], evaluate["p50"]))
            ok = all(value is not None and value <= 1.2 for value in ratios)
            lines.append(
                f"- Small calls (100 B) <= 1.2x a bare evaluate round trip, p50 ({engine}): "
                f"{', '.join(parts)}: {verdict(ok)}."
            )
    return lines


def verdict(ok):
    return "met" if ok else "NOT met"


def browser_floor_lines(results):
    """Per engine: how a page-to-host call (100 B, bridge) compares with that engine's evaluate floor."""
    lines = []
    for engine in browser_engines(results):
        evaluate = browser_row(results, engine, "Evaluate")
        bridge = browser_row(results, engine, "PageToHost/bridge/100")
        if not evaluate or not bridge or not evaluate["mean"]:
            continue
        by_mean = ratio(bridge["mean"], evaluate["mean"])
        by_median = ratio(bridge["p50"], evaluate["p50"])
        if by_median is None and bridge["below_clock"]:
            median_text = f"p50 below the page clock's {fmt(page_clock_us(results, engine), 0)} us step"
            worst = by_mean
        else:
            median_text = f"p50 {fmt(by_median, 2)}x"
            worst = None if by_mean is None or by_median is None else max(by_mean, by_median)
        lines.append((engine, by_mean, median_text, worst))
    return lines


def slowest_against_nlohmann(results, group, subjects):
    """Per operation (Read, Write): the lowest rate ratio of wevlin to nlohmann-json, and its subject."""
    slowest = {}
    for subject in subjects:
        for operation in ("Read", "Write"):
            value = ratio(
                results.median(f"{group}/{operation}/{subject}/wevlin", "bytes_per_second"),
                results.median(f"{group}/{operation}/{subject}/nlohmann", "bytes_per_second"),
            )
            if value is not None and (operation not in slowest or value < slowest[operation][0]):
                slowest[operation] = (value, subject)
    return slowest


def goals(results):
    lines = []

    def verdict(ok):
        return "met" if ok else "NOT met"

    # 1. Every document, read and written, at least twice as fast as nlohmann-json.
    slowest = slowest_against_nlohmann(results, "Json", CORPUS + GENERATED)
    if "Read" in slowest and "Write" in slowest:
        read, write = slowest["Read"], slowest["Write"]
        lines.append(
            f"- JSON DOM >= 2.0x nlohmann-json on every document, reading and writing: slowest read "
            f"{fmt(read[0], 2)}x ({read[1]}), slowest write {fmt(write[0], 2)}x ({write[1]}): "
            f"{verdict(read[0] >= 2.0 and write[0] >= 2.0)}."
        )
    # 2. Per-byte cost of the 100 times larger generated documents.
    growth = []
    for kind in ("flat", "objects", "escaped", "coordinates"):
        for direction in ("Read", "Write"):
            value = ratio(
                per_byte_ns(results, direction, f"{kind}_1m"),
                per_byte_ns(results, direction, f"{kind}_10k"),
            )
            if value is not None:
                growth.append((value, f"{direction.lower()} {kind}_1m"))
    if growth:
        worst = max(growth)
        lines.append(
            f"- 100x larger generated document <= 1.2x per-byte cost, reading and writing: worst "
            f"{fmt(worst[0], 2)} ({worst[1]}): {verdict(worst[0] <= 1.2)}."
        )
    # 3. Peak heap of reading, against nlohmann-json's.
    heap = []
    for document in CORPUS + GENERATED:
        value = ratio(peak_heap(results, document, "wevlin"), peak_heap(results, document, "nlohmann"))
        if value is not None:
            heap.append((value, document))
    if heap:
        worst = max(heap)
        within = sum(1 for value, _ in heap if value <= 1.0)
        lines.append(
            f"- Peak heap of reading <= nlohmann-json's on every document: worst {fmt(worst[0], 2)}x "
            f"({worst[1]}), {within} of {len(heap)} documents within: {verdict(worst[0] <= 1.0)}."
        )
    # 4. Data contracts against nlohmann-json's typed from_json and to_json.
    contract = slowest_against_nlohmann(results, "Contract", ["refresh_10000", "session_1000"])
    if "Read" in contract:
        read = contract["Read"]
        lines.append(
            f"- Data contracts read >= 1.5x nlohmann-json's typed from_json: slowest "
            f"{fmt(read[0], 2)}x ({read[1]}): {verdict(read[0] >= 1.5)}."
        )
    if "Write" in contract:
        write = contract["Write"]
        lines.append(
            f"- Data contracts written >= 2x nlohmann-json's typed to_json: slowest "
            f"{fmt(write[0], 2)}x ({write[1]}): {verdict(write[0] >= 2.0)}."
        )
    deep = [
        ratio(per_byte_ns(results, direction, "nested_1000"), per_byte_ns(results, direction, "flat_10k"))
        for direction in ("Read", "Write")
    ]
    deep = [value for value in deep if value is not None]
    if deep:
        lines.append(
            f"- Depth 1000 <= 2x the per-byte cost of flat: worst {fmt(max(deep), 2)}: "
            f"{verdict(max(deep) <= 2.0)}."
        )
    encode = results.median(f"Base64/Encode/{64 << 10}", "bytes_per_second")
    decode = results.median(f"Base64/Decode/{64 << 10}", "bytes_per_second")
    if encode and decode:
        lines.append(
            f"- Base64 >= 1 GB/s at 64 KiB: encode {fmt(encode / 1e9, 2)} GB/s, decode "
            f"{fmt(decode / 1e9, 2)} GB/s: {verdict(min(encode, decode) >= 1e9)}."
        )
    hundred = results.seconds("Dispatch/HostMethod/services:100")
    if hundred is not None:
        lines.append(
            f"- Library cost per call < 2 us with 100 services: {fmt(hundred * 1e9, 0)} ns "
            f"(10 services: {fmt((results.seconds('Dispatch/HostMethod/services:10') or 0) * 1e9, 0)} ns, "
            f"10,000: {fmt((results.seconds('Dispatch/HostMethod/services:10000') or 0) * 1e9, 0)} ns): "
            f"{verdict(hundred < 2e-6)}."
        )
    # 6. Dispatch with many services.
    many = results.seconds("Dispatch/HostMethod/services:10000")
    if many is not None:
        lines.append(
            f"- Dispatch < 1 us per call with 10,000 services: {fmt(many * 1e9, 0)} ns: "
            f"{verdict(many < 1e-6)}."
        )
    lines.extend(big_call_goal_lines(results))
    for engine, by_mean, median_text, worst in browser_floor_lines(results):
        lines.append(
            f"- Page to host <= 2x a bare evaluate ({engine}, 100 B, bridge): mean {fmt(by_mean, 2)}x, "
            f"{median_text}: {verdict(worst is not None and worst <= 2.0)}."
        )
    return lines


def context_lines(results):
    lines = []
    for context in results.contexts:
        if not context:
            continue
        load = ", ".join(f"{value:.2f}" for value in context.get("load_avg", []))
        lines.append(
            f"- {context.get('executable', '?')}: {context.get('date', '?')}, "
            f"{context.get('num_cpus', '?')} CPUs at {context.get('mhz_per_cpu', '?')} MHz, "
            f"load average at start {load or '?'}"
        )
    return lines


def markdown(results):
    sections = [
        ("Goals", goals(results)),
        ("JSON reading (JsonValue::FromJsonString, DOM parse)", json_tables(results, "Read")),
        ("JSON writing (JsonValue::ToJsonString, DOM write)", json_tables(results, "Write")),
        ("Per-byte cost as documents grow (ratio of ns per byte)", linearity_table(results)),
        ("Peak heap while reading (bytes held, the finished tree included)", heap_table(results)),
        ("Data contracts", contract_table(results)),
        ("Base64", base64_table(results)),
        ("Dispatch (library cost per call)", dispatch_table(results)),
        ("Many host control instances", scale_table(results)),
        ("Through the browser (ChromiumWebControl and WebKitGtkWebControl)", browser_table(results)),
        ("Big payloads through the browser, against the engine's own channel", big_call_table(results)),
        ("Runs", context_lines(results)),
    ]
    out = []
    for title, rows in sections:
        if not rows:
            continue
        out.append(f"### {title}")
        out.append("")
        out.extend(rows)
        out.append("")
    return "\n".join(out)


def update_markdown(path, text):
    if path == "-":
        sys.stdout.write(text)
        return
    with open(path, encoding="utf-8") as stream:
        document = stream.read()
    begin = document.find(BEGIN)
    end = document.find(END)
    if begin < 0 or end < begin:
        raise SystemExit(f"{path}: no '{BEGIN}' ... '{END}' section to replace")
    document = document[: begin + len(BEGIN)] + "\n\n" + text + "\n" + document[end:]
    with open(path, "w", encoding="utf-8") as stream:
        stream.write(document)


def chart(results, path):
    import matplotlib

    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    engines = browser_engines(results)
    rows = 3 if engines else 2
    figure = plt.figure(figsize=(15, 5 * rows))
    grid = figure.add_gridspec(rows, 2)
    axes = [[figure.add_subplot(grid[row, column]) for column in range(2)] for row in range(2)]
    colors = {"wevlin": "#2b6cb0", "nlohmann": "#dd6b20", "rapidjson": "#718096"}

    for axis, direction in ((axes[0][0], "Read"), (axes[0][1], "Write")):
        documents = [
            document
            for document in CORPUS + GENERATED
            if results.has(f"Json/{direction}/{document}/wevlin")
        ]
        width = 0.27
        for index, library in enumerate(LIBRARIES):
            values = [
                mb(results.median(f"Json/{direction}/{document}/{library}", "bytes_per_second")) or 0
                for document in documents
            ]
            positions = [position + (index - 1) * width for position in range(len(documents))]
            axis.bar(positions, values, width, label=library, color=colors[library])
        axis.set_xticks(range(len(documents)))
        axis.set_xticklabels(documents, rotation=45, ha="right", fontsize=8)
        axis.set_ylabel("MB/s of input document (CPU time)")
        axis.set_title(f"JSON {direction.lower()} (DOM), median")
        axis.legend(fontsize=8)
        axis.grid(axis="y", alpha=0.3)

    axis = axes[1][0]
    labels = []
    series = {"Encode": [], "Decode": [], "Memcpy": []}
    for size, label in ((1 << 10, "1 KiB"), (64 << 10, "64 KiB"), (16 << 20, "16 MiB")):
        if not results.has(f"Base64/Encode/{size}"):
            continue
        labels.append(label)
        for kind in series:
            rate = results.median(f"Base64/{kind}/{size}", "bytes_per_second")
            series[kind].append((rate or 0) / 1e9)
    if labels:
        width = 0.27
        for index, (kind, values) in enumerate(series.items()):
            positions = [position + (index - 1) * width for position in range(len(labels))]
            axis.bar(positions, values, width, label=kind if kind != "Memcpy" else "memcpy (ceiling)")
        axis.set_yscale("log")
        axis.set_xticks(range(len(labels)))
        axis.set_xticklabels(labels)
        axis.axhline(1.0, color="red", linestyle="--", linewidth=1, label="goal 1 GB/s")
        axis.set_ylabel("GB/s of raw data (log scale)")
        axis.set_title("Base64 beside memcpy, median")
        axis.legend(fontsize=8)
        axis.grid(axis="y", alpha=0.3)

    axis = axes[1][1]
    names = []
    values = []
    for services in (10, 100, 10000):
        seconds = results.seconds(f"Dispatch/HostMethod/services:{services}")
        if seconds is not None:
            names.append(f"tavoHostMethod\n{services:,} services")
            values.append(seconds * 1e9)
    seconds = results.seconds("Dispatch/WebMethod")
    if seconds is not None:
        names.append("InvokeWebMethod\n(answering control)")
        values.append(seconds * 1e9)
    if values:
        bars = axis.bar(range(len(values)), values, color="#2b6cb0")
        axis.bar_label(bars, labels=[f"{value:,.0f} ns" for value in values], fontsize=8)
        axis.axhline(2000, color="red", linestyle="--", linewidth=1, label="goal 2 us")
        axis.set_xticks(range(len(values)))
        axis.set_xticklabels(names, fontsize=8)
        axis.set_ylabel("ns per call (CPU)")
        axis.set_title("Library cost per call, median", fontsize=10)
        axis.legend(fontsize=8, loc="upper left")
        axis.grid(axis="y", alpha=0.3)

    if engines:
        # Both engines side by side, per call: the mean time (log scale, the
        # payloads span three orders of magnitude).
        axis = figure.add_subplot(grid[2, :])
        entries = [
            (entry, label)
            for entry, label in browser_entries()
            if any(results.has(f"Browser/{engine}/{entry}") for engine in engines)
        ]
        engine_colors = {"chromium": "#2b6cb0", "webkitgtk": "#38a169"}
        width = 0.8 / len(engines)
        for index, engine in enumerate(engines):
            values = []
            for entry, _ in entries:
                row = browser_row(results, engine, entry)
                values.append(row["mean"] * 1e6 if row and row["mean"] else 0)
            positions = [
                position + (index - (len(engines) - 1) / 2) * width for position in range(len(entries))
            ]
            bars = axis.bar(positions, values, width, label=engine, color=engine_colors.get(engine))
            axis.bar_label(bars, labels=[f"{value:,.0f}" if value else "" for value in values], fontsize=7)
        axis.set_yscale("log")
        axis.set_xticks(range(len(entries)))
        axis.set_xticklabels(
            [label.replace(", ", "\n", 1).replace(" (", "\n(", 1) for _, label in entries], fontsize=8
        )
        axis.set_ylabel("us per call (mean, wall clock; log scale)")
        axis.set_title("Through the browser: mean time per call on each web control (median of the repetitions)", fontsize=10)
        axis.legend(fontsize=8, loc="upper left")
        axis.grid(axis="y", alpha=0.3)

    figure.suptitle("wevlin benchmarks (2 cores; see docs/performance.md)")
    figure.tight_layout()
    figure.savefig(path, dpi=90)


def check(results):
    failed = {
        name: message
        for name, message in results.errors.items()
        if not message.startswith("missing ")
    }
    for name, message in sorted(results.errors.items()):
        print(f"{'FAILED' if name in failed else 'skipped'}: {name}: {message}")
    if not results.runs:
        print("no benchmark results")
        return 1
    return 1 if failed else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("results", nargs="+", help="JSON files written by the benchmark programs")
    parser.add_argument("--markdown", help="file whose results section to replace, or - for stdout")
    parser.add_argument("--chart", help="PNG file to draw")
    parser.add_argument("--check", action="store_true", help="fail on benchmark errors")
    arguments = parser.parse_args()
    results = Results(arguments.results)
    status = 0
    if arguments.check:
        status = check(results)
    if arguments.markdown:
        update_markdown(arguments.markdown, markdown(results))
    if arguments.chart:
        chart(results, arguments.chart)
    return status


if __name__ == "__main__":
    sys.exit(main())
