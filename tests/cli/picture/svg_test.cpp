#include "cli/picture/svg.h"

#include <string>

#include <gtest/gtest.h>
#include <xercesc/sax/SAXParseException.hpp>

#include "cli/base/xml_reader.h"

namespace {

class CFaults : public xercesc::DefaultHandler {
public:
    void fatalError(const xercesc::SAXParseException& fault) override {
        first = fi_rotate::toLocalCodePage(fault.getMessage());
    }

    std::string first;
};

std::string faultOf(const std::string& name) {
    fi_rotate::SPicture picture;
    picture.title = picture.rowLabel = picture.timeLabel = picture.leftOut = name;
    picture.warnings = picture.remarks = picture.notes = {name};
    picture.plainMeaning = picture.lineLabel = name;
    picture.to = 1;
    picture.ticks = {{0, name}};
    fi_rotate::SPictureGroup group;
    group.name = group.remark = name;
    group.isShort = true;
    group.rows.resize(4);
    group.rows[0].state = fi_rotate::ETarget::kFree;
    group.rows[1].state = fi_rotate::ETarget::kChosen;
    group.rows[2].state = fi_rotate::ETarget::kBlocked;
    for (fi_rotate::SPictureRow& row : group.rows) {
        row.name = row.title = name;
        fi_rotate::SBar bar;
        bar.to = 1;
        bar.name = bar.title = name;
        row.bars = {bar};
    }
    picture.groups = {group};
    CFaults faults;
    fi_rotate::readDocument(fi_rotate::toSvg(picture), faults);
    return faults.first;
}

TEST(FiRotateSvg, IsWellFormedWhateverBytesNamesHave) {
    const fi_rotate::CXmlLibrary library;
    for (int first = 0; first < 256; ++first) {
        for (const std::string rest : {"", "\x80", "]]>", "-->", "\xBF\xBE", "\xBF\xBF"}) {
            const std::string name = static_cast<char>(first) + rest;
            EXPECT_EQ(faultOf(name), "") << first << " and " << rest;
            EXPECT_EQ(faultOf(std::string(40, 'n') + name + std::string(40, 'n')), "") << first;
        }
    }
}

TEST(FiRotateSvg, KnowsItsOwnDocuments) {
    EXPECT_TRUE(fi_rotate::isOwnPicture(fi_rotate::toSvg({})));
    EXPECT_FALSE(fi_rotate::isOwnPicture("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg/>"));
}

}  // namespace
