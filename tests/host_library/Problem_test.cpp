// Every problem of an input is named, and nothing is decided then.

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/host_library/Fixture.h"

namespace fi_test {
namespace {

using testing::HasSubstr;

class CHostLibraryProblem : public CHostLibraryTest {};

TEST_F(CHostLibraryProblem, OfAMissingFileIsNamedWithItsReason) {
    EXPECT_THAT(textOfRefusal(path("missing.xml"), FI_ROTATION_CANNOT_OPEN),
                HasSubstr("No such file or directory"));
}

TEST_F(CHostLibraryProblem, OfAnEmptyNameIsNamed) {
    EXPECT_THAT(textOfRefusal("", FI_ROTATION_CANNOT_OPEN), HasSubstr("No such file or directory"));
}

TEST_F(CHostLibraryProblem, OfANameThroughAFileIsNamed) {
    EXPECT_THAT(textOfRefusal(holder("a.xml", "snap1") + "/b.xml", FI_ROTATION_CANNOT_OPEN),
                HasSubstr("Not a directory"));
}

TEST_F(CHostLibraryProblem, OfANameThatIsTooLongIsNamed) {
    EXPECT_THAT(textOfRefusal(path(std::string(300, 'n')), FI_ROTATION_CANNOT_OPEN),
                HasSubstr("File name too long"));
}

TEST_F(CHostLibraryProblem, OfALinkToItselfIsNamed) {
    std::filesystem::create_symlink(path("loop"), path("loop"));
    EXPECT_THAT(textOfRefusal(path("loop"), FI_ROTATION_CANNOT_OPEN),
                HasSubstr("Too many levels of symbolic links"));
}

TEST_F(CHostLibraryProblem, OfAFileThatMayNotBeReadIsNamed) {
    const std::string file = holder("a.xml", "snap1");
    // The user that this test changes to must be able to use the folder.
    std::filesystem::permissions(folder.path(""), std::filesystem::perms::all);
    std::filesystem::permissions(file, std::filesystem::perms::none);
    constexpr uid_t kNobody = 65534;
    const uid_t user = geteuid();
    ASSERT_TRUE(user != 0 || seteuid(kNobody) == 0);
    const std::string text = textOfRefusal(file, FI_ROTATION_CANNOT_OPEN);
    ASSERT_TRUE(user != 0 || seteuid(0) == 0);
    EXPECT_THAT(text, HasSubstr("Permission denied"));
}

#ifndef __SANITIZE_ADDRESS__
// The sanitizer needs descriptors itself.
TEST_F(CHostLibraryProblem, OfAProcessWithoutDescriptorsLeftIsNamed) {
    const std::string file = holder("a.xml", "snap1");
    // Sets up what is set up once, which needs descriptors.
    ASSERT_EQ(fi_rotation_call_run(newCall(kConfiguration, {file}).get()), FI_ROTATION_SELECTED);
    rlimit former{};
    getrlimit(RLIMIT_NOFILE, &former);
    rlimit none = former;
    none.rlim_cur = 0;
    setrlimit(RLIMIT_NOFILE, &none);
    const std::string text = textOfRefusal(file, FI_ROTATION_CANNOT_OPEN);
    setrlimit(RLIMIT_NOFILE, &former);
    EXPECT_THAT(text, HasSubstr("Too many open files"));
}
#endif

TEST_F(CHostLibraryProblem, OfAFolderIsNamed) {
    EXPECT_THAT(textOfRefusal(folder.path(""), FI_ROTATION_NOT_A_FILE), HasSubstr("folder"));
}

TEST_F(CHostLibraryProblem, OfADeviceIsNamed) {
    EXPECT_THAT(textOfRefusal("/dev/zero", FI_ROTATION_NOT_A_FILE), HasSubstr("device"));
}

TEST_F(CHostLibraryProblem, OfASocketIsNamed) {
    const std::string name = path("socket");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(name.copy(address.sun_path, sizeof address.sun_path - 1), sizeof address.sun_path - 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_THAT(textOfRefusal(name, FI_ROTATION_NOT_A_FILE), HasSubstr("socket"));
    close(descriptor);
}

TEST_F(CHostLibraryProblem, OfAPipeIsNamedWithoutWaitingForAWriter) {
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_THAT(textOfRefusal(path("pipe"), FI_ROTATION_NOT_A_FILE), HasSubstr("pipe"));
}

TEST_F(CHostLibraryProblem, OfAPipeIsNamedWithoutWakingItsWriter) {
    const std::string pipe = path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::atomic<bool> hasReader = false;
    std::thread writer([&] {
        const int descriptor = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
        hasReader = true;
        close(descriptor);
    });
    textOfRefusal(pipe, FI_ROTATION_NOT_A_FILE);
    EXPECT_FALSE(hasReader);
    const int reader = open(pipe.c_str(), O_RDONLY | O_CLOEXEC);
    writer.join();
    close(reader);
}

TEST_F(CHostLibraryProblem, OfAPipeIsNamedWithoutTakingWhatIsInIt) {
    const std::string pipe = path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int descriptor = open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::write(descriptor, "text", 4), 4);
    textOfRefusal(pipe, FI_ROTATION_NOT_A_FILE);
    int left = 0;
    EXPECT_EQ(ioctl(descriptor, FIONREAD, &left), 0);
    EXPECT_EQ(left, 4);
    close(descriptor);
}

TEST_F(CHostLibraryProblem, OfADamagedDocumentIsNamedWithItsPlace) {
    const std::string file = write("a.xml", "<Node>\n<timeStamp>1</wrong></Node>");
    EXPECT_THAT(textOfRefusal(file, FI_ROTATION_NOT_WELL_FORMED), HasSubstr("line 2"));
}

TEST_F(CHostLibraryProblem, OfDocumentsThatAreNotWellFormedIsNamed) {
    for (const char* const text : {"", " \n", "no markup", "<Node>", "<Node/><Node/>", "<Node>&none;</Node>",
                                   "<Node>\xFF</Node>", "<Node a='1' a='2'/>", "<Node>]]></Node>"}) {
        SCOPED_TRACE(text);
        textOfRefusal(write("a.xml", text), FI_ROTATION_NOT_WELL_FORMED);
    }
}

TEST_F(CHostLibraryProblem, OfADocumentBeyondALimitNamesTheLimitAndDoesNotCallItMalformed) {
    std::string text = "<Node>";
    for (int i = 0; i < 256; ++i) {
        text += "<n" + std::to_string(i) + "/>";
    }
    const std::string file = write("a.xml", text + "</Node>");
    const std::string refusal = textOfRefusal(file, FI_ROTATION_NOT_WELL_FORMED);
    EXPECT_THAT(refusal, testing::ContainsRegex("cannot be read to its end as XML: line 1, column [0-9]+: "
                                                "more than 256 different element names"));
}

// Cut anywhere inside its outermost element a document is refused, never read in part.
TEST_F(CHostLibraryProblem, OfADocumentThatIsCutOffIsNamedWhereverItIsCut) {
    const std::string whole = documentOf("1", {{"encA##lun1", "encA##snap1"}});
    for (std::size_t size = 0; size <= whole.rfind('>'); ++size) {
        const HostCall call = newCall(kConfiguration, {write("a.xml", whole.substr(0, size))});
        EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_REFUSED) << size;
        EXPECT_NE(fi_rotation_call_backup_problems(call.get(), 0) & FI_ROTATION_NOT_WELL_FORMED, 0U) << size;
        expectNothingDecided(call.get());
    }
}

TEST_F(CHostLibraryProblem, OfADocumentWithoutANodeIsNamed) {
    textOfRefusal(write("a.xml", "<fiid><node/><timeStamp>1</timeStamp></fiid>"), FI_ROTATION_NO_NODE);
}

TEST_F(CHostLibraryProblem, OfSeveralOutermostNodesIsNamed) {
    textOfRefusal(write("a.xml", "<fiid><Node/><Node/></fiid>"), FI_ROTATION_SEVERAL_ROOTS);
    textOfRefusal(write("b.xml", "<fiid><Node/><x><Node/></x><Node/></fiid>"), FI_ROTATION_SEVERAL_ROOTS);
}

TEST_F(CHostLibraryProblem, IsNotSeenInANodeThatHoldsSeveralNodes) {
    const std::string file = write("a.xml", "<fiid><Node><Node/><x><Node/></x><Node/></Node><x/></fiid>");
    EXPECT_EQ(fi_rotation_call_run(newCall(kConfiguration, {file}).get()), FI_ROTATION_SELECTED);
}

TEST_F(CHostLibraryProblem, OfANulByteIsNamedWithItsPlace) {
    const std::string whole = documentOf("1", {{"encA##lun1", "encA##snap1"}});
    for (const std::size_t place : {std::size_t{0}, std::size_t{10}, whole.size()}) {
        std::string text = whole;
        text.insert(place, 1, '\0');
        EXPECT_THAT(textOfRefusal(write("a.xml", text), FI_ROTATION_NUL_BYTE),
                    HasSubstr("byte " + std::to_string(place)));
    }
}

// The NUL byte stands behind the first piece that is read.
TEST_F(CHostLibraryProblem, OfANulByteFarBehindIsNamedWithItsPlace) {
    const std::string text = "<Node><!--" + std::string(300000, '.') + std::string(1, '\0') + "--></Node>";
    EXPECT_THAT(textOfRefusal(write("a.xml", text), FI_ROTATION_NUL_BYTE), HasSubstr("byte 300010"));
}

TEST_F(CHostLibraryProblem, OfUtf16IsNamed) {
    std::string text = "\xFF\xFE";
    for (const char character : documentOf("1", {{"encA##lun1", "encA##snap1"}})) {
        text += {character, '\0'};
    }
    EXPECT_THAT(textOfRefusal(write("a.xml", text), FI_ROTATION_NUL_BYTE), HasSubstr("UTF-16"));
}

TEST_F(CHostLibraryProblem, OfAFileThatIsTooLargeIsNamedFromTheFirstByteTooMany) {
    const std::string file = holder("a.xml", "snap1");
    const std::uintmax_t size = std::filesystem::file_size(file);
    const HostCall call = newCall(kConfiguration, {file});
    fi_rotation_call_limit_document(call.get(), size - 1);
    expectRefused(call.get(), {{FI_ROTATION_TOO_LARGE, 0}});
    EXPECT_THAT(fi_rotation_call_problem_text(call.get(), 0), HasSubstr(std::to_string(size)));
    fi_rotation_call_limit_document(call.get(), size);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
}

TEST_F(CHostLibraryProblem, OfMoreThan128MebibytesIsNamedByDefault) {
    const std::string file = holder("a.xml", "snap1");
    std::filesystem::resize_file(file, (std::uintmax_t{128} << 20) + 1);
    textOfRefusal(file, FI_ROTATION_TOO_LARGE);
}

// The system says of this file that its size is 0, but it has content.
TEST_F(CHostLibraryProblem, OfAFileThatIsLargerThanItSaysIsNamed) {
    const HostCall call = newCall(kConfiguration, {"/proc/self/status"});
    fi_rotation_call_limit_document(call.get(), 10);
    expectRefused(call.get(), {{FI_ROTATION_TOO_LARGE, 0}});
}

TEST_F(CHostLibraryProblem, OfAFileThatIsListedTwiceIsNamedUnderEachOfItsNames) {
    const std::string file = holder("a.xml", "snap1");
    std::filesystem::create_hard_link(file, path("hard"));
    std::filesystem::create_symlink(file, path("soft"));
    const std::string other = folder.path("") + "/./a.xml";
    const HostCall call = newCall(kConfiguration, {file, file, other, path("hard"), path("soft")});
    expectRefused(call.get(), {{FI_ROTATION_LISTED_TWICE, 1},
                               {FI_ROTATION_LISTED_TWICE, 2},
                               {FI_ROTATION_LISTED_TWICE, 3},
                               {FI_ROTATION_LISTED_TWICE, 4}});
    EXPECT_THAT(fi_rotation_call_problem_text(call.get(), 3), HasSubstr(file));
}

TEST_F(CHostLibraryProblem, IsNotSeenInTwoFilesOfTheSameContent) {
    const HostCall call = newCall(kConfiguration, {holder("a.xml", "snap1"), holder("b.xml", "snap1")});
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
}

TEST_F(CHostLibraryProblem, OfARejectedConfigurationIsNamed) {
    const std::string noDevice = " has a target without a device";
    const std::string noEnclosure = " has a target without an enclosure";
    const std::vector<std::pair<const char*, std::string>> rows{
        {"", "there is no configuration in \"\""},
        {"&\n\r", "there is no configuration in \"&\n\r\""},
        {";;", "the configuration \";;\" names no target"},
        {"encA##", "the configuration \"encA##\"" + noDevice},
        {"##lun1", "the configuration \"##lun1\"" + noEnclosure},
        {"lun1", "the configuration \"lun1\"" + noEnclosure},
        {"encA##lun1;encA##", "the configuration \"encA##\"" + noDevice},
        {"encA##lun1;snap1&;", "the configuration \";\" names no target"},
        {"encA##lun1;snap1\nlun2;snap2", "the configuration \"lun2\"" + noEnclosure},
    };
    for (const auto& [configuration, message] : rows) {
        SCOPED_TRACE(configuration);
        const HostCall call = newCall(configuration);
        expectRefused(call.get(), {{FI_ROTATION_CONFIGURATION_REJECTED, -1}});
        EXPECT_EQ(fi_rotation_call_message(call.get()), message);
    }
}

// A configuration may hold the words with which the trace rejects one; it is still recognised as rejected.
TEST_F(CHostLibraryProblem, OfARejectedConfigurationIsNamedWhateverItHolds) {
    const std::string words = "\" has no device data specified.";
    for (const std::string& name :
         {words, "%s%n" + words, std::string("resource configuration \"x\" has no targets specified. "),
          "]" + std::string(5000, '[') + words, std::string("\\\"\t\x7f\xFF")}) {
        SCOPED_TRACE(name);
        const HostCall device = newCall("encA##lun1;snap1&" + name + "##");
        expectRefused(device.get(), {{FI_ROTATION_CONFIGURATION_REJECTED, -1}});
        const HostCall enclosure = newCall("encA##lun1;snap1&" + name);
        expectRefused(enclosure.get(), {{FI_ROTATION_CONFIGURATION_REJECTED, -1}});
    }
}

// Each of the other targets gets a copy of it.
TEST_F(CHostLibraryProblem, OfALongEnclosureIsNamedBeforeItCostsMemory) {
    std::string configuration = std::string(500000, 'e') + "##lun1";
    for (int i = 0; i < 250000; ++i) {
        configuration += ";s";
    }
    const HostCall call = newCall(configuration);
    expectRefused(call.get(), {{FI_ROTATION_CONFIGURATION_REJECTED, -1}});
    EXPECT_EQ(fi_rotation_call_message(call.get()),
              "an enclosure of the configuration has 500000 bytes and may have 256: it begins with \"" +
                  std::string(32, 'e') + "\"");
}

TEST_F(CHostLibraryProblem, OfADocumentIsNamedBesideALongEnclosure) {
    const HostCall call = newCall(std::string(257, 'e') + "##lun1;snap1", {folder.path("gone.xml")});
    expectRefused(call.get(), {{FI_ROTATION_CONFIGURATION_REJECTED, -1}, {FI_ROTATION_CANNOT_OPEN, 0}});
}

TEST_F(CHostLibraryProblem, OfAnEmptyConfigurationSaysThatThereIsNone) {
    const HostCall call(fi_rotation_call_new(nullptr));
    expectRefused(call.get(), {{FI_ROTATION_CONFIGURATION_REJECTED, -1}});
}

TEST_F(CHostLibraryProblem, OfEachKindOfMalformedIdentifierIsNamedInWordsOfItsOwn) {
    std::set<std::string> texts;
    for (const std::string identifier : {"UDID##v##m##", "without a prefix", "UDID##v", "UDID##v##m"}) {
        const std::string file = write("a.xml", "<Node><objid>UDID##v##m##encA##lun1</objid><altobjid>" +
                                                    identifier + "</altobjid></Node>");
        std::string text = textOfRefusal(file, FI_ROTATION_MALFORMED_IDENTIFIER);
        const std::size_t place = text.find(identifier);
        ASSERT_NE(place, std::string::npos) << text;
        texts.insert(text.erase(place, identifier.size()));
    }
    EXPECT_EQ(texts.size(), 4U);
}

TEST_F(CHostLibraryProblem, OfAMalformedIdentifierNamesTheDocumentThatHoldsIt) {
    const std::string bad = write("b.xml", "<Node><objid>UDID##v</objid></Node>");
    const HostCall call = newCall(kConfiguration, {holder("a.xml", "snap1"), bad, holder("c.xml", "snap2")});
    expectRefused(call.get(), {{FI_ROTATION_MALFORMED_IDENTIFIER, 1}});
}

TEST_F(CHostLibraryProblem, OfAMalformedIdentifierIsNamedForEveryDocumentThatHoldsOne) {
    const HostCall call = newCall(kConfiguration, {write("a.xml", "<Node><objid>UDID##a</objid></Node>"),
                                                   write("b.xml", "<Node><objid>UDID##b</objid></Node>")});
    expectRefused(call.get(), {{FI_ROTATION_MALFORMED_IDENTIFIER, 0}, {FI_ROTATION_MALFORMED_IDENTIFIER, 1}});
}

TEST_F(CHostLibraryProblem, OfAnExternalEntityIsNamedAndItIsNotOpened) {
    // To open the pipe would wait for ever, since nothing writes to it.
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    for (const std::string& prolog :
         {"<!DOCTYPE Node [<!ENTITY e SYSTEM \"" + path("pipe") + "\">]><Node>&e;</Node>",
          "<!DOCTYPE Node [<!ENTITY % e SYSTEM \"" + path("pipe") + "\"> %e;]><Node/>",
          "<!DOCTYPE Node SYSTEM \"" + path("pipe") + "\"><Node/>"}) {
        SCOPED_TRACE(prolog);
        textOfRefusal(write("a.xml", prolog), FI_ROTATION_NOT_WELL_FORMED);
    }
}

TEST_F(CHostLibraryProblem, OfNestedEntitiesIsNamed) {
    std::string text = "<!DOCTYPE Node [<!ENTITY e0 \"text\">";
    for (int level = 1; level < 12; ++level) {
        const std::string inner = "&e" + std::to_string(level - 1) + ";";
        text += "<!ENTITY e" + std::to_string(level) + " \"";
        for (int i = 0; i < 10; ++i) {
            text += inner;
        }
        text += "\">";
    }
    textOfRefusal(write("a.xml", text + "]><Node><objid>&e11;</objid></Node>"), FI_ROTATION_NOT_WELL_FORMED);
}

TEST_F(CHostLibraryProblem, IsNamedOfEveryInputInOrder) {
    const std::string nul = write("nul.xml", std::string("<Node>\0</Node>", 14));
    const std::string damaged = write("damaged.xml", "<Node>");
    const std::string without = write("without.xml", "<x/>");
    const std::string several = write("several.xml", "<x><Node/><Node/></x>");
    const std::string good = holder("good.xml", "snap1");
    const HostCall call =
        newCall("encA##lun1;snap1&broken", {path("missing.xml"), folder.path(""), good, nul, damaged, without,
                                            path("missing.xml"), several, good});
    expectRefused(call.get(), {{FI_ROTATION_CONFIGURATION_REJECTED, -1},
                               {FI_ROTATION_CANNOT_OPEN, 0},
                               {FI_ROTATION_NOT_A_FILE, 1},
                               {FI_ROTATION_NUL_BYTE, 3},
                               {FI_ROTATION_NOT_WELL_FORMED, 4},
                               {FI_ROTATION_NO_NODE, 5},
                               {FI_ROTATION_CANNOT_OPEN, 6},
                               {FI_ROTATION_LISTED_TWICE, 6},
                               {FI_ROTATION_SEVERAL_ROOTS, 7},
                               {FI_ROTATION_LISTED_TWICE, 8}});
    const std::string message = fi_rotation_call_message(call.get());
    EXPECT_EQ(std::count(message.begin(), message.end(), '\n'), 9);
}

TEST_F(CHostLibraryProblem, IsGoneInARunAfterItsInputWasCorrected) {
    const std::string file = path("a.xml");
    const HostCall call = newCall(kConfiguration, {file});
    expectRefused(call.get(), {{FI_ROTATION_CANNOT_OPEN, 0}});
    holder("a.xml", "snap1");
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(fi_rotation_call_problem_count(call.get()), 0);
    EXPECT_STREQ(fi_rotation_call_selection(call.get()), "[encA##lun1;encA##snap2]");
}

}  // namespace
}  // namespace fi_test
