#include <string>

#include "tests/cli/check/Rows.h"

namespace fi_test {
namespace {

using fi_rotate::EHazard;

SCheckedCall of(const std::string& configuration) {
    return {configuration, {}};
}

}  // namespace

std::vector<SCheckRow> configurationRows() {
    const SCheckedCall clean = of("encA##lun1;snap1");
    return {
        {"empty",
         EHazard::kNoConfiguration,
         of(""),
         {"config:1:1: error: there is no configuration; a call succeeds with an empty selection "
          "[no-configuration]"},
         clean},
        {"separators only",
         EHazard::kNoConfiguration,
         of("&\n\r&amp;"),
         {"config:1:1: error: there is no configuration; a call succeeds with an empty selection "
          "[no-configuration]"},
         of("&\nencA##lun1;snap1&amp;")},
        {"no enclosure",
         EHazard::kConfigurationRejected,
         of("encA##lun1;snap1&lun2;snap2&encA##lun3;snap3"),
         {"config:1:18: error: configuration rejected: \"lun2\" has no enclosure, which a first target "
          "needs; configurations 2 to 3 are not used, but configuration 1 is [configuration-rejected]"},
         of("encA##lun1;snap1&encA##lun2;snap2&encA##lun3;snap3")},
        {"no device, on the second line",
         EHazard::kConfigurationRejected,
         of("encA##lun1;snap1\nencA##lun2;encB##\n"),
         {"config:2:12: error: configuration rejected: \"encB##\" has no device; configuration 2 is not "
          "used, but configuration 1 is [configuration-rejected]"},
         of("encA##lun1;snap1\nencA##lun2;encB##snap2\n")},
        {"no targets, in the first",
         EHazard::kConfigurationRejected,
         of(";;&encA##lun1;snap1"),
         {"config:1:1: error: configuration rejected: \";;\" has no targets; configurations 1 to 2 are not "
          "used, and a call succeeds with an empty selection [configuration-rejected]"},
         of("encA##lun1;;snap1;")},
        {"an encoded ampersand",
         EHazard::kConfigurationRejected,
         of("R&amp;D##lun1;snap1"),
         {"config:1:1: error: configuration rejected: \"R\" has no enclosure, which a first target needs; "
          "configurations 1 to 2 are not used, and a call succeeds with an empty selection "
          "[configuration-rejected]"},
         of("R&quot;D##lun1;snap1")},
        {"no further targets",
         EHazard::kNoFurtherTargets,
         of("encA##lun1;snap1&encA##lun2"),
         {"config:1:18: error: \"encA##lun2\" has no further targets, so no call can succeed "
          "[no-further-targets]"},
         of("encA##lun1;snap1&encA##lun2;snap2")},
        {"twice in one configuration",
         EHazard::kTargetRepeated,
         of("encA##lun1;snap1;snap2;encA##snap1"),
         {"config:1:24: error: \"encA##snap1\" is already in this configuration [target-repeated]"},
         of("encA##lun1;snap1;snap2;encB##snap1")},
        {"in two configurations",
         EHazard::kTargetInTwoConfigurations,
         of("encA##lun1;snap1\nencA##lun2;snap2;snap1"),
         {"config:2:18: error: \"encA##snap1\" is already in configuration 1 [target-in-two-configurations]"},
         of("encA##lun1;snap1\nencB##lun2;snap2;snap1")},
        {"a first target among its own further ones",
         EHazard::kFirstTargetRepeated,
         of("encA##lun1;snap1;lun1"),
         {"config:1:18: error: \"encA##lun1\" is the first target of configuration 1 too, so a snapshot can "
          "overwrite it [first-target-repeated]"},
         of("encA##lun1;snap1;encB##lun1")},
        {"a first target among those of an earlier configuration",
         EHazard::kFirstTargetRepeated,
         of("encA##lun1;snap1;lun2&encA##lun2;snap2"),
         {"config:1:18: error: \"encA##lun2\" is the first target of configuration 2 too, so a snapshot can "
          "overwrite it [first-target-repeated]"},
         of("encA##lun1;snap1;lun3&encA##lun2;snap2")},
        {"two configurations for a device",
         EHazard::kDeviceConfiguredTwice,
         of("encA##lun1;snap1&encA##lun1;snap2"),
         {"config:1:18: warning: \"encA##lun1\" is the first target of configuration 1 too "
          "[device-configured-twice]"},
         of("encA##lun1;snap1&encB##lun1;snap2")},
        {"a blank at the end",
         EHazard::kBlankInTarget,
         of("encA##lun1;snap1 ;snap2"),
         {"config:1:12: warning: \"encA##snap1 \" has a name that begins or ends with a blank "
          "[blank-in-target]"},
         of("encA##lun1;snap 1;snap2")},
        {"a blank for the line end before another configuration",
         EHazard::kBlankInTarget,
         of("encA##lun1;snap1;snap2 encB##lun2;snap3;snap4 encC##lun3;snap5"),
         {"config:1:18: warning: \"snap2 encB##lun2\" is one target; line ends or & separate configurations, "
          "not blanks [blank-in-target]",
          "config:1:41: warning: \"snap4 encC##lun3\" is one target; line ends or & separate configurations, "
          "not blanks [blank-in-target]"},
         // The name of an enclosure may hold a blank.
         of("encA##lun1;snap1;encB 2##snap3;encB 3##snap2;snap 4")},
        {"a blank for the line end behind the only further target",
         EHazard::kBlankInTarget,
         of("encA##lun1;copy encA##lun2;snap"),
         {"config:1:12: warning: \"copy encA##lun2\" is one target; line ends or & separate configurations, "
          "not blanks [blank-in-target]"},
         of("encA##lun1;copy encB##lun2;snap")},
        {"a blank for the line end behind a target with its enclosure",
         EHazard::kBlankInTarget,
         of("encA##lun1;encA##copy\tencB##lun2;snap"),
         {"config:1:12: warning: \"encA##copy\tencB##lun2\" is one target; line ends or & separate "
          "configurations, not blanks [blank-in-target]"},
         of("encA##lun1;encA##copy encB#lun2;snap")},
        {"a comma between two targets",
         EHazard::kCommaInTarget,
         of("encA##lun1;snap1,snap2;snap3"),
         {"config:1:12: warning: \"encA##snap1,snap2\" is one target; a semicolon separates targets, not a "
          "comma "
          "[comma-in-target]"},
         of("encA##lun1;snap1;snap2;snap3")},
        {"a comma behind the first target",
         EHazard::kCommaInTarget,
         of("encA##lun1,snap1;snap2"),
         {"config:1:1: warning: \"encA##lun1,snap1\" is one target; a semicolon separates targets, not a "
          "comma "
          "[comma-in-target]"},
         of("encA##lun1;snap1;snap2")},
        {"an enclosure of more than 256 bytes",
         EHazard::kLongEnclosure,
         of("encA##lun1;snap1&" + std::string(257, 'e') + "##lun2;snap2"),
         {"config:1:18: error: an enclosure has 257 bytes and may have 256; the configuration is not checked "
          "[long-enclosure]"},
         of("encA##lun1;snap1&" + std::string(256, 'e') + "##lun2;snap2")},
        {"places count characters, and references by what was given",
         EHazard::kBlankInTarget,
         of("\xC3\xA4&lt;##lun1;snap1; snap2"),
         {"config:1:19: warning: \"\xC3\xA4<## snap2\" has a name that begins or ends with a blank "
          "[blank-in-target]"},
         of("\xC3\xA4&lt;##lun1;snap1;snap2")},
        {"a NUL",
         EHazard::kNulByte,
         of(std::string("encA##lun1;snap1\0&encA##lun2", 28)),
         {"config:1:17: error: a NUL byte ends the configuration here [nul-byte]"},
         clean},
    };
}

}  // namespace fi_test
