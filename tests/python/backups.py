"""Documents of backups, in a folder for each test, which is the current folder."""

import os
import pathlib
import tempfile
import unittest

# A device with two targets.
CONFIGURATION = "encA##lun1;encA##snap1;snap2"


def node(*pairs, time="20261001013000"):
    """A Node with a device Node for each pair of a device and the target that the backup holds."""
    devices = "".join(f"<Node><objid>UDID##v##m##{first}</objid><altobjid>UDID##v##m##{target}</altobjid>"
                      "<type>12</type><splitType>snapshot</splitType></Node>" for first, target in pairs)
    return f"<Node><objid>JOB</objid><type>1</type><timeStamp>{time}</timeStamp>{devices}</Node>"


def document(*pairs, time="20261001013000"):
    return f"<backup>{node(*pairs, time=time)}</backup>"


class FolderTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)

    def write(self, name, text):
        pathlib.Path(name).write_text(text, encoding="utf-8")
        return name

    def two_backups(self):
        """The older one holds the first target, the newer one the second."""
        return [self.write("old.xml", document(("encA##lun1", "encA##snap1"), time="20261001013000")),
                self.write("new.xml", document(("encA##lun1", "encA##snap2"), time="20261002013000"))]
