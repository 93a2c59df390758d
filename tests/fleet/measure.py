#!/usr/bin/env python3
"""What many machines cost one Prometheus, measured: series, memory, processor time, disk, and the time of the rules.

usage: measure.py SOURCE_FOLDER SCRATCH_FOLDER METRICS_FILE MACHINES SECONDS

Runs in namespaces of its own. Every machine shows the same metrics, under its own name.
"""
import pathlib
import random
import subprocess
import sys
import time

from monitoring import EXPORTER, PROMETHEUS, bring_up_loopback, samples, start_exporter, start_prometheus

INTERVAL = 5


def value(query):
    found = samples(query)
    return float(found[0]["value"][1]) if found else 0.0


def disk(scratch, text):
    """Bytes on disk of two hours of ten machines, a sample a minute, and how many samples those are."""
    samples_of_one = [line.rsplit(" ", 1) for line in text.splitlines() if not line.startswith("#")]
    start, minutes, machines = 1_700_000_000 // 7200 * 7200, 120, 10
    with open(scratch / "openmetrics", "w", encoding="utf-8") as file:
        for name, number in samples_of_one:
            labels = name[name.index("{") + 1 : -1] + "," if "{" in name else ""
            for machine in range(machines):
                series = f'{name.split("{")[0]}{{{labels}instance="db{machine}:9100",job="node"}}'
                for minute in range(minutes):
                    # what differs from run to run: how long it took, and how warm it is
                    shift = random.random() / 1000 if "duration" in name else random.choice((0, 0, 1)) if "celsius" in name else 0
                    file.write(f"{series} {float(number) + shift} {start + 60 * minute}\n")
        file.write("# EOF\n")
    subprocess.run(["promtool", "tsdb", "create-blocks-from", "openmetrics", scratch / "openmetrics", scratch / "blocks"],
                   check=True, capture_output=True)
    size = sum(file.stat().st_size for file in (scratch / "blocks").rglob("*") if file.is_file())
    return size, len(samples_of_one) * machines * minutes


def main():
    source, scratch, metrics, machines, seconds = sys.argv[1:]
    source, scratch, machines, seconds = pathlib.Path(source), pathlib.Path(scratch), int(machines), int(seconds)
    pathlib.Path("/var/lib/prometheus/node-exporter/zeb.prom").write_bytes(pathlib.Path(metrics).read_bytes())
    size, count = disk(scratch, pathlib.Path(metrics).read_text(encoding="utf-8"))
    print(f"disk {size / count:.2f} bytes for each of {count} samples of two hours")
    bring_up_loopback()
    start_exporter(scratch)
    to_the_exporter = [{"source_labels": ["__address__"], "target_label": "instance"},
                       {"target_label": "__address__", "replacement": EXPORTER}]
    node = {
        "job_name": "node",
        "static_configs": [{"targets": [f"db{number}:9100" for number in range(machines)]}],
        "relabel_configs": to_the_exporter,
        "metric_relabel_configs": [{"source_labels": ["__name__"], "regex": "zeb_.*|node_textfile_.*", "action": "keep"}],
    }
    itself = {"job_name": "itself", "static_configs": [{"targets": [PROMETHEUS]}]}
    configuration = {"global": {"scrape_interval": f"{INTERVAL}s", "evaluation_interval": f"{INTERVAL}s"},
                     "scrape_configs": [node, itself]}
    start_prometheus(scratch, configuration, (source / "share/zebstat/prometheus/zeb.rules.yml").read_text())
    time.sleep(seconds)
    series = value("prometheus_tsdb_head_series")
    taken = value("prometheus_tsdb_head_samples_appended_total")
    answering = value('sum(up{job="node"})')
    print(f"machines {machines}, of which {answering:.0f} answer")
    print(f"series {series:.0f}, {series / machines:.1f} for each machine")
    print(f"samples {taken:.0f}")
    for what, query in (("resident memory", "process_resident_memory_bytes"), ("heap in use", "go_memstats_heap_inuse_bytes")):
        print(f"{what} {value(query) / 1e6:.1f} MB")
    print(f"processor time {value('process_cpu_seconds_total'):.1f} s in {seconds} s")
    for group in samples("prometheus_rule_group_last_duration_seconds"):
        print(f"rules {group['metric']['rule_group'].split(';')[1]} {float(group['value'][1]) * 1000:.1f} ms")


main()
