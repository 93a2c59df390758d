"""The node exporter and Prometheus of the distribution, started in a network that is empty but for them."""
import fcntl
import json
import socket
import struct
import subprocess
import urllib.error
import urllib.parse
import urllib.request

EXPORTER = "127.0.0.1:9100"
PROMETHEUS = "127.0.0.1:9090"


def bring_up_loopback():
    """Makes 127.0.0.1 reachable in a network that is new and empty."""
    siocsifflags, up_and_running = 0x8914, 0x41
    with socket.socket() as any_socket:
        fcntl.ioctl(any_socket, siocsifflags, struct.pack("16sH22x", b"lo", up_and_running))


def start(log_file, *command):
    """Starts a program whose messages go to a file."""
    with open(log_file, "wb") as log:
        return subprocess.Popen(command, stdout=log, stderr=log, stdin=subprocess.DEVNULL)


def start_exporter(scratch):
    """A node exporter that reads text files alone, from where the distribution's does."""
    return start(scratch / "exporter.log", "prometheus-node-exporter", "--collector.disable-defaults", "--collector.textfile",
                 f"--web.listen-address={EXPORTER}")


def start_prometheus(scratch, configuration, rules):
    """Prometheus with this configuration and these rules, its data in the folder scratch/tsdb."""
    (scratch / "zeb.rules.yml").write_text(rules)
    (scratch / "prometheus.yml").write_text(json.dumps({"rule_files": ["zeb.rules.yml"]} | configuration))
    return start(scratch / "prometheus.log", "prometheus", f"--config.file={scratch}/prometheus.yml",
                 f"--storage.tsdb.path={scratch}/tsdb", f"--web.listen-address={PROMETHEUS}")


def ask(path, **arguments):
    """The data that Prometheus answers with; nothing while it does not answer."""
    query = urllib.parse.urlencode(arguments)
    try:
        with urllib.request.urlopen(f"http://{PROMETHEUS}/api/v1/{path}?{query}", timeout=5) as answer:
            return json.load(answer)["data"]
    except (urllib.error.URLError, ConnectionError, TimeoutError):
        return None


def samples(query):
    """What a query finds now."""
    data = ask("query", query=query)
    return data["result"] if data else []
