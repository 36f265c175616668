#include "cli/check/document_tree.h"

#include <string>

#include <gtest/gtest.h>

#include "cli/base/xml_reader.h"
#include "tests/cli/Program.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fi_rotate::readTimeStamp;

struct SRow {
    const char* description;
    std::string document;
    std::string timeStamp;
};

const SRow kRows[] = {
    {"in the root", "<Node><timeStamp>20260101</timeStamp></Node>", "20260101"},
    {"none", "<Node><objid>x</objid></Node>", ""},
    {"in an inner Node", "<Node><Node><timeStamp>7</timeStamp></Node></Node>", "7"},
    {"the last one counts", "<Node><timeStamp>1</timeStamp><timeStamp>2</timeStamp></Node>", "2"},
    {"behind the root", "<a><Node/><timeStamp>3</timeStamp></a>", "3"},
    {"before every Node", "<a><timeStamp>4</timeStamp><Node/></a>", ""},
    {"between top-level Nodes", "<a><Node/><timeStamp>5</timeStamp><Node/></a>", ""},
    {"empty takes the text before", "<Node><objid>6</objid><timeStamp/></Node>", "6"},
    {"only the last piece", "<Node><timeStamp>a&amp;b</timeStamp></Node>", "&b"},
    {"in a CDATA section", "<Node><timeStamp><![CDATA[8]]></timeStamp></Node>", "8"},
    {"another case", "<Node><TimeStamp>9</TimeStamp></Node>", ""},
    {"with a prefix", "<Node><x:timeStamp xmlns:x=\"u\">9</x:timeStamp></Node>", ""},
    {"behind a DTD that lets nothing grow",
     "<!DOCTYPE Node [<!ENTITY e 'x'><!ATTLIST Node a CDATA 'b'>]>"
     "<Node><timeStamp>20260101</timeStamp></Node>",
     "20260101"},
    {"behind a NUL, up to which a line is read",
     std::string("<Node>\n<x>") + '\0' + "junk</x>\n<timeStamp>20260101</timeStamp>", "20260101"},
    {"behind a reference to a file that is missing",
     "<!DOCTYPE Node [<!ENTITY e SYSTEM 'missing'>]><Node>&e;<timeStamp>9</timeStamp></Node>", ""},
    {"before a fault", "<Node><timeStamp>10</timeStamp><Node>", "10"},
    {"in another encoding",
     "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><Node><timeStamp>\xE4</timeStamp></Node>", "\xC3\xA4"},
};

TEST(FiRotateTimeStamp, IsReadAsTheDocumentRulesSay) {
    const fi_rotate::CXmlLibrary library;
    for (const SRow& row : kRows) {
        EXPECT_EQ(readTimeStamp(row.document), row.timeStamp) << row.description;
    }
}

// Two readers of one document must agree, or a table would show an order that the rotation did not see.
TEST(FiRotateTimeStamp, AgreesWithWhatTheLibraryTraces) {
    for (const SRow& row : kRows) {
        const fi_test::CTemporaryFolder folder;
        const std::string file = folder.write("backup.xml", row.document);
        const auto result = fi_test::runFiRotate({"select", "--config", "encA##lun1;snap1", "--trace", file});
        EXPECT_NE(result.error.find("4 fi_process_backups : [RESERVE GOOD] " + file +
                                    " - T: " + row.timeStamp + "\n"),
                  std::string::npos)
            << row.description << '\n'
            << result.error;
    }
}

// The library may open what a document names; a program for looking at documents must not.
TEST(FiRotateTimeStamp, IsNotTakenFromAForeignFile) {
    const fi_rotate::CXmlLibrary library;
    const fi_test::CTemporaryFolder folder;
    const std::string foreign = folder.write("foreign", "20260101");
    EXPECT_EQ(readTimeStamp("<!DOCTYPE Node [<!ENTITY e SYSTEM '" + foreign +
                            "'>]><Node><timeStamp>&e;</timeStamp></Node>"),
              "");
}

TEST(FiRotateTimeStamp, IsNotReadWhereADtdLetsTheDocumentGrow) {
    const fi_rotate::CXmlLibrary library;
    std::string attributes;
    for (int i = 0; i < 257; ++i) {
        attributes += " a" + std::to_string(i) + " CDATA 'x'";
    }
    const std::string dtds[] = {
        "<!ENTITY e '" + std::string(257, 'x') + "'>",
        "<!ENTITY e 'x'><!ENTITY f '&e;&e;'>",
        "<!ENTITY % p 'x'>",
        "<!ATTLIST Node a CDATA '" + std::string(257, 'x') + "'>",
        "<!ATTLIST Node" + attributes + ">",
    };
    for (const std::string& dtd : dtds) {
        EXPECT_EQ(readTimeStamp("<!DOCTYPE Node [" + dtd + "]><Node><timeStamp>20260101</timeStamp></Node>"),
                  "")
            << dtd;
    }
}

}  // namespace
