// What a hostile document can make the XML library do, in the plain and in the hardened build.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "tests/contract/Host.h"

namespace fi_test {
namespace {

#ifdef FI_ROTATION_HARDENED_XML
constexpr bool kHardened = true;
#else
constexpr bool kHardened = false;
#endif

bool hasLine(const SObserved& observed, const std::string& text) {
    return std::any_of(observed.trace.begin(), observed.trace.end(),
                       [&](const auto& line) { return line.text == text; });
}

bool hasFatalError(const SObserved& observed) {
    return hasLine(observed, "Entering CFiFiidHandler::fatalError\n");
}

bool hasObjid(const SObserved& observed, const std::string& objid) {
    return hasLine(observed, " [" + objid + "]");
}

// Accepts one connection, sends nothing, and closes the connection after some time.
class CSilentServer {
public:
    CSilentServer() : listener(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(listener, 1), 0);
        socklen_t size = sizeof address;
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
        port = ntohs(address.sin_port);
    }
    ~CSilentServer() { close(listener); }
    CSilentServer(const CSilentServer&) = delete;
    CSilentServer& operator=(const CSilentServer&) = delete;

    std::string address() const { return "http://127.0.0.1:" + std::to_string(port) + "/x"; }

    bool hasCaller() const {
        pollfd waiting{listener, POLLIN, 0};
        return poll(&waiting, 1, 0) == 1;
    }

    void acceptAndHangUpAfter(std::chrono::milliseconds silence) {
        const int connection = accept(listener, nullptr, nullptr);
        std::this_thread::sleep_for(silence);
        hasHungUp = true;
        close(connection);
    }

    std::atomic<bool> hasHungUp{false};

private:
    int listener;
    int port = 0;
};

class CHazard : public CContractTest {
protected:
    SObserved callWith(const std::string& document) {
        return call("encA##lun1;snap1", {{write("a.xml", document), 0}});
    }
};

TEST_F(CHazard, ExternalEntityPutsAForeignFileIntoTheTree) {
    const std::string file = write("foreign", "foreign content");
    const SObserved observed =
        callWith("<!DOCTYPE Node [<!ENTITY e SYSTEM '" + file + "'>]><Node><objid>&e;</objid></Node>");
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(hasObjid(observed, "foreign content"), !kHardened);
    EXPECT_EQ(hasFatalError(observed), kHardened);
}

TEST_F(CHazard, ExternalDtdIsRead) {
    const std::string file = write("foreign.dtd", "<!ENTITY e 'foreign content'>");
    const SObserved observed =
        callWith("<!DOCTYPE Node SYSTEM '" + file + "'><Node><objid>&e;</objid></Node>");
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(hasObjid(observed, "foreign content"), !kHardened);
    EXPECT_EQ(hasFatalError(observed), kHardened);
}

TEST_F(CHazard, ExternalDtdThatIsMissingIsAFatalError) {
    const SObserved observed = callWith("<!DOCTYPE Node SYSTEM '" + path("missing.dtd") + "'><Node/>");
    EXPECT_EQ(observed.status, 0);
    EXPECT_TRUE(hasFatalError(observed));
}

TEST_F(CHazard, SilentServerDelaysTheCallUntilItClosesTheConnection) {
    CSilentServer server;
    const std::string document =
        "<!DOCTYPE Node SYSTEM '" + server.address() + "'><Node><objid>a</objid></Node>";
    if (kHardened) {
        const SObserved observed = callWith(document);
        EXPECT_TRUE(hasFatalError(observed));
        EXPECT_FALSE(server.hasCaller());
        return;
    }
    std::thread peer([&server] { server.acceptAndHangUpAfter(std::chrono::milliseconds(300)); });
    const SObserved observed = callWith(document);
    const bool hadHungUp = server.hasHungUp;
    peer.join();
    EXPECT_TRUE(hadHungUp);
    EXPECT_TRUE(hasFatalError(observed));
}

// Four levels make ten thousand texts of a document of some three hundred bytes, and each further level makes
// ten times as many.
TEST_F(CHazard, NestedEntitiesExpand) {
    std::string declarations = "<!ENTITY e0 'x'>";
    for (int level = 1; level <= 4; ++level) {
        const std::string lower = "&e" + std::to_string(level - 1) + ';';
        std::string value;
        for (int i = 0; i < 10; ++i) {
            value += lower;
        }
        declarations += "<!ENTITY e" + std::to_string(level) + " '" + value + "'>";
    }
    const SObserved observed =
        callWith("<!DOCTYPE Node [" + declarations + "]><Node><objid>&e4;</objid></Node>");
    EXPECT_EQ(observed.status, 0);
    EXPECT_EQ(hasObjid(observed, "x"), !kHardened);
    EXPECT_EQ(hasFatalError(observed), kHardened);
}

TEST_F(CHazard, EntityOfTheDocumentItselfIsHarmless) {
    const SObserved observed = callWith("<!DOCTYPE Node [<!ENTITY e 'own'>]><Node><objid>&e;</objid></Node>");
    EXPECT_TRUE(hasObjid(observed, "own"));
    EXPECT_FALSE(hasFatalError(observed));
}

std::string repeated(const std::string& text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string elements(int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += "<n" + std::to_string(i) + "/>";
    }
    return all;
}

struct SLimit {
    const char* name;
    std::string within;
    std::string beyond;
    // Where reading ends, and why.
    const char* report;
};

TEST_F(CHazard, WhatCostsMoreThanItsBytesIsReadUpToALimit) {
    const auto backup = [](const std::string& content) {
        return "<Node><timeStamp>1</timeStamp>\n" + content + "</Node>\n";
    };
    const std::string digits(8000, '1');
    for (const SLimit& row : {
             SLimit{"names", backup(elements(254)), backup(elements(255)),
                    "line 2, column 1676 : more than 256 different element names"},
             SLimit{"depth", backup(repeated("<a>", 255) + repeated("</a>", 255)),
                    backup(repeated("<a>", 256) + repeated("</a>", 256)),
                    "line 2, column 769 : elements nested more than 256 deep"},
             SLimit{"tag", backup("<a b='" + digits + digits.substr(0, 183) + "'/>"),
                    backup("<a b='" + digits + digits.substr(0, 184) + "'/>"),
                    "line 2, column 1 : a tag of more than 8192 bytes"},
             SLimit{"DTD", "<!DOCTYPE a [<!--" + digits + digits + "-->]>" + backup(""),
                    "<!DOCTYPE a [<!--" + digits + digits + digits + "-->]>" + backup(""),
                    "line 1, column 1 : a DTD of more than 16384 bytes"},
         }) {
        SCOPED_TRACE(row.name);
        const SObserved within = callWith(row.within);
        EXPECT_FALSE(hasFatalError(within));
        const SObserved beyond = callWith(row.beyond);
        EXPECT_EQ(beyond.status, 0);
        EXPECT_EQ(hasFatalError(beyond), kHardened);
        EXPECT_EQ(hasLine(beyond, std::string("CFiFiidHandler::fatalError : ") + row.report), kHardened);
    }
}

TEST_F(CHazard, OtherDocumentsAreReadInSpiteOfIt) {
    const SObserved observed =
        call("encA##lun1;snap1",
             {{write("a.xml", "<!DOCTYPE Node SYSTEM '" + path("missing.dtd") + "'><Node/>"), 8},
              {write("b.xml", "<Node><objid>b</objid></Node>"), 8}});
    EXPECT_EQ(observed.status, 0);
    EXPECT_TRUE(hasObjid(observed, "b"));
    EXPECT_EQ(observed.flags, (std::vector<std::int32_t>{8, 0}));
}

}  // namespace
}  // namespace fi_test
