#!/usr/bin/python3
"""The shortest host of all: prints what the next snapshot backup may use, and what became of each earlier one.

   ./safe-host.py resource.conf backup-*.xml

It only prints. A product takes no backup while one is invalid: a person must look at that one first.

Exit status: 0 a selection was made, 1 none was, and standard error says why.
"""
import pathlib
import sys

import fi_rotation

configuration, *backups = sys.argv[1:]
try:
    outcome = fi_rotation.rotate(pathlib.Path(configuration).read_bytes(), backups)
except (fi_rotation.RotationError, ValueError) as error:
    sys.exit(f"safe-host: {error}")
print(outcome.selection)
for backup in outcome.backups:
    print(f"{backup.file}: {backup.state.name.lower()}, {backup.reason_text}")
