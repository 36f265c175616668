#include "cli/check/hazard.h"

#include <algorithm>

#include "host/rows.h"

namespace fi_rotate {
namespace {

using Kinds = std::array<SHazardKind, kHazardCount>;

constexpr Kinds kKinds{{
    {EHazard::kNoConfiguration, "no-configuration", ESeverity::kError,
     R"(The configuration is empty or holds separators only. The call succeeds all the same, with an empty
selection: no target is chosen for anything, and every backup that names a device is invalid.)"},
    {EHazard::kConfigurationRejected, "configuration-rejected", ESeverity::kError,
     R"(A target is malformed. The configuration that holds it and all after it are lost; those before it are
used as if they were the whole, and the call does not fail for it. When the first one is malformed,
none is left, and the call succeeds with an empty selection. Every target needs a device, the first one of
a configuration an enclosure too: ENCLOSURE##DEVICE. An encoded &amp; separates configurations like a bare
one, so that no name can hold it.)"},
    {EHazard::kNoFurtherTargets, "no-further-targets", ESeverity::kError,
     R"(A configuration consists of its first target only. There is nothing to choose from, so that no call can
succeed, whatever is released for the other configurations.)"},
    {EHazard::kTargetRepeated, "target-repeated", ESeverity::kError,
     R"(A target stands twice in one configuration. A backup that holds it marks the first of the two only; the
second stays free and may be chosen, which overwrites the snapshot on it.)"},
    {EHazard::kTargetInTwoConfigurations, "target-in-two-configurations", ESeverity::kError,
     R"(A target stands in two configurations. Each has a record of its own for it: what one holds is free in the
other, and one selection can name it for both.)"},
    {EHazard::kFirstTargetRepeated, "first-target-repeated", ESeverity::kError,
     R"(The first target of a configuration, the device that is backed up, stands among the further targets, its
own or those of another configuration. It can be chosen as the target of a snapshot, which overwrites it.)"},
    {EHazard::kDeviceConfiguredTwice, "device-configured-twice", ESeverity::kWarning,
     R"(Two configurations have the same first target. A backup of this device may hold targets of both, and the
selection names a target for each of them.)"},
    {EHazard::kBlankInTarget, "blank-in-target", ESeverity::kWarning,
     R"(An enclosure or a device begins or ends with a blank. Nothing is trimmed: the blank is part of the name,
and no identifier without it matches.)"},
    {EHazard::kByteOrderMark, "byte-order-mark", ESeverity::kError,
     R"(The configuration begins with the byte-order mark of UTF-8, the bytes EF BB BF that some editors put before
a text. It is part of the name of the first enclosure, so that no identifier matches the first
configuration: all backups of its device are invalid, and the targets that they hold count as free. Save the
configuration as UTF-8 without the mark.)"},
    {EHazard::kCannotOpen, "cannot-open", ESeverity::kError,
     R"(The document cannot be opened. The library stops reading there: this document and all after it are
ignored, their targets count as free, and the call goes on without them. They are checked here nevertheless,
as if this one were not listed.)"},
    {EHazard::kNotAFile, "not-a-file", ESeverity::kError,
     R"(The name is that of a folder, a device or a pipe. The library opens it: a folder reads as an empty
document; a pipe or a device is read to its end, if it has one. It is not read here.)"},
    {EHazard::kReadError, "read-error", ESeverity::kError,
     R"(The document can be opened, but reading it fails. The library takes what came before the fault for the
whole document and says nothing.)"},
    {EHazard::kListedTwice, "listed-twice", ESeverity::kError,
     R"(A document is listed twice. It counts as two backups that hold the same targets: one of them is invalid,
which one is undefined, and both flag words receive the state of the same one. The exclude bit of the last
one counts for both.)"},
    {EHazard::kNulByte, "nul-byte", ESeverity::kError,
     R"(There is a NUL byte. In a document the rest of its line, or of its piece of 2047 bytes, is lost, the line
end with it. A configuration ends at its first one.)"},
    {EHazard::kUtf16, "utf-16", ESeverity::kError,
     R"(The document or the configuration is written in UTF-16 or UTF-32. Its text holds NUL bytes. Of a document
the library reads each line up to the first of them, of a configuration nothing behind the first, so that
nothing of use is left. Write it in UTF-8.)"},
    {EHazard::kEncodingMismatch, "encoding-mismatch", ESeverity::kWarning,
     R"(The encoding that the document declares, UTF-8 when it declares none, does not agree with its bytes. The
document is malformed, or names are read as others than were written and then match nothing.)"},
    {EHazard::kMalformedXml, "malformed-xml", ESeverity::kError,
     R"(The document is not well-formed. The library says nothing about it: it uses what was read before the
fault. Data elements that had not ended do not count; devices that come after the fault are not known, so
that their targets count as free.)"},
    {EHazard::kDoctype, "doctype", ESeverity::kWarning,
     R"(The document has a DOCTYPE. Nothing is validated, but what it declares is obeyed: entities are opened and
expanded by whoever reads the document.)"},
    {EHazard::kExternalEntity, "external-entity", ESeverity::kError,
     R"(The document refers to another file or to the network. The library opens it with the rights of its host,
unless it was built hardened, and takes a missing one for a fault. Nothing is opened here: what is outside
the document is read as empty.)"},
    {EHazard::kNestedEntities, "nested-entities", ESeverity::kError,
     R"(An entity refers to others. Each level multiplies the size of the document; a few lines can grow beyond
all memory. The document is read to this place only; a library that was not built hardened reads on.)"},
    {EHazard::kReadingLimit, "reading-limit", ESeverity::kError,
     R"(The document goes beyond a limit of reading: 128 MiB, 256 different element names, elements nested 256 deep, a
start tag of 8192 bytes, a DTD of 16384 bytes, 256 declarations or 32 attributes, 100 references to entities, 256 characters of
an entity or of the default of an attribute, any parameter entity, or an encoding other than UTF-8, ISO-8859,
Windows-125x and the common Asian ones. It is not read beyond this place; a library that was not built hardened
reads on.)"},
    {EHazard::kNoNode, "no-node", ESeverity::kError,
     R"(No element called Node was read. The document adds no backup, which the library passes over in silence; its
flag word stays as it is.)"},
    {EHazard::kSeveralNodes, "several-nodes", ESeverity::kError,
     R"(Several Nodes stand side by side under another element. Only the last one counts, with its time stamp; the
devices of the others are not known, so that their targets count as free. Put them into one Node.)"},
    {EHazard::kOutsideNode, "outside-node", ESeverity::kWarning,
     R"(An objid, altobjid, type or splitType ends outside every Node, or a timeStamp before the first one. It is
ignored.)"},
    {EHazard::kWrongName, "wrong-name", ESeverity::kWarning,
     R"(An element is called like one that counts, but for the case of its letters or for a prefix. It is
ignored: names are compared as they are written, namespaces are not known.)"},
    {EHazard::kEmptyElement, "empty-element", ESeverity::kWarning,
     R"(A data element holds no text. It takes the last text before it, mostly the white space before its start
tag or the value of the element before it.)"},
    {EHazard::kSplitValue, "split-value", ESeverity::kError,
     R"(The text of a data element comes in several pieces, of which only the last one counts: a&amp;b is read as
&b. A reference ends the piece before it and begins the next one; comments, processing instructions, CDATA
sections and elements end a piece. Write the text in one piece.)"},
    {EHazard::kLongText, "long-text", ESeverity::kError,
     R"(The text of a data element is longer than 1 MiB. The XML library delivers it in pieces, of which only the
last one counts.)"},
    {EHazard::kRepeatedElement, "repeated-element", ESeverity::kWarning,
     R"(A Node has a second objid or altobjid, or a document a second timeStamp, with another text. The last one
counts. A timeStamp belongs to the whole document, whichever Node it stands in.)"},
    {EHazard::kNoTimeStamp, "no-time-stamp", ESeverity::kError,
     R"(The backup has no time stamp. It counts as older than all that have one: its targets are the first to be
released, and a backup that has one wins a target that both hold.)"},
    {EHazard::kEqualTimeStamps, "equal-time-stamps", ESeverity::kWarning,
     R"(Two backups have the same time stamp. Which of them counts as the newer is undefined: so is which one wins
a target that both hold, and which one is released first.)"},
    {EHazard::kMixedTimeStamps, "mixed-time-stamps", ESeverity::kError,
     R"(The time stamps differ in width or form. They are compared as text, byte by byte: 999 counts as newer than
1000. The newest backup may be the first to be released. All should look alike, the year first.)"},
    {EHazard::kNoDevice, "no-device", ESeverity::kWarning,
     R"(No objid of the backup holds UDID##, so that it names no device. Such a backup agrees with every
configuration, holds no target, and is "rotated" without freeing anything.)"},
    {EHazard::kNoAltobjid, "no-altobjid", ESeverity::kError,
     R"(A Node names a device with its objid but has no altobjid, or an empty one. An empty text is no identifier:
unless a pair before it in the order of objids matches nothing, an exception ends the call.)"},
    {EHazard::kUnusedAltobjid, "unused-altobjid", ESeverity::kError,
     R"(A Node has an altobjid with an identifier, but its objid holds no UDID## (with case). The Node is no device:
the target that its altobjid names is not held by this backup and counts as free.)"},
    {EHazard::kMalformedIdentifier, "malformed-identifier", ESeverity::kError,
     R"(A device's objid or altobjid is no identifier: UDID## or UEID##, two parts that end with ##, then an
enclosure, ## and a device. When the check of the backup meets it, an exception ends the call: there is no
selection, and no flag word changes. It does not meet it when a pair before it, in the order of objids,
matches nothing.)"},
    {EHazard::kSameObjid, "same-objid", ESeverity::kError,
     R"(Two Nodes have the same objid and different altobjids. Only the later one counts: the target of the other
is not held by this backup and counts as free.)"},
    {EHazard::kPairMatchesNothing, "pair-matches-nothing", ESeverity::kError,
     R"(The pair of an objid and an altobjid matches no configuration: none has the device as its first target, or
none of those has the altobjid's among its further ones. The whole backup is invalid then: it claims none of
its targets, and those that are configured count as free. Names are compared byte by byte.)"},
    {EHazard::kTargetHeldTwice, "target-held-twice", ESeverity::kError,
     R"(Two pairs of one backup name the same target of one configuration. The first claims it, the second finds
it used: the backup is invalid, and it is never released.)"},
    {EHazard::kTargetHeldBySeveral, "target-held-by-several", ESeverity::kError,
     R"(Several backups hold the same target; mostly one document is a renamed copy of another. The backup with the
newest time stamp claims the target, the others find it used: they are invalid, so that they are never
released, and what else they hold stays used. With equal time stamps it is undefined which of them claims
it. List of these documents only the one whose snapshot is on the target.)"},
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
