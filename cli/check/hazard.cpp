#include "cli/check/hazard.h"

#include <algorithm>

#include "host/rows.h"

namespace fi_rotate {
namespace {

using Kinds = std::array<SHazardKind, kHazardCount>;

constexpr Kinds kKinds{{
    {EHazard::kNoConfiguration, "no-configuration", ESeverity::kError, EMender::kAdministrator,
     R"(The configuration is empty, or it contains only separators. The call succeeds
nevertheless, with an empty selection: no target is chosen, and every backup
that names a device is invalid. Give at least one configuration with a first
target and a further target.)"},
    {EHazard::kConfigurationRejected, "configuration-rejected", ESeverity::kError, EMender::kAdministrator,
     R"(A target is malformed. The configuration that contains it and all configurations
after it are not used. Those before it are used as if there were no others, and
the call does not fail. When the first configuration is malformed, the call
succeeds with an empty selection. Every target needs a device, and the first
target of a configuration needs an enclosure too: ENCLOSURE##DEVICE. The library
decodes &amp; before it separates configurations at &, so a name cannot contain
&. Correct the target.)"},
    {EHazard::kNoFurtherTargets, "no-further-targets", ESeverity::kError, EMender::kAdministrator,
     R"(A configuration has only its first target. There is no target for its snapshots,
so no call can succeed, even when backups of other configurations are released.
Put back the further targets that it had. Otherwise add at least one.)"},
    {EHazard::kTargetRepeated, "target-repeated", ESeverity::kError, EMender::kAdministrator,
     R"(A target is listed twice in one configuration. When a backup holds it, only the
first entry counts as used. The second entry counts as free and can be chosen;
the new snapshot then overwrites the one that is on the target. Remove one of
the entries.)"},
    {EHazard::kTargetInTwoConfigurations, "target-in-two-configurations", ESeverity::kError,
     EMender::kAdministrator,
     R"(A target is listed in two configurations. Each of them has its own record of it:
a target that is used in one configuration counts as free in the other, and one
selection can name it for both. A snapshot can then be overwritten. Remove the
target from one of the configurations.)"},
    {EHazard::kFirstTargetRepeated, "first-target-repeated", ESeverity::kError, EMender::kAdministrator,
     R"(The first target of a configuration, which is the device that is backed up, is
also listed as a further target of this or another configuration. It can be
chosen for a snapshot, which overwrites the device. Remove it from the further
targets.)"},
    {EHazard::kDeviceConfiguredTwice, "device-configured-twice", ESeverity::kWarning, EMender::kAdministrator,
     R"(Two configurations have the same first target. A backup of this device can hold
targets of both, and the selection names a target for each of them. If you do
not intend that, list all further targets in one configuration.)"},
    {EHazard::kBlankInTarget, "blank-in-target", ESeverity::kWarning, EMender::kAdministrator,
     R"(The name of an enclosure or of a device begins or ends with a space or a tab,
or has one where a line end or & was probably lost, which is noticed only if
names before and after it are alike. The library does not remove it: it is part
of the name, and only an identifier that has it too matches the target. If the
name does not really have it, remove it, or put a line end before the next
configuration.)"},
    {EHazard::kCommaInTarget, "comma-in-target", ESeverity::kWarning, EMender::kAdministrator,
     R"(The name of an enclosure or of a device has a comma in it. Only a semicolon separates
targets, so the text on both sides of the comma is one target. A backup that holds
one of the two is invalid, and its targets count as free. Write a semicolon instead
of the comma if the target is not really called so.)"},
    {EHazard::kLongEnclosure, "long-enclosure", ESeverity::kError, EMender::kAdministrator,
     R"(The name of an enclosure has more than 256 bytes. Every target without an enclosure
of its own gets a copy of it, so such a configuration can take more memory than
there is. A product that uses the host library decides nothing; the bare function
uses the name. The check reads nothing of the configuration. A separator was probably
lost: write the name as the array has it.)"},
    {EHazard::kByteOrderMark, "byte-order-mark", ESeverity::kError, EMender::kAdministrator,
     R"(The configuration begins with the byte-order mark of UTF-8, the bytes EF BB BF,
which some editors write before a text. It becomes part of the name of the first
enclosure, so no identifier matches the first configuration: all backups of its
device are invalid, and the targets that they hold count as free. Save the
configuration as UTF-8 without the mark.)"},
    {EHazard::kCannotOpen, "cannot-open", ESeverity::kError, EMender::kAdministrator,
     R"(The document cannot be opened. The library stops reading here: it ignores this
document and all documents after it, the targets of their backups count as free,
and the call goes on without them. The check goes on with the documents after
it, as if this one were not listed. Make the document readable; if its backup no
longer exists, do not list it.)"},
    {EHazard::kNotAFile, "not-a-file", ESeverity::kError, EMender::kAdministrator,
     R"(The name is that of a folder, a device or a pipe. The library opens it
nevertheless: it reads a folder as an empty document, and a device or a pipe to
its end, for which it may wait forever. The check does not read it. Give the
name of a file.)"},
    {EHazard::kReadError, "read-error", ESeverity::kError, EMender::kAdministrator,
     R"(The document can be opened, but not read to its end. The library uses the part
that it has read as if it were the whole document, and reports no error. Repair
the file system, or restore the document.)"},
    {EHazard::kListedTwice, "listed-twice", ESeverity::kError, EMender::kAdministrator,
     R"(A document is listed twice. It counts as two backups that hold the same targets.
One of the two becomes invalid, but both entries receive one and the same state:
either that of the valid backup or that of the invalid one. The flag word of the
last entry says whether both are excluded. List the document once.)"},
    {EHazard::kNulByte, "nul-byte", ESeverity::kError, EMender::kAdministrator,
     R"(There is a NUL byte. In a document, the library ignores everything from the NUL
byte to the end of the line, and the line end too; it reads a line that is
longer than 2047 bytes in pieces of 2047 bytes and treats each like a line. A
configuration ends at its first NUL byte: remove the byte. Restore a document
that is damaged; if the backup product wrote it so, tell its maker.)"},
    {EHazard::kUtf16, "utf-16", ESeverity::kError, EMender::kAdministrator,
     R"(The document or the configuration is encoded in UTF-16 or UTF-32, so its text
contains NUL bytes. The library reads each line of a document, and a
configuration, only up to the first NUL byte, so nearly all of the text is
ignored. Save a configuration as UTF-8. If it is a document, tell the maker of
the backup product, which must write UTF-8.)"},
    {EHazard::kEncodingMismatch, "encoding-mismatch", ESeverity::kWarning, EMender::kMaker,
     R"(The document declares an encoding that does not agree with its bytes; without a
declaration it is UTF-8. Either the document is malformed, or names are read
with other characters than were written and match no configuration. A document
must be in the encoding that it declares.)"},
    {EHazard::kMalformedXml, "malformed-xml", ESeverity::kError, EMender::kMaker,
     R"(The document is not well-formed XML. The library reports no error: it uses what
it has read before the error. A data element that has not ended there does not
count. Devices after that place are not known, so their targets count as free.
If the file was damaged later, restore it.)"},
    {EHazard::kDoctype, "doctype", ESeverity::kWarning, EMender::kMaker,
     R"(The document has a DOCTYPE. The document is not validated against it, but its
declarations take effect: whoever reads the document opens and expands the
entities that it declares. The document of a backup needs no DOCTYPE.)"},
    {EHazard::kExternalEntity, "external-entity", ESeverity::kError, EMender::kMaker,
     R"(The document refers to another file or to a network address. The library opens
it with the rights of its host, unless it was built hardened; if it cannot be
opened, the document is malformed. The check opens nothing: it reads everything
outside the document as empty. The document of a backup must contain all of its
text.)"},
    {EHazard::kNestedEntities, "nested-entities", ESeverity::kError, EMender::kMaker,
     R"(An entity refers to other entities. Each level multiplies the size of the
document, so a few lines can need more memory than there is. The check and
libraries that were built hardened read only up to this place; other libraries
read on. The maker of the product knows how its library was built. The document
of a backup needs no entities.)"},
    {EHazard::kReadingLimit, "reading-limit", ESeverity::kError, EMender::kMaker,
     R"(The document exceeds one of these limits: 128 MiB; 256 different element names;
elements nested 256 levels deep; 8192 bytes in a start tag; 16384 bytes, 256
declarations or 32 attributes in the DTD; 100 references to entities; 256
characters in an entity or in the default value of an attribute. Parameter
entities are not allowed, nor are encodings other than UTF-8, ISO-8859,
Windows-125x and the common Asian ones. The check and libraries that were built
hardened read only up to this place; other libraries read on. The maker of the
product knows how its library was built. The document of a backup needs nothing
of this kind.)"},
    {EHazard::kNoNode, "no-node", ESeverity::kError, EMender::kMaker,
     R"(The document has no element called Node. It adds no backup: the library ignores
it without a message, and its flag word does not change. If this is not the
document of a backup, do not list it. That of a backup must have a Node.)"},
    {EHazard::kSeveralNodes, "several-nodes", ESeverity::kError, EMender::kMaker,
     R"(Several Nodes are side by side, not inside another Node. Only the last one
counts, with its time stamp. The devices of the others are not known, so their
targets count as free. All of them must be in one Node.)"},
    {EHazard::kOutsideNode, "outside-node", ESeverity::kWarning, EMender::kMaker,
     R"(An objid, altobjid, type or splitType is not inside a Node, or a timeStamp is
before the first Node. It does not count. It must be in the Node that it belongs
to.)"},
    {EHazard::kWrongName, "wrong-name", ESeverity::kWarning, EMender::kMaker,
     R"(The name of an element is like one that the library uses, but has other capital
or small letters, or a prefix. The element does not count, because the library
compares names byte by byte and knows no namespaces. The names must be Node,
objid, altobjid, type, splitType and timeStamp.)"},
    {EHazard::kEmptyElement, "empty-element", ESeverity::kWarning, EMender::kMaker,
     R"(A data element (objid, altobjid, type, splitType or timeStamp) contains no text.
It takes the last text before it, usually the white space before its start tag
or the value of the element before it. A data element that has no value must be
left out.)"},
    {EHazard::kSplitValue, "split-value", ESeverity::kError, EMender::kMaker,
     R"(The text of a data element consists of several pieces, and only the last piece
counts: a&amp;b is read as &b. A reference such as &amp; ends the piece before
it and begins the next one. Comments, processing instructions, CDATA sections
and elements end a piece. The text must be in one piece; one that contains & or
< can be one CDATA section.)"},
    {EHazard::kLongText, "long-text", ESeverity::kError, EMender::kMaker,
     R"(The text of a data element is longer than 1 MiB. The XML library delivers it in
pieces, and only the last piece counts. No identifier or time stamp needs to be
that long.)"},
    {EHazard::kRepeatedElement, "repeated-element", ESeverity::kWarning, EMender::kMaker,
     R"(A Node has a second objid or altobjid, or a document a second timeStamp, with a
different text. The last one counts. A timeStamp counts for the whole document,
whichever Node it is in. There must be only one.)"},
    {EHazard::kNoTimeStamp, "no-time-stamp", ESeverity::kError, EMender::kMaker,
     R"(The backup has no time stamp. It counts as older than all backups that have one:
its targets are the first to be released, and a target that it shares with
another backup is claimed by the other one. Every document must have a
timeStamp.)"},
    {EHazard::kImpossibleDate, "impossible-date", ESeverity::kError, EMender::kMaker,
     R"(The time stamp has 14 digits but is no date YYYYMMDDhhmmss: there is no such
month, day or time of day, or the year does not stand first. Time stamps are
compared as text, so the newest backup can be the first to be released. The year
must stand first, then month, day, hour, minute and second: 20261001013000.)"},
    {EHazard::kEqualTimeStamps, "equal-time-stamps", ESeverity::kWarning, EMender::kMaker,
     R"(Two backups have the same time stamp. It is undefined which of them counts as
newer, so it is also undefined which one claims a target that both hold, and
which one is released first. If one document is a copy of the other, list only
one of them. Every backup must have a time stamp of its own.)"},
    {EHazard::kMixedTimeStamps, "mixed-time-stamps", ESeverity::kError, EMender::kMaker,
     R"(The time stamps differ in width or form. They are compared as text, byte by
byte: 999 counts as newer than 1000. The newest backup can be the first to be
released. All time stamps must have one form that begins with the year, such as
20261001013000.)"},
    {EHazard::kNoDevice, "no-device", ESeverity::kWarning, EMender::kMaker,
     R"(No objid of the backup contains UDID##, so the backup names no device. Such a
backup agrees with every configuration and holds no target. It can become
"rotated", but that frees no target. If the backup has snapshots, its document
must name them with identifiers.)"},
    {EHazard::kNoAltobjid, "no-altobjid", ESeverity::kError, EMender::kMaker,
     R"(A Node names a device with its objid, but its altobjid is missing or empty. An
empty text is not an identifier: an exception ends the call, unless a pair
before this one, in the order of the objids, matches no configuration. A Node
that names a device must have an altobjid.)"},
    {EHazard::kUnusedAltobjid, "unused-altobjid", ESeverity::kError, EMender::kMaker,
     R"(A Node has an altobjid with an identifier, but its objid does not contain UDID##
(in capital letters). So the Node is not a device: this backup does not hold the
target that the altobjid names, and the target counts as free. The objid must be
the identifier of the device that was backed up.)"},
    {EHazard::kMalformedIdentifier, "malformed-identifier", ESeverity::kError, EMender::kMaker,
     R"(The objid or altobjid of a device is not an identifier. An identifier begins
with UDID## or UEID##; then come two parts that end with ##, an enclosure, ##
and a device. When the library checks this identifier, an exception ends the
call: there is no selection, and no flag word changes. The library does not
check it if a pair before this one, in the order of the objids, matches no
configuration. Every identifier of a device must have this form.)"},
    {EHazard::kSameObjid, "same-objid", ESeverity::kError, EMender::kMaker,
     R"(Two Nodes have the same objid and different altobjids. Only the later one
counts: this backup does not hold the target that the earlier one names, and
that target counts as free. Each objid must be in only one Node.)"},
    {EHazard::kPairMatchesNothing, "pair-matches-nothing", ESeverity::kError, EMender::kAdministrator,
     R"(The pair of an objid and an altobjid matches no configuration: either no
configuration has the device of the objid as its first target, or none of those
that do has the target of the altobjid as a further target. The whole backup is
then invalid: it claims none of its targets, and those that are configured count
as free. Names are compared byte by byte.

If the configuration lacks the target or misspells it, correct the
configuration and check again: targets that another backup holds too are found
only then. If the device is no longer backed up, delete the backup in the
product; if another document names one of its targets too, first ask the maker
of the product, because this may delete the snapshot of the other backup. If the
document is wrong, tell the maker, and do not edit it.)"},
    {EHazard::kTargetHeldTwice, "target-held-twice", ESeverity::kError, EMender::kMaker,
     R"(Two pairs of one backup name the same target of one configuration. The first
pair claims it, and the second finds it used: the backup is invalid, and it is
never released. Each pair must name a target of its own.)"},
    {EHazard::kTargetHeldBySeveral, "target-held-by-several", ESeverity::kError, EMender::kAdministrator,
     R"(Several backups hold the same target, but only one has its snapshot there. The
backup with the newest time stamp claims the target. The others find it used:
they are invalid and never released, and their other targets stay used. With
equal time stamps it is undefined which backup claims the target.

If one document is a copy of another, list only one of them. Otherwise look on
the array when the snapshot was made, to see whose it is. Deleting the other
backup in the product may delete this snapshot too: ask the maker of the product
how to remove only the document. Do not edit documents.)"},
}};

static_assert(areInOrder(kKinds, &SHazardKind::hazard), "a row for each EHazard, in that order");

}  // namespace

const std::array<SHazardKind, kHazardCount>& hazardKinds() {
    return kKinds;
}

const SHazardKind& kindOf(EHazard hazard) {
    return kKinds.at(static_cast<std::size_t>(hazard));
}

std::string_view nameOf(ESeverity severity) {
    return severity == ESeverity::kError ? "error" : "warning";
}

const SHazardKind* findKind(std::string_view name) {
    const auto* const found = std::find_if(kKinds.begin(), kKinds.end(),
                                           [name](const SHazardKind& kind) { return kind.name == name; });
    return found == kKinds.end() ? nullptr : found;
}

}  // namespace fi_rotate
