#ifndef FI_ROTATION_HARDENED_XML  // such a library does not read so deep

#include <pthread.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/contract/Host.h"

namespace fi_test {
namespace {

struct SDeepCall {
    std::string file;
    std::int32_t status = -1;
    std::int32_t flag = 0;
    std::string selection;
};

// No recorder keeps the trace: the lines of so deep a tree are indented by their depth, so that together they
// are quadratic in it.
void* runDeepCall(void* argument) {
    auto& deep = *static_cast<SDeepCall*>(argument);
    const char* const files[] = {deep.file.c_str()};
    char* result = nullptr;
    deep.status = entryPoint()(files, "encA##lun1;snap1", &deep.flag, 1, &result);
    if (result != nullptr) {
        deep.selection = result;
        std::free(result);
    }
    return nullptr;
}

class CDepth : public CContractTest {};

TEST_F(CDepth, MillionNestedNodesGoThroughACallOnAStackOf8MiB) {
    SDeepCall deep;
    deep.file = path("deep.xml");
    {
        std::ofstream document(deep.file);
        for (int i = 0; i < 1000000; ++i) {
            document << "<Node>";
        }
        document << "<objid>UDID##v##m##encA##lun1</objid><altobjid>UDID##v##m##encA##snap1</altobjid>";
        for (int i = 0; i < 1000000; ++i) {
            document << "</Node>";
        }
    }

    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{8} << 20), 0);
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, &attributes, runDeepCall, &deep), 0);
    pthread_attr_destroy(&attributes);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);

    EXPECT_EQ(deep.status, 0);
    EXPECT_EQ(deep.selection, "[encA##lun1;encA##snap1]");
    EXPECT_EQ(deep.flag, 2);
}

}  // namespace
}  // namespace fi_test

#endif
