// Documents that cannot be read to their end. The library finds this program's read and fgets before those of
// the C library.

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "tests/host_library/Fixture.h"

namespace {

// The number, counted from 1, of the read or the line that fails; 0 for none.
int failingRead = 0;
int failureOfRead = 0;
int failingLine = 0;
int reads = 0;
int lines = 0;

}  // namespace

extern "C" __attribute__((visibility("default"))) ssize_t read(int descriptor, void* buffer,
                                                               std::size_t size) {
    static const auto next = reinterpret_cast<ssize_t (*)(int, void*, std::size_t)>(dlsym(RTLD_NEXT, "read"));
    if (++reads == failingRead) {
        errno = failureOfRead;
        return -1;
    }
    return next(descriptor, buffer, size);
}

// From the failing line on the stream reads from a folder. That is an error, as soon as the stream's buffer
// is used up.
extern "C" __attribute__((visibility("default"))) char* fgets(char* buffer, int size, std::FILE* stream) {
    static const auto next = reinterpret_cast<char* (*)(char*, int, std::FILE*)>(dlsym(RTLD_NEXT, "fgets"));
    if (++lines == failingLine) {
        const int unreadable = open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        dup3(unreadable, fileno(stream), O_CLOEXEC);
        close(unreadable);
    }
    return next(buffer, size, stream);
}

namespace fi_test {
namespace {

class CHostLibraryReadError : public CHostLibraryTest {
protected:
    ~CHostLibraryReadError() override {
        failingRead = 0;
        failingLine = 0;
    }

    // A document that takes several reads.
    std::string longHolder() const {
        std::string text = documentOf("1", {{"encA##lun1", "encA##snap1"}});
        const std::string filling = "<!-- " + std::string(1000, '.') + " -->\n";
        for (int i = 0; i < 300; ++i) {
            text.insert(text.find('\n') + 1, filling);
        }
        return write("a.xml", text);
    }

    static void failRead(int number, int failure) {
        reads = 0;
        failingRead = number;
        failureOfRead = failure;
    }
    static void failLine(int number) {
        lines = 0;
        failingLine = number;
    }
};

TEST_F(CHostLibraryReadError, OfAnyReadIsNamed) {
    const std::string file = longHolder();
    for (const int number : {1, 2, 5}) {
        failRead(number, EIO);
        EXPECT_THAT(textOfRefusal(file, FI_ROTATION_READ_ERROR), testing::HasSubstr("Input/output error"));
    }
}

TEST_F(CHostLibraryReadError, IsNoneWhenAReadIsInterrupted) {
    const HostCall call = newCall(kConfiguration, {longHolder()});
    for (const int number : {1, 3}) {
        failRead(number, EINTR);
        EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
        EXPECT_STREQ(fi_rotation_call_selection(call.get()), "[encA##lun1;encA##snap2]");
    }
}

TEST_F(CHostLibraryReadError, IsPermittedAndWhatWasReadCounts) {
    const HostCall call = newCall(kConfiguration, {longHolder()});
    fi_rotation_call_permit(call.get(), FI_ROTATION_READ_ERROR);
    failRead(2, EIO);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_SELECTED);
    EXPECT_EQ(fi_rotation_call_backup_problems(call.get(), 0), std::uint32_t{FI_ROTATION_READ_ERROR});
}

// Whichever line fails, nothing is decided.
TEST_F(CHostLibraryReadError, OfALaterReadingLeavesNothingDecided) {
    const std::string file = longHolder();
    for (const int number : {1, 2, 50, 250}) {
        const HostCall call = newCall(kConfiguration, {file});
        failLine(number);
        EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_REFUSED) << number;
        expectNothingDecided(call.get());
    }
}

TEST_F(CHostLibraryReadError, OfALaterReadingIsNotTakenForDamageThatIsPermitted) {
    const HostCall call = newCall(kConfiguration, {longHolder()});
    fi_rotation_call_permit(call.get(), kEveryProblem & ~std::uint32_t{FI_ROTATION_READ_ERROR});
    failLine(50);
    EXPECT_EQ(fi_rotation_call_run(call.get()), FI_ROTATION_REFUSED);
    EXPECT_NE(fi_rotation_call_backup_problems(call.get(), 0) & FI_ROTATION_READ_ERROR, 0U);
}

}  // namespace
}  // namespace fi_test
