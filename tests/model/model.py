"""What a call must do, written a second time and in the plainest way.

Nothing here is shared with the library: a call is decided and its whole trace written from the rules
alone, so that a mistake would have to be made twice to stay unseen. Everything is looked for by walking
over lists.
"""

import collections
import functools
import re

AVAILABLE, USED = 0, 1
STATE_NAMES = {AVAILABLE: "Available", USED: "Used"}
KEPT, INVALID, ROTATED = 0, 1, 2
EXCLUDE = 4
FAILURE, PROGRESS = 3, 4
CHECK, CLAIM, RELEASE = 0, 1, 2

DRIVER = "fi_process_backups : "
PARSER = "CFiFiidParser::"
HANDLER = "CFiFiidHandler::"

Target = collections.namedtuple("Target", "enclosure device")
# What a host sees of a call; `status` is None when an exception left it, `selection` when there is none.
Outcome = collections.namedtuple("Outcome", "status selection flags exception trace output")


class MalformedIdentifier(Exception):
    """The one exception of the library's own: an identifier and why it is none."""

    def __init__(self, identifier, code):
        super().__init__(identifier, code)
        self.identifier = identifier
        self.code = code


class Resource:
    """A further target of a configuration."""

    def __init__(self, target):
        self.target = target
        self.state = AVAILABLE


class Configuration:
    def __init__(self, first):
        self.first = first
        self.state = AVAILABLE
        self.resources = []


class Node:
    def __init__(self, parent):
        self.parent = parent
        self.children = []
        self.objid = self.altobjid = self.split_type = self.time_stamp = ""
        self.type = 0
        self.file = ""
        self.state = KEPT


def as_number(text):
    """C's strtol, cut to 32 bits."""
    match = re.match(r"[ \t\n\v\f\r]*([+-]?[0-9]+)", text)
    if match is None:
        return 0
    number = max(-(2**63), min(2**63 - 1, int(match.group(1)))) % 2**32
    return number - 2**32 if number >= 2**31 else number


def split_identifier(text):
    """The enclosure and the device that an identifier names."""
    start = text.find("UDID##")
    is_enclosure = start < 0
    if is_enclosure:
        start = text.find("UEID##")
        if start < 0:
            raise MalformedIdentifier(text, 2)
    _, separator, rest = text[start + 6 :].partition("##")
    if not separator:
        raise MalformedIdentifier(text, 3)
    _, separator, rest = rest.partition("##")
    if not separator:
        raise MalformedIdentifier(text, 4)
    if not rest:
        raise MalformedIdentifier(text, 1)
    enclosure, separator, device = rest.partition("##")
    if separator:
        return Target(enclosure, device)
    return Target(rest, "") if is_enclosure else Target("", rest)


def in_bytes(text):
    return text.encode()


class Model:
    """One call. `seen` counts which of its branches were taken."""

    def __init__(self):
        self.trace = []
        self.output = ""
        self.seen = collections.Counter()
        self.configurations = []

    # The trace.

    def fail(self, text):
        self.trace.append((FAILURE, text))

    def tell(self, text):
        self.trace.append((PROGRESS, text))

    def enter(self, operation):
        self.tell(f"Entering {operation}\n")

    def leave(self, operation):
        self.tell(f"Exiting {operation}\n")

    def pass_through(self, operation):
        self.enter(operation)
        self.leave(operation)

    # The configuration.

    def parse_configurations(self, text):
        for escape, character in (
            ("&#39;", "'"),
            ("&quot;", '"'),
            ("&gt;", ">"),
            ("&lt;", "<"),
            ("&amp;", "&"),
        ):
            text = text.replace(escape, character)
        fields = [field for field in re.split("[&\n\r]", text) if field]
        if not fields:
            self.seen["configuration string without a configuration"] += 1
            self.fail(f"CFiResourceParser::parse : Invalid resource specification [{text}]")
            return
        # The line ends where the first configuration does.
        leading = re.match("[&\n\r]*", text).group(0)
        self.tell(f"CFiResourceParser::parse : Resource specification [{leading}{fields[0]}]")
        for field in fields:
            configuration = self.parse_configuration(field)
            if configuration is None:
                return
            self.configurations.append(configuration)

    def parse_configuration(self, field):
        targets = [target for target in field.split(";") if target]
        if not targets:
            return self.reject(field, "has no targets specified")
        configuration = None
        enclosure = ""
        for text in targets:
            if "##" in text:
                enclosure, _, device = text.partition("##")
            else:
                device = text
            self.tell(f"CFiResourceParser::parse : [{enclosure}][{device}]")
            if not device:
                return self.reject(text, "has no device data specified")
            target = Target(enclosure, device)
            if configuration is not None:
                configuration.resources.append(Resource(target))
            elif not enclosure:
                return self.reject(text, "has no enclosure data specified")
            else:
                configuration = Configuration(target)
        return configuration

    def reject(self, text, fault):
        self.seen[f"configuration that {fault}"] += 1
        self.fail(f'CFiResourceParser::parse : resource configuration "{text}" {fault}.')

    def print_configurations(self):
        self.tell("CFiResourceManager::print : printing resource set")
        for configuration in self.configurations:
            first = configuration.first
            self.tell(f"[{first.enclosure}:{first.device}]({STATE_NAMES[configuration.state]})")
            for resource in configuration.resources:
                self.tell(f"{{{resource.target.device},{STATE_NAMES[resource.state]}}}")

    def selection(self):
        """None when a configuration has no free target."""
        text = ""
        for configuration in self.configurations:
            free = [r.target for r in configuration.resources if r.state == AVAILABLE]
            if not free:
                return None
            first = configuration.first
            text += f"[{first.enclosure}##{first.device};{free[0].enclosure}##{free[0].device}]"
        return text

    # The documents.

    def read_document(self, events):
        """The root of the tree that the reader's events make; None without a Node."""
        self.enter(PARSER + "CFiFiidParser")
        self.pass_through(PARSER + "init")
        self.leave(PARSER + "CFiFiidParser")
        self.pass_through(HANDLER + "CFiFiidHandler")
        self.pass_through(PARSER + "setHandler")
        self.enter(PARSER + "parse")
        root = self.build_tree(events)
        self.leave(PARSER + "parse")
        self.pass_through(HANDLER + "~CFiFiidHandler")
        self.pass_through(PARSER + "~CFiFiidParser")
        return root

    def build_tree(self, events):
        root = current = None
        is_done = False
        text = ""
        for kind, value in events:
            if kind == "text":
                text = value
            elif kind == "fault":
                self.seen["ill-formed document"] += 1
                self.pass_through(HANDLER + "fatalError")
            elif kind == "start":
                self.enter(HANDLER + "startElement")
                if is_done:
                    self.leave(HANDLER + "startElement")
                if value == "Node":
                    node = Node(current)
                    if current is not None:
                        current.children.append(node)
                    else:
                        if root is not None:
                            self.seen["root replaced by a later one"] += 1
                        root = node
                    current = node
                self.leave(HANDLER + "startElement")
            else:
                self.enter(HANDLER + "endElement")
                if value == "timeStamp" and root is not None:
                    root.time_stamp = text
                if is_done:
                    self.leave(HANDLER + "endElement")
                if value == "Node":
                    current = current.parent
                    if current is None:
                        is_done = True
                        self.leave(HANDLER + "endElement")
                elif current is not None:
                    self.store(current, value, text)
                self.leave(HANDLER + "endElement")
        if root is None:
            self.seen["document without a Node"] += 1
        return root

    @staticmethod
    def store(node, name, text):
        if name == "objid":
            node.objid = text
        elif name == "altobjid":
            node.altobjid = text
        elif name == "splitType":
            node.split_type = text
        elif name == "type":
            node.type = as_number(text)

    def load(self, names, documents):
        """The roots of the documents up to the first that cannot be opened."""
        roots = []
        self.enter("")
        for name in names:
            self.enter("")
            if documents[name] is None:
                self.seen["file that cannot be opened"] += 1
                self.output += f"ERROR: failed to load FIID file [{name}]\n"
                self.fail("CFiFiidLoader::load: ERROR: failed to load FIID file")
                self.leave("")
                break
            self.leave("")
            root = self.read_document(documents[name])
            if root is not None:
                root.file = name
                roots.append(root)
        self.leave("")
        return roots

    def print_tree(self, node, level=0):
        indentation = "\t" * level
        self.tell(f"{indentation} [{node.objid}]")
        self.tell(f"{indentation} {{{node.altobjid}}}")
        self.tell(f"{indentation} <{node.type} {node.split_type}>")
        for child in node.children:
            self.print_tree(child, level + 1)

    # The check of a backup, the claim and the release of its targets.

    def pairs(self, node, found):
        if "UDID##" in node.objid:
            found[node.objid] = node.altobjid
        for child in node.children:
            self.pairs(child, found)
        return found

    def find(self, first, further):
        for configuration in self.configurations:
            if configuration.first == first:
                for resource in configuration.resources:
                    if resource.target == further:
                        return configuration, resource
        return None

    def validate(self, backup, mode):
        result = True
        pairs = self.pairs(backup, {})
        for objid in sorted(pairs, key=in_bytes):
            try:
                place = self.find(split_identifier(objid), split_identifier(pairs[objid]))
            except MalformedIdentifier as malformed:
                self.fail(f"ERROR: {malformed.identifier}")
                raise
            if place is None:
                result = False
                if mode == CHECK:
                    return False
                continue
            configuration, resource = place
            if mode == CLAIM and resource.state == USED:
                result = False
            elif mode == CLAIM:
                resource.state = configuration.state = USED
            elif mode == RELEASE:
                resource.state = AVAILABLE
        return result

    # The rotation.

    def check(self, backups):
        for backup in backups:
            if self.validate(backup, CHECK):
                self.tell(f"{DRIVER}[RESOURCES MATCH] [{backup.file}]")
            else:
                self.seen["backup invalid in the check"] += 1
                self.tell(f"{DRIVER}[INVALID RESOURCES] [{backup.file}]")
                backup.state = INVALID

    def claim(self, backups):
        for backup in backups:
            if backup.state != KEPT:
                continue
            if self.validate(backup, CLAIM):
                self.tell(f"{DRIVER}[RESERVE GOOD] {backup.file} - T: {backup.time_stamp}")
            else:
                self.seen["backup invalid in the claim"] += 1
                self.tell(f"{DRIVER}{backup.file} - T: {backup.time_stamp}")
                backup.state = INVALID

    def rotate(self, backups, excluded):
        for backup in backups:
            if self.selection() is not None:
                self.seen["rotation stopped before the last backup"] += 1
                return
            if backup.state != KEPT:
                continue
            if excluded[backup.file]:
                self.seen["backup excluded from rotation"] += 1
                self.tell(f"{DRIVER}Skipped Rotation for fiid [{backup.file}]")
            else:
                self.seen["backup rotated"] += 1
                backup.state = ROTATED if self.validate(backup, RELEASE) else INVALID

    def select_for_first_backup(self):
        self.tell(f"{DRIVER}fiidListSize empty, no previous backups to process")
        selection = self.selection()
        if selection is None:
            self.seen["first backup without a target"] += 1
            self.fail(f"{DRIVER}no resource is available")
        else:
            self.seen["first backup with a selection"] += 1
        return selection

    def select_by_rotation(self, names, flags, documents):
        """The selection and the flags as they are then."""
        excluded = {}
        for name, flag in zip(names, flags):
            if name in excluded:
                self.seen["name listed twice"] += 1
            excluded[name] = flag & EXCLUDE
            self.fail(f"fi_process_backups :  Fiid [{name}] exclude rotation flag [{flag}] ")
        backups = self.load(names, documents)
        for backup in backups:
            self.tell(f"{DRIVER}parsed [{backup.file}]")
            self.print_tree(backup)
        self.print_configurations()
        self.check(backups)
        # As stable as the library's sort is for no more than 16 backups.
        backups.sort(key=functools.cmp_to_key(newest_first))
        self.claim(backups)
        backups.sort(key=lambda backup: in_bytes(backup.time_stamp))
        self.rotate(backups, excluded)

        selection = self.selection()
        if selection is None:
            self.fail(
                f"{DRIVER}Resources not availabe, some/all are part of Skip rotation fiids"
            )
            return None, flags
        self.tell(f"{DRIVER}resource_config_string [{selection}] ")
        flags = [final_flag(backups, name, flag) for name, flag in zip(names, flags)]
        self.print_configurations()
        for backup in backups:
            self.tell(f"{DRIVER}parsed [{backup.file}] state=[{backup.state}]")
            self.print_tree(backup)
        return selection, flags

    def call(self, configuration, names, flags, size, documents):
        """`documents` holds each name's events, None for a file that cannot be opened."""
        self.parse_configurations(configuration)
        exception = None
        if size == 0:
            selection, used = self.select_for_first_backup(), []
        else:
            count = max(size, 0)
            used = flags[:count]
            if size < 0:
                self.seen["negative size"] += 1
            try:
                selection, used = self.select_by_rotation(names[:count], used, documents)
            except MalformedIdentifier as malformed:
                self.seen[f"exception {malformed.code}"] += 1
                selection, exception = None, (malformed.identifier, malformed.code)
        status = None if exception else 3 if selection is None else 0
        if status is not None:
            self.seen[f"status {status}"] += 1
        final_flags = used + flags[len(used) :]
        return Outcome(status, selection, final_flags, exception, self.trace, self.output)


def newest_first(left, right):
    left, right = in_bytes(left.time_stamp), in_bytes(right.time_stamp)
    return (left < right) - (left > right)


def final_flag(backups, name, flag):
    for backup in backups:
        if backup.file == name:
            return backup.state
    return flag
