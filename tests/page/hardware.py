"""The simulated hardware on which the page is looked at, and runs of zebstat on it."""

import json
import pathlib
import re
import subprocess
import tempfile

CONNECTORS = [{"location": "external", "name": "Port 0 - 3"}, {"location": "internal", "name": "Port 4 - 7"}]


def controller(**more):
    return {"images": [{"name": "APP", "version": "5.10.2-0044"}], "cacheBackup": {}, "patrolRead": {"mode": "automatic"}, **more}


def shelf(device_id, first_device, **more):
    """An enclosure of 24 bays, all sensors well, and 24 drives: two RAID6 groups of eleven and two hot spares."""
    enclosure = {
        "deviceId": device_id,
        "slots": 24,
        "product": "Pellucor Bay 24",
        "powerSupplies": [{}, {}],
        "fans": [{"rpm": 4850}, {"rpm": 5020}],
        "temperatures": [{"celsius": 27}],
        "alarms": [{}],
        "electronics": [{}],
        "voltages": [{"hundredths": 508}, {"hundredths": -1190}],
        **more,
    }
    drives = [{"slot": slot, "enclosure": device_id, "deviceId": first_device + slot} for slot in range(24)]
    return enclosure, drives


def array(ref, first_device, count):
    return {"ref": ref, "drives": [{"deviceId": first_device + i} for i in range(count)]}


def two_shelves():
    first, drives = shelf(62, 100)
    second, more = shelf(63, 200, connector=1)
    arrays = [array(0, 100, 11), array(1, 111, 11), array(2, 200, 11), array(3, 211, 11)]
    lds = [{"id": i, "name": f"POOL{i}", "level": 6, "spans": [{"array": i}], "osDevices": [f"/dev/sd{'bcde'[i]}"]} for i in range(4)]
    spares = [{"drive": {"deviceId": device}} for device in (122, 123, 222, 223)]
    return controller(connectors=CONNECTORS, enclosures=[first, second], drives=drives + more, arrays=arrays, lds=lds, spares=spares, maxPds=64)


def healthy():
    enclosure, drives = shelf(252, 8)
    return controller(
        connectors=CONNECTORS,
        enclosures=[{**enclosure, "slots": 12}],
        drives=drives[:8],
        arrays=[array(0, 8, 5), array(1, 13, 2)],
        lds=[
            {"id": 0, "name": "OS", "level": 5, "spans": [{"array": 0, "sizeGB": 100}], "osInstalled": True, "osDevices": ["/dev/sda"]},
            {"id": 1, "name": "DATA", "level": 5, "spans": [{"array": 0, "startBlock": 209715200, "sizeGB": 120}], "osDevices": ["/dev/sdb"]},
            {"id": 2, "name": "LOGS", "level": 1, "spans": [{"array": 1}]},
        ],
        spares=[{"drive": {"deviceId": 15}}],
    )


def rebuilding():
    hardware = healthy()
    hardware["drives"][2]["rebuild"] = {"percent": 37, "elapsed": 1260}
    hardware["drives"][6]["copyback"] = {"percent": 80.5, "elapsed": 600}
    hardware["lds"][2]["check"] = {"percent": 12, "elapsed": 65535}
    return hardware


def failed():
    hardware = healthy()
    hardware["drives"][5].update(state="failed", mediaErrors=211, otherErrors=7, predictiveFailures=3, temperature=71)
    hardware["drives"][6].update(state="offline")
    hardware["arrays"][0]["drives"][1] = None
    hardware["drives"][1].update(foreign=True, state="good", temperature=57)
    hardware["enclosures"][0].update(
        fans=[{"rpm": 0, "status": "critical"}, {"status": "notInstalled"}, {"rpm": 9990, "status": "unrecoverable"}],
        temperatures=[{"celsius": 97, "status": "critical"}, {"celsius": -7, "status": "nonCritical"}],
        powerSupplies=[{"status": "unknown"}, {"status": "notAvailable"}, {"status": "unsupported"}],
    )
    hardware["cacheBackup"] = {"status": 0x0D41, "voltage": 2900, "temperature": 61, "remainingCapacity": 90}
    hardware["memoryCorrectableErrors"] = 3
    hardware["memoryUncorrectableErrors"] = 1
    return hardware


# Each fits into its field: 16 bytes for a product, a connector and an LD's name, 80 for a controller's.
ATTACK = "<script>alert(1)"
HOSTILE_TEXTS = [ATTACK, "</style><svg/on=", "\"'><img src=x>", "&lt;b&gt;&amp;", "]]><!--", "a\x00hidden", "\x1b[2J\n\t\x07\x85", "\xff\xc3\x28\xf0\x9f", "\xe2\x80\xae>evil<"]


def hostile():
    hardware = healthy()
    hardware.update(
        product='"><script src="//evil.example/x.js"></script><img src=x onerror=alert(1)>',
        serial="'><b onclick=a()>",
        packageVersion="http://evil.example/<link rel=stylesheet href=//evil.example>",
    )
    hardware["images"] = [{"name": "APP<i>", "version": ATTACK, "buildDate": ATTACK, "buildTime": ATTACK}]
    hardware["driver"] = {"name": ATTACK, "version": ATTACK, "releaseDate": ATTACK}
    hardware["enclosures"][0].update(vendor="<b>\"'&", product=ATTACK, revision="<u>")
    hardware["connectors"] = [{"location": "external", "name": ATTACK}]
    for drive, text in zip(hardware["drives"], HOSTILE_TEXTS):
        drive.update(product=text, vendor="<x y=z>", revision="'\"<>")
    for ld, text in zip(hardware["lds"], ("<script>alert(2)", "\xe2\x80\xae\xc2\x9b<&\"'\xff", "W" * 16)):
        ld.update(name=text, osDevices=["/dev/<script>x</script>"], state="degraded")
    return hardware


def outside(count):
    """Drives without an enclosure, in groups of up to 32."""
    arrays, lds = [], []
    for ref, first in enumerate(range(0, count, 32)):
        arrays.append({"ref": ref, "drives": list(range(first, min(first + 32, count)))})
        lds.append({"id": ref, "name": f"POOL{ref}", "level": 6, "spans": [{"array": ref}]})
    return controller(drives=[{"repeat": count}], arrays=arrays, lds=lds, maxPds=256)


# On four controllers: single objects, then parts of them, then a whole controller, then every list.
UNREADABLE = [
    {"ctrl": 1, "type": 2, "cmd": 0, "nth": 3, "status": "0x09"},
    {"ctrl": 1, "type": 3, "cmd": 0, "nth": 1, "status": "0x54"},
    {"ctrl": 1, "type": 5, "cmd": 0, "status": "0x0C"},
    {"ctrl": 2, "type": 8, "status": "0x0C"},
    {"ctrl": 2, "type": 4, "cmd": 8, "status": "0x0C"},
    {"ctrl": 2, "type": 1, "cmd": 1, "status": "0x0C"},
    {"ctrl": 3, "type": 1, "cmd": 0, "status": "0x0C"},
    {"ctrl": 4, "type": 1, "cmd": 4, "status": "0x0C"},
    {"ctrl": 4, "type": 1, "cmd": 5, "status": "0x0C"},
    {"ctrl": 4, "type": 1, "cmd": 13, "status": "0x0C"},
    {"ctrl": 4, "type": 4, "cmd": 0, "status": "0x0C"},
]

# name: (controllers, faults)
SCENARIOS = {
    "built in": (None, []),
    "healthy": ([healthy()], []),
    "degraded and rebuilding": ([rebuilding()], []),
    "failed": ([failed()], []),
    "two enclosures of 24 bays": ([two_shelves()], []),
    "no enclosure": ([outside(5)], []),
    "255 drives": ([outside(255)], []),
    "hostile texts": ([hostile()], []),
    "unreadable parts": ([{"id": number, **rebuilding()} for number in (1, 2, 3, 4)], UNREADABLE),
}


def kept_scenarios(folder):
    """The scenarios of a folder that zebstat serves, in the form of SCENARIOS."""
    scenarios = {}
    for file in sorted(pathlib.Path(folder).glob("*.json")):
        scenario = json.loads(file.read_text(encoding="utf-8"))
        if 1 <= len(scenario["controllers"]) <= 4:
            scenarios[file.stem] = (scenario["controllers"], scenario.get("faults", []))
    return scenarios


def shown(text):
    """A text of the hardware as the page shows it: control characters as blanks, what turns the direction of words replaced."""
    text = re.sub("[\x00-\x1f\x7f-\x9f]", " ", text)
    return re.sub("[\u200e\u200f\u202a-\u202e\u2066-\u2069\u061c]", "\ufffd", text)


def run(build, name, *arguments):
    """What zebstat of that build folder prints on a scenario, as bytes, and how it ended."""
    controllers, faults = SCENARIOS[name]
    environment = {"PATH": "/usr/bin:/bin", "LD_LIBRARY_PATH": f"{build}/simulator", "ZEBSIM_FAULTS": json.dumps(faults)}
    with tempfile.TemporaryDirectory() as folder:
        if controllers:
            environment["ZEBSIM_SCENARIO"] = f"{folder}/scenario.json"
            with open(environment["ZEBSIM_SCENARIO"], "w", encoding="utf-8") as file:
                json.dump({"controllers": controllers}, file)
        done = subprocess.run([f"{build}/zebstat/zebstat", *arguments], env=environment, capture_output=True, check=False)
    if done.returncode not in (0, 1, 2, 4):
        raise SystemExit(f"FAILED: zebstat {' '.join(arguments)} on '{name}' ended with {done.returncode}: {done.stderr.decode(errors='replace')}")
    return done
