#!/usr/bin/env python3
"""Makes site-day.ndjson, a working day of mixed traffic from the building site of the samples.

    make_site_day.py            writes the file
    make_site_day.py --check    exit status 1, and a line that says so, when the file is not current

The day is made in these steps; the same script always makes the same bytes:

  (1) the shapes that the platform gives its records
  (2) the readings of each device, every so many minutes
  (3) what happens: shifts, batches, pumps, gusts and their alarms, commands
  (4) everything in the order of time, then the damage: a few records that the codec must refuse
  (5) one message of the chain itself, without a path, which passes through
"""

import json
import pathlib
import random
import sys

OUTPUT = pathlib.Path(__file__).with_name("site-day.ndjson")
SEED = 20240514

SITE = "https://quaynorth.ostrovia.example/"
NAMES = {
    "1000": "Quay North",
    "1001": "Tower crane K1",
    "1002": "Tower crane K2",
    "1010": "Concrete plant M1",
    "1020": "Drainage pump P1",
    "1021": "Drainage pump P2",
    "1030": "Concrete pump B1",
    "1040": "Pump gateway G1",
    "1101": "K1 anemometer",
    "1102": "K1 hoist load cell",
    "1103": "K2 anemometer",
    "1111": "M1 cement silo",
    "1112": "M1 mixer",
}
# Owner: its children, under the platform's reference fields.
REFERENCES = {
    "1000": {"childAssets": ["1001", "1002", "1010"], "childDevices": ["1030", "1040"]},
    "1001": {"childDevices": ["1101", "1102"], "assetParents": ["1000"]},
    "1002": {"childDevices": ["1103"], "assetParents": ["1000"]},
    "1010": {"childDevices": ["1111", "1112"], "assetParents": ["1000"]},
    "1020": {"deviceParents": ["1040"]},
    "1021": {"deviceParents": ["1040"]},
    "1030": {"deviceParents": ["1000"]},
    "1040": {"childDevices": ["1020", "1021"], "deviceParents": ["1000"]},
    "1101": {"deviceParents": ["1001"]},
    "1102": {"deviceParents": ["1001"]},
    "1103": {"deviceParents": ["1002"]},
    "1111": {"deviceParents": ["1010"]},
    "1112": {"deviceParents": ["1010"]},
}
SHIFT_START = 6 * 60  # minutes after local midnight, as all times below
SHIFT_END = 18 * 60
UTC_OFFSET = 2 * 60  # minutes


# ---- (1) shapes


def timestamp(minutes, zone):
    milliseconds = round(minutes * 60_000)
    hours, rest = divmod(milliseconds, 3_600_000)
    minute, rest = divmod(rest, 60_000)
    second, fraction = divmod(rest, 1000)
    return f"2024-05-14T{hours:02}:{minute:02}:{second:02}.{fraction:03}{zone}"


def local(minutes):
    """How devices tell the time."""
    return timestamp(minutes, "+02:00")


def utc(minutes):
    """How the platform tells it, a moment later: its clock runs when the record arrives."""
    return timestamp(minutes - UTC_OFFSET + 0.005, "Z")


def reference(device):
    return {"id": device, "name": NAMES[device], "self": f"{SITE}inventory/{device}"}


def series(value, units):
    return {"value": value, "units": units}


class Day:
    """Collects notifications with their times."""

    def __init__(self):
        self.rng = random.Random(SEED)
        self.notifications = []

    def between(self, low, high, digits=1):
        # Only random(): its sequence is the same in every version of the language.
        return round(low + (high - low) * self.rng.random(), digits)

    def add(self, minutes, kind, record, payload):
        """`record` is the id, or None for a record that is told of once: numbered at the end."""
        self.notifications.append((minutes, len(self.notifications), kind, record, payload))

    def messages(self):
        next_id = {"events": 41001, "measurements": 61001}
        for _, _, kind, record, payload in sorted(self.notifications, key=lambda n: n[:2]):
            if record is None:
                record = str(next_id[kind])
                next_id[kind] += 1
            folder = "inventory" if kind == "managedobjects" else kind
            head = {"id": record, "self": f"{SITE}{folder}/{record}"}
            yield {"metadata": {"pulsarPath": f"t4100/quay-north/{kind}/{record}"},
                   "payload": head | payload}

    def measurement(self, minutes, device, kind, fragments):
        self.add(minutes, "measurements", None, {
            "type": kind, "source": reference(device), "time": local(minutes)} | fragments)

    def event(self, minutes, device, kind, text, fragments=None):
        self.add(minutes, "events", None, {
            "type": kind, "source": reference(device), "text": text, "time": local(minutes),
            "creationTime": utc(minutes), "lastUpdated": utc(minutes)} | (fragments or {}))

    def managed_object(self, minutes, device, kind, fragments):
        owner = f"{SITE}inventory/{device}"
        references = {
            field: {"self": f"{owner}/{field}", "references": [reference(d) for d in devices]}
            for field, devices in REFERENCES[device].items()}
        self.add(minutes, "managedobjects", device, {
            "name": NAMES[device], "type": kind, "owner": "site-office",
            "creationTime": "2024-02-05T08:00:00.000Z", "lastUpdated": utc(minutes),
        } | fragments | references)


# ---- (2) readings


def wind(day, minutes):
    # The afternoon is windier, which is when the gusts of (3) come.
    mean = day.between(4, 9) if minutes < 13 * 60 else day.between(8, 16)
    return {"site_Wind": {"speed": series(mean, "m/s"),
                          "gust": series(round(mean + day.between(1, 6), 1), "m/s"),
                          "direction": series(int(day.between(240, 300)), "deg")}}


def hoist(day, _):
    load = series(day.between(0, 5.8, 2), "t") | {"limit": 6.0, "radius": day.between(8, 40)}
    return {"site_Hoist": {"load": load, "hook": series(day.between(2, 48, 2), "m")}}


def pump(day, _):
    return {"site_Pressure": {"p": series(day.between(2.4, 3.6), "bar")},
            "site_Flow": {"q": series(day.between(30, 45), "m3/h")}}


def silo(_, minutes):
    # This probe sends its figures as strings.
    left = 92 - 80 * (minutes - SHIFT_START) / (SHIFT_END - SHIFT_START)
    return {"site_Level": {"silo": series(f"{left:.1f}", "%")}}


def mixer(day, _):
    return {"o6a_Temperature": {"T": series(day.between(16, 24), "C")},
            "site_Mixer": {"drum": {"value": int(day.between(8, 15)), "unit": "rpm"}},
            "site_Order": {"number": "QN-118", "mix": "C30/37"}}


# Device, type, minutes between two readings, reading.
READINGS = [
    ("1101", "site_Wind", 15, wind),
    ("1103", "site_Wind", 15, wind),
    ("1102", "site_Hoist", 20, hoist),
    ("1020", "site_Pump", 20, pump),
    ("1021", "site_Pump", 24, pump),
    ("1111", "site_Level", 60, silo),
    ("1112", "o6a_Temperature", 24, mixer),
]


def add_readings(day):
    for place, (device, kind, period, reading) in enumerate(READINGS):
        for minutes in range(SHIFT_START, SHIFT_END, period):
            at = minutes + 0.4 * place + day.between(0, 0.3, 4)
            day.measurement(at, device, kind, reading(day, minutes))


# ---- (3) events of the day


def add_inventory(day):
    kinds = {"1000": "site_Site", "1001": "site_TowerCrane", "1002": "site_TowerCrane",
             "1010": "site_ConcretePlant", "1030": "site_ConcretePump", "1040": "site_Gateway"}
    operations = {"1001": ["site_Weathervane", "site_SetLimit"],
                  "1002": ["site_Weathervane", "site_SetLimit"],
                  "1010": ["site_StartBatch"], "1040": ["o6a_Restart", "site_SetPump"]}
    for place, device in enumerate(NAMES):
        fragments = {}
        if device in operations:
            fragments["o6a_SupportedOperations"] = operations[device]
        measured = sorted({kind for d, kind, _, _ in READINGS if d == device})
        if measured:
            fragments["o6a_SupportedMeasurements"] = measured
        if device in ("1001", "1002"):
            fragments["o6a_Position"] = {"lat": 53.542, "lng": 9.986 + place / 1000, "alt": 62.5}
        day.managed_object(SHIFT_START - 5 + place / 10, device, kinds.get(device, "site_Device"),
                           fragments)


def add_updates(day):
    for turn in range(9):
        at = SHIFT_START + 30 + 75 * turn
        position = {"lat": day.between(53.541, 53.543, 5), "lng": day.between(9.985, 9.988, 5),
                    "alt": 4, "fix": "RTK"}
        day.managed_object(at, "1030", "site_ConcretePump", {"o6a_Position": position})
        for device, hours in (("1020", 988), ("1021", 1204)):
            day.managed_object(at + 1.5, device, "site_Device",
                               {"site_Maintenance": {"hours": hours + turn, "due": "2024-06-01"}})


def add_events(day):
    for place, crane in enumerate(("1001", "1002")):
        day.event(SHIFT_START + 2 + place, crane, "site_CraneReleased", "Driver signed on",
                  {"site_Release": {"driver": f"D-{17 + place}", "checklist": ["ropes", "brake"]}})
        day.event(SHIFT_END - 9 + place, crane, "site_CraneParked", "Driver signed off")
    for batch in range(36):
        at = SHIFT_START + 25 + 19 * batch + day.between(0, 4, 3)
        day.event(at, "1010", "site_BatchFinished", f"Batch {311 + batch} discharged",
                  {"site_Batch": {"number": 311 + batch, "mix": "C30/37", "cubicMetres": 2.5}})
    for run in range(8):
        device = "1020" if run % 2 == 0 else "1021"
        at = SHIFT_START + 14 + 85 * run
        started = local(at - 0.04)
        day.event(at, device, "site_PumpStarted", "Started on high level",
                  {"firstOccurrenceTime": started, "site_Trigger": {"level": 1.42, "units": "m"}})
        day.event(at + day.between(9, 30, 3), device, "site_PumpStopped", "Stopped on low level")
    for place, axis in enumerate(("C/4", "D/4", "D/6", "E/6")):
        day.event(SHIFT_START + 40 + 160 * place, "1030", "site_SetUp", f"Set up at axis {axis}")


# Device, type, text, severity, minutes after midnight of the alarm.
ALARMS = [
    ("1021", "site_DryRunning", "Runs without water", "CRITICAL", 7 * 60 + 12),
    ("1112", "site_DrumBlocked", "Drum draws too much current", "MAJOR", 9 * 60 + 3),
    ("1101", "site_Gust", "Gusts above 15 m/s at the jib", "WARNING", 13 * 60 + 12),
    ("1103", "site_Gust", "Gusts above 15 m/s at the jib", "WARNING", 13 * 60 + 15),
    ("1111", "site_LowSilo", "Cement for 9 batches left", "MINOR", 14 * 60 + 30),
    ("1101", "site_Gust", "Gusts above 20 m/s at the jib", "MAJOR", 15 * 60 + 20),
    ("1103", "site_Gust", "Gusts above 20 m/s at the jib", "MAJOR", 15 * 60 + 21),
    ("1040", "site_LinkLost", "No answer from P1", "MINOR", 17 * 60 + 2),
]


def add_alarms(day):
    for place, (device, kind, text, severity, raised) in enumerate(ALARMS):
        record = str(51001 + place)
        # Raised, seen twice more, acknowledged, cleared: the platform keeps one record and counts.
        steps = [("ACTIVE", 1), ("ACTIVE", 2), ("ACTIVE", 3), ("ACKNOWLEDGED", 3), ("CLEARED", 3)]
        last_seen = raised
        for step, (status, count) in enumerate(steps):
            at = raised + 3 * step + day.between(0, 2, 3) * (step > 0)
            last_seen = at if status == "ACTIVE" else last_seen
            day.add(at, "alarms", record, {
                "type": kind, "source": reference(device), "text": text, "severity": severity,
                "status": status, "count": count, "time": local(last_seen),
                "firstOccurrenceTime": local(raised), "creationTime": utc(raised),
                "lastUpdated": utc(at)})


# Device, operation, minutes after midnight, the states that follow PENDING.
OPERATIONS = [
    ("1040", "Stop P2: dry running", {"site_SetPump": {"pump": "1021", "run": False}},
     7 * 60 + 14, ["EXECUTING", "SUCCESSFUL"]),
    ("1040", "Start P2 again", {"site_SetPump": {"pump": "1021", "run": True}},
     8 * 60 + 2, ["EXECUTING", "SUCCESSFUL"]),
    ("1010", "Start batch for axis D/4", {"site_StartBatch": {"mix": "C30/37", "count": 6}},
     9 * 60 + 40, ["EXECUTING", "SUCCESSFUL"]),
    ("1001", "Let K1 weathervane", {"site_Weathervane": {}},
     15 * 60 + 23, ["EXECUTING", "SUCCESSFUL"]),
    ("1002", "Let K2 weathervane", {"site_Weathervane": {}},
     15 * 60 + 24, ["EXECUTING", "SUCCESSFUL"]),
    ("1002", "Limit K2 to 4 t", {"site_SetLimit": {"tonnes": 4.0}}, 16 * 60 + 5, ["FAILED"]),
    ("1040", "Restart G1", {"o6a_Restart": {}}, 17 * 60 + 4, ["EXECUTING", "SUCCESSFUL"]),
]


def add_operations(day):
    for place, (device, description, command, sent, states) in enumerate(OPERATIONS):
        record = str(71001 + place)
        for step, status in enumerate(["PENDING"] + states):
            at = sent + 0.1 * step
            payload = {"deviceId": device, "source": reference(device), "status": status,
                       "description": description, "creationTime": utc(sent)} | command
            if step > 0:
                payload["lastUpdated"] = utc(at)
            if status == "FAILED":
                payload["failureReason"] = "driver did not confirm"
            day.add(at, "operations", record, payload)


# ---- (4) order and damage

# Kind, number of the notification in the order of time, change of its payload.
DAMAGE = [
    ("measurements", 57, lambda payload: payload.pop("time")),
    ("measurements", 190, lambda payload: payload.update(source=payload["source"]["id"])),
    ("events", 21, lambda payload: payload.update(time=payload["time"].removesuffix("+02:00"))),
    ("alarms", 12, lambda payload: payload.update(severity=payload["severity"].lower())),
    ("managedobjects", 20, lambda payload: payload.pop("name")),
    ("operations", 16, lambda payload: payload.update(status="ABORTED")),
]


def kind_of(message):
    return message["metadata"]["pulsarPath"].split("/")[2]


def make_messages():
    day = Day()
    for add in (add_inventory, add_readings, add_updates, add_events, add_alarms, add_operations):
        add(day)
    messages = list(day.messages())
    for kind, nth, damage in DAMAGE:
        damage([m for m in messages if kind_of(m) == kind][nth]["payload"])
    # ---- (5)
    middle = len(messages) // 2
    messages.insert(middle, {"metadata": {"chain": "quay-north"},
                             "payload": {"heartbeat": middle, "connected": True}})
    return messages


def main():
    if sys.argv[1:] not in ([], ["--check"]):
        sys.exit("usage: make_site_day.py [--check]")
    text = "".join(json.dumps(m, separators=(",", ":")) + "\n" for m in make_messages())
    if not sys.argv[1:]:
        OUTPUT.write_text(text, encoding="utf-8")
    elif not OUTPUT.is_file() or OUTPUT.read_text(encoding="utf-8") != text:
        sys.exit(f"{OUTPUT.name} is not what make_site_day.py makes; run it")


if __name__ == "__main__":
    main()
