#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/contract/Document.h"
#include "tests/contract/Host.h"

namespace fi_test {
namespace {

class CThreads : public CContractTest {};

TEST_F(CThreads, CallsThatDoNotOverlapWorkInEveryThread) {
    const std::string file = write("a.xml", toXml(backup("1", {{"encA##lun1", "encA##snap1"}})));
    std::mutex host;
    int wrong = 0;
    const auto makeCalls = [&] {
        for (int i = 0; i < 50; ++i) {
            const std::lock_guard<std::mutex> alone(host);
            const char* const files[] = {file.c_str()};
            std::int32_t flag = 0;
            char* result = nullptr;
            const std::int32_t status = entryPoint()(files, "encA##lun1;snap1", &flag, 1, &result);
            const bool isRight = status == 0 && flag == 2 && result != nullptr &&
                                 std::string(result) == "[encA##lun1;encA##snap1]";
            wrong += isRight ? 0 : 1;
            std::free(result);
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back(makeCalls);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace fi_test
