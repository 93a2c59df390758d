#!/usr/bin/env python3
"""Takes a drive offline and lets it rebuild, and looks at what Prometheus says meanwhile.

usage: alerts.py SOURCE_FOLDER HOST_FOLDER SCRATCH_FOLDER

Runs in namespaces of its own, where the network is empty and what is started ends with the script. Everything stands as
shipped but for the rules' patience and Prometheus's intervals, which are of seconds instead of minutes.
"""
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import threading
import time

from monitoring import EXPORTER, ask, bring_up_loopback, samples, start_exporter, start_prometheus

SOURCE, HOST, SCRATCH = map(pathlib.Path, sys.argv[1:])
RULES = SOURCE / "share/zebstat/prometheus/zeb.rules.yml"
SERVICE = SOURCE / "share/zebstat/systemd/zebstat-metrics.service.in"
PATIENCE = 1  # seconds, in place of each "for"


def on_host(*command, answer=None):
    return subprocess.run([HOST / "run", *command], input=answer, capture_output=True, text=True, timeout=30, check=False)


class Timer(threading.Thread):
    """Starts what the service starts, twice a second."""

    def __init__(self):
        super().__init__(daemon=True)
        text = SERVICE.read_text()
        program, *arguments = shlex.split(re.search(r"^ExecStart=(.*)", text, re.M)[1])
        self.command = [pathlib.Path(program).name, *arguments]
        self.file = pathlib.Path(arguments[-1])
        self.good = {0, *map(int, re.search(r"^SuccessExitStatus=(.*)", text, re.M)[1].split())}
        self.failures = []
        self.stopped = threading.Event()

    def run(self):
        while not self.stopped.wait(0.5):
            result = on_host(*self.command)
            if result.returncode not in self.good:
                self.failures.append(result)


def start_monitoring():
    rules = re.sub(r"\bfor: \w+", f"for: {PATIENCE}s", RULES.read_text())
    rules = re.sub(r"\binterval: \w+", "interval: 1s", rules)
    configuration = {
        "global": {"scrape_interval": "500ms", "scrape_timeout": "500ms", "evaluation_interval": "500ms"},
        "scrape_configs": [{"job_name": "node", "static_configs": [{"targets": [EXPORTER]}]}],
    }
    start_exporter(SCRATCH)
    start_prometheus(SCRATCH, configuration, rules)


def alerts():
    """All alerts that fire or are about to, by name and object, with their texts."""
    data = ask("alerts") or {"alerts": []}
    return {
        (a["labels"]["alertname"], a["labels"].get("logical_drive", a["labels"].get("slot", "")), a["state"]): a["annotations"]
        for a in data["alerts"]
    }


def fail(what):
    print(f"{what}\nalerts: {json.dumps([[*key, text] for key, text in alerts().items()], indent=1)}")
    print(on_host("zebstat", "check").stdout)
    for log in SCRATCH.glob("*.log"):
        print(f"--- {log.name}\n{log.read_text()[-2000:]}")
    sys.exit(1)


def wait_for(what, condition, seconds=20):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            fail(f"not within {seconds} s: {what}")
        time.sleep(0.1)
    print(f"{time.monotonic() - BEGIN:5.1f} s  {what}")


def zebcli(*arguments):
    result = on_host("zebcli", *arguments, answer="Y\n")
    if result.returncode != 0 or "Error" in result.stdout:
        fail(f"zebcli {arguments}: {result.stdout}{result.stderr}")


def main():
    bring_up_loopback()
    start_monitoring()
    timer = Timer()
    timer.start()

    wait_for("Prometheus knows the LD as optimal", lambda: samples('zeb_logical_drive_state{state="optimal"} == 1'))
    time.sleep(3 * PATIENCE)
    if alerts():
        fail("alerts, though all is well")
    rules = [rule for group in ask("rules")["groups"] for rule in group["rules"]]
    if len(rules) != len(re.findall(r"- (?:alert|record):", RULES.read_text())) or any(r["health"] != "ok" for r in rules):
        fail(f"rules that are not well: {rules}")

    degraded = ("ZebLogicalDriveDegraded", "0", "firing")
    offline = ("ZebPhysicalDriveFailed", "0", "firing")
    zebcli("-pdoffline", "-pd[:0]", "-a0")
    wait_for("the LD is degraded and its drive offline", lambda: alerts().keys() == {degraded, offline})
    texts = alerts()
    if texts[degraded]["summary"] != f"{EXPORTER}: LD0 of controller 0 is degraded" or "'C1', raid1 in RG0" not in texts[degraded]["description"]:
        fail("the text of the alert")

    zebcli("-pdrbld", "-start", "-pd[:0]", "-a0")
    wait_for("the drive rebuilds, and the LD is degraded still",
             lambda: samples("zeb_operation_progress_ratio") and alerts().keys() == {degraded})
    wait_for("all is well after the rebuild", lambda: not alerts(), 40)
    if on_host("zebstat", "check").returncode != 0:
        fail("zebstat does not find all well")

    timer.stopped.set()
    timer.join()
    if timer.failures:
        fail(f"runs of the service failed: {timer.failures}")
    long_ago = time.time() - 3600
    os.utime(timer.file, (long_ago, long_ago))
    wait_for("the metrics are told to be stale", lambda: ("ZebCollectionStale", "", "firing") in alerts())


BEGIN = time.monotonic()
main()
