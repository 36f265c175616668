"""Random calls, and ways to make a call smaller."""

import copy
import dataclasses

ENCLOSURES = "AB"
FIRST_DEVICES = "xyz"
FURTHER_DEVICES = "123456"


@dataclasses.dataclass
class Element:
    """An element with children or with text; `pieces` is the text as the reader delivers it."""

    name: str
    attributes: str = ""
    indentation: str = ""
    children: list = dataclasses.field(default_factory=list)
    text: str = ""
    pieces: list = dataclasses.field(default_factory=list)

    def write(self, xml, events):
        if self.indentation:
            xml.append(self.indentation)
            events.append(("text", self.indentation))
        xml.append(f"<{self.name}{self.attributes}>")
        events.append(("start", self.name))
        xml.append(self.text)
        events.extend(("text", piece) for piece in self.pieces)
        for child in self.children:
            child.write(xml, events)
        xml.append(f"</{self.name}>")
        events.append(("end", self.name))


@dataclasses.dataclass
class Document:
    root: Element = None
    # Without the last end tag.
    is_cut_off: bool = False
    has_declaration: bool = False

    def write(self):
        """The XML, and the events that a reader makes of it."""
        if self.root is None:
            return "", [("fault", "")]
        xml, events = [], []
        self.root.write(xml, events)
        if self.is_cut_off:
            xml.pop()
            events[-1] = ("fault", "")
        declaration = '<?xml version="1.0" encoding="UTF-8"?>\n' if self.has_declaration else ""
        return declaration + "".join(xml), events


@dataclasses.dataclass
class Backup:
    name: str
    flag: int
    # None for a file that is not there.
    document: Document


@dataclasses.dataclass
class Call:
    configuration: str
    backups: list
    # None for the number of backups.
    size: int = None

    def count(self):
        return len(self.backups) if self.size is None else self.size


class Generator:
    """Makes calls of few names, so that they meet often."""

    def __init__(self, random, folder):
        self.random = random
        self.folder = folder
        # First targets and further targets as enclosure and device, to write documents about.
        self.known = []

    def chance(self, probability):
        return self.random.random() < probability

    def pick(self, *weighted):
        values = weighted[::2]
        return self.random.choices(values, weights=weighted[1::2])[0]

    def call(self):
        configuration = self.configuration()
        call = Call(configuration, [])
        count = self.random.choice([0, 1, 1, 2, 3, 4, 5, 6, 8, 12])
        for number in range(count):
            call.backups.append(self.backup(number, call.backups))
        if self.chance(0.02):
            call.size = -self.random.randint(1, 5)
        return call

    # Configurations.

    def configuration(self):
        if self.chance(0.03):
            return self.random.choice(["", "&", "\r\n", "&amp;&", ";", "##", "A##", ";;&A##x"])
        fields = [self.field() for _ in range(self.random.randint(1, 4))]
        text = self.random.choice(["&", "&", "\n", "\r\n", "&amp;", "&&"]).join(fields)
        if self.chance(0.1):
            text = self.random.choice("&\n") + text + self.random.choice("&\r")
        return text

    def field(self):
        if self.chance(0.01):
            return self.random.choice([";", ";;"])
        enclosure = self.random.choice(ENCLOSURES)
        first = (enclosure, self.random.choice(FIRST_DEVICES))
        texts = [self.pick("##".join(first), 97, first[1], 1, "##" + first[1], 1, "A##", 1)]
        further = []
        for _ in range(self.random.randint(0, 4)):
            device = self.random.choice(FURTHER_DEVICES)
            own = self.random.choice(ENCLOSURES)
            enclosure, text = self.pick(
                (own, f"{own}##{device}"), 40,
                (enclosure, device), 45,
                ("", "##" + device), 8,
                (own, f"{own}##{device}##q"), 2,
                (own, f"{own}###{device}"), 1,
                (own, f"{own}##{device}&quot;"), 1,
                (enclosure, f"&lt;{device}&gt;"), 1,
                (own, f"{own}##"), 1,
            )  # fmt: skip
            further.append((enclosure, device))
            texts.append(text)
        self.known.append((first, further))
        field = self.random.choice([";", ";", ";;"]).join(texts)
        return f";{field};" if self.chance(0.05) else field

    # Backups.

    def backup(self, number, earlier):
        flag = self.random.choice([0, 0, 0, 0, 1, 2, 3, 4, 5, 8, 12, -1, -8, 2**31 - 1])
        if earlier and self.chance(0.03):
            twin = self.random.choice(earlier)
            return Backup(twin.name, flag, twin.document)
        document = self.pick(self.document(), 94, None, 3, Document(), 1.5, other_document(), 1.5)
        return Backup(f"{self.folder}/{number}.xml", flag, document)

    def document(self):
        is_indented = self.chance(0.5)
        self.indent = "\n  " if is_indented else ""
        time_stamp = self.pick(
            f"2026{self.random.randint(1, 12):02}", 6, str(self.random.randint(1, 1200)), 2, "%d", 1, "", 1
        )
        root = Element("Node", children=self.fields())
        known = [pair for pair in self.known if self.chance(0.6)]
        root.children += [self.node(pair) for pair in known]
        if time_stamp:
            position = 0 if self.chance(0.9) else len(root.children)
            root.children.insert(position, self.element("timeStamp", time_stamp))
        is_cut_off = self.chance(0.04)
        if not is_cut_off and self.chance(0.3):
            root = self.wrapped(root)
        return Document(root, is_cut_off, self.chance(0.5))

    def wrapped(self, root):
        outer = Element("backup", children=[root])
        if self.chance(0.2):
            name = self.random.choice(["timeStamp", "objid", "other"])
            outer.children.insert(0, self.element(name, "before"))
        if self.chance(0.1):
            outer.children.insert(0, self.node(None))
        if self.chance(0.2):
            name = self.random.choice(["timeStamp", "objid", "type", "other"])
            outer.children.append(self.element(name, "after"))
        if self.chance(0.1):
            outer.children.append(self.node(self.random.choice(self.known or [None])))
        return outer

    def node(self, known, depth=1):
        node = Element("Node", indentation=self.indent, children=self.fields(known))
        if depth < 5 and self.chance(0.1):
            inner = self.random.choice(self.known or [None]) if self.chance(0.5) else None
            node.children.append(self.node(inner, depth + 1))
        return node

    def fields(self, known=None):
        fields = []
        if known is not None:
            first, further = known
            target = self.random.choice(further) if further and self.chance(0.97) else ("A", "9")
            fields.append(("objid", self.identifier(first) if self.chance(0.98) else "job"))
            fields.append(("altobjid", self.identifier(target)))
        if self.chance(0.3):
            number = self.random.choice(
                ["1", "-3", " 7", "12abc", "abc", "2147483648", "99999999999", "9" * 20]
            )
            fields.append(("type", number))
        if self.chance(0.3):
            fields.append(("splitType", self.random.choice(["mirror", "%s", "x"])))
        if self.chance(0.05):
            fields.append((self.random.choice(["Objid", "x:objid", "other", "node"]), "v"))
        if self.chance(0.05):
            fields.append(("objid", "again"))
        self.random.shuffle(fields)
        return [self.element(name, text) for name, text in fields]

    def identifier(self, target):
        enclosure, device = target
        whole = f"UDID##v##m##{enclosure}##{device}"
        return self.pick(
            whole if enclosure or self.chance(0.5) else f"UDID##v##m##{device}", 186,
            f"UEID##v##m##{enclosure}##{device}", 2,
            f"zz{whole}", 2,
            self.random.choice(["UDID##a##b##", "UDID##a", "UDID##a##b", "nothing", ""]), 4,
            f"UDID##v##m##{self.random.choice('AB')}##{self.random.choice('123xyz')}", 6,
        )  # fmt: skip

    def element(self, name, text):
        indentation = self.indent + "  " if self.indent else ""
        if self.chance(0.01):
            return Element(name, indentation=indentation)
        attributes = ' objid="q"' if self.chance(0.3) else ""
        written, pieces = (text, [text]) if text else ("", [])
        if text and self.chance(0.1):
            written, pieces = self.random.choice(
                [
                    (f"<![CDATA[{text}]]>", [text]),
                    (f"junk<!-- a comment -->{text}", ["junk", text]),
                    (f"{text}<![CDATA[]]>", [text, ""]),
                    (f"{text}&amp;x", [text, "&x"]),
                    (f"a&#98;{text}", ["a", "b" + text]),
                    (f"{text}<?instruction?>", [text]),
                    (f" {text} ", [f" {text} "]),
                    (f"{text}\u00fc\u20ac", [f"{text}\u00fc\u20ac"]),
                ]
            )
        return Element(name, attributes, indentation, text=written, pieces=pieces)


def other_document():
    return Document(Element("other"))


def smaller_calls(call):
    """Calls with something less in them, the largest steps first."""
    for index in range(len(call.backups)):
        smaller = copy.deepcopy(call)
        del smaller.backups[index]
        yield smaller
    for length in (len(call.configuration) // 2, 8, 1):
        for start in range(0, len(call.configuration) if length else 0, max(length, 1)):
            text = call.configuration
            yield dataclasses.replace(call, configuration=text[:start] + text[start + length :])
    for index, backup in enumerate(call.backups):
        if backup.flag != 0:
            smaller = copy.deepcopy(call)
            smaller.backups[index].flag = 0
            yield smaller
        root = backup.document.root if backup.document is not None else None
        for number in range(count_elements(root)):
            smaller = copy.deepcopy(call)
            remove_element(smaller.backups[index].document.root, number)
            # One name is one file.
            for twin in smaller.backups:
                if twin.name == backup.name:
                    twin.document = smaller.backups[index].document
            yield smaller


def count_elements(element):
    """Those below `element`."""
    return 0 if element is None else sum(1 + count_elements(child) for child in element.children)


def remove_element(element, number):
    """Removes the element of this number below `element`, counted in document order."""
    for index, child in enumerate(element.children):
        if number == 0:
            del element.children[index]
            return
        size = 1 + count_elements(child)
        if number < size:
            remove_element(child, number - 1)
            return
        number -= size
