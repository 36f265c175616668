#!/usr/bin/env python3
"""Usage: elementtree.py FOLDER

Does the job of a call over the corpus in FOLDER in plain Python: parses the configuration, loads every
document with ElementTree, checks, claims and releases, and prints the selection and the final states.
"""
import glob
import sys
import xml.etree.ElementTree as ElementTree

KEPT, INVALID, ROTATED = range(3)


def parse_configuration(text):
    """By first target, a dictionary of the further targets, which says of each whether it is used."""
    configurations = {}
    for configuration in text.split("&"):
        first, *further = configuration.split(";")
        enclosure = first.split("##")[0]
        configurations[first] = {enclosure + "##" + device: False for device in further}
    return configurations


def target_of(identifier):
    prefix, _, rest = identifier.partition("UDID##")
    parts = rest.split("##", 3)
    if len(parts) < 4:
        raise ValueError(identifier)
    return parts[2] + "##" + parts[3]


def load(file):
    """Time stamp and targets of a backup."""
    root = ElementTree.parse(file).getroot()
    pairs = {}
    for node in root.iter("Node"):
        objid = node.findtext("objid", "")
        if "UDID##" in objid:
            pairs[objid] = node.findtext("altobjid", "")
    targets = [(target_of(objid), target_of(pairs[objid])) for objid in sorted(pairs)]
    return {"file": file, "stamp": root.findtext("timeStamp", ""), "targets": targets}


def free_target(further):
    return next((name for name, used in further.items() if not used), None)


def rotate(configurations, backups):
    for backup in backups:
        matches = all(further in configurations.get(first, ()) for first, further in backup["targets"])
        backup["state"] = KEPT if matches else INVALID
    backups.sort(key=lambda backup: backup["stamp"])
    for backup in reversed(backups):
        for first, further in backup["targets"] if backup["state"] == KEPT else ():
            if configurations[first][further]:
                backup["state"] = INVALID
            configurations[first][further] = True
    for backup in backups:
        if all(free_target(further) for further in configurations.values()):
            break
        if backup["state"] == KEPT:
            for first, further in backup["targets"]:
                configurations[first][further] = False
            backup["state"] = ROTATED


def main():
    folder = sys.argv[1]
    with open(folder + "/configuration", encoding="utf-8") as file:
        configurations = parse_configuration(file.read())
    backups = [load(file) for file in sorted(glob.glob(folder + "/*.xml"))]
    rotate(configurations, backups)
    print("".join(f"[{first};{free_target(further)}]" for first, further in configurations.items()))
    print([backup["state"] for backup in backups])


main()
