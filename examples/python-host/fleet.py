"""A small fleet, cell by cell as in a notebook: one laptop in detail, then several, and what they have in common.

    python3 fleet.py LAPTOP FLEET     a prepared examples/laptop; FLEET is an empty folder for copies of it
"""

# %% One laptop: what is wrong with it?
import logging
import shutil
import sys
from collections import Counter
from pathlib import Path

import arborist

logging.basicConfig(level=logging.ERROR, format="log: %(message)s")
laptop, fleet = Path(sys.argv[1]), Path(sys.argv[2])

detection = arborist.detect(laptop)
for tree in detection.trees:
    print(f"{tree.id}: {tree.verdict}, {tree.checks.decided} of {tree.checks.total} checks decided")
    for cause in tree.root_causes:
        mended = ", ".join(repair.id for repair in cause.repairs) or "nothing that is known"
        print(f"  {cause.name}; mended by {mended}")

# %% What would a person at the device add? The code rules ask; this one finds dead pixels and nothing else.
asked = []


def look(question: arborist.CodeQuestion) -> bool:
    asked.append(question.user_defined_info)
    return "pixel" in question.user_defined_info


with_person = arborist.detect(laptop, code_runner=look)
print("asked:", ", ".join(asked))
before = {cause.id for tree in detection.trees for cause in tree.root_causes}
for tree in with_person.trees:
    for cause in tree.root_causes:
        if cause.id not in before:
            print(f"new: {cause.name}")

# %% Why is the battery worn? The evidence is a plain dictionary.
explanation = arborist.explain(laptop, event="BATTERY_WORN")
power = explanation.results[0]
rule = power["evidence"][0]["rules"][0]
for comparison in rule["comparisons"]:
    print(f"{rule['name']}: {comparison['observed']} {comparison['logic']} {comparison['threshold']}")

# %% A fleet: the same laptop with batteries of different age.
devices = []
for name, charge in (("new", 4900), ("used", 3800), ("old", 2700), ("spent", 900)):
    device = fleet / name
    shutil.copytree(laptop, device)
    (device / "device/sys/class/power_supply/BAT0/charge_full").write_text(f"{charge}000\n")
    devices.append(device)

causes: Counter[str] = Counter()
for device in devices:
    detection = arborist.detect(device)
    causes.update({cause.id for tree in detection.trees for cause in tree.root_causes})
    print(f"{device.name}: battery worn: {'BATTERY_WORN' in {c.id for c in detection.tree('LAPTOP_POWER').root_causes}}")
print("on all devices:", ", ".join(sorted(cause for cause, count in causes.items() if count == len(devices))))

# %% A battery is replaced: events from before don't count any more.
record = arborist.record_repair(devices[2], "REPAIR_BATTERY", now="2024-05-20 11:00:00")
print(f"{record.id} recorded at {record.date}")
left = arborist.detect(devices[2]).tree("LAPTOP_POWER")
print("left of the power's faults:", ", ".join(cause.name for cause in left.root_causes) or "nothing")
