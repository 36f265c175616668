#include "tests/host/RandomCall.h"

namespace fi_test {

using fi_rotate::SBackup;
using fi_rotate::SCall;

std::string document(const std::string& timeStamp, const std::vector<SPair>& pairs) {
    std::string xml = "<Node><timeStamp>" + timeStamp + "</timeStamp>\n";
    for (const SPair& pair : pairs) {
        xml += "<Node><objid>UDID##v##m##" + pair.first + "</objid><altobjid>UDID##v##m##" + pair.further +
               "</altobjid></Node>\n";
    }
    return xml + "</Node>\n";
}

CRandomCall::CRandomCall(unsigned seed, const CTemporaryFolder& place) : random(seed), folder(place) {}

SCall CRandomCall::make() {
    SCall call;
    for (int lists = below(7); lists > 0; --lists) {
        call.configuration += first();
        for (int targets = below(8); targets > 0; --targets) {
            call.configuration += ';' + further();
        }
        call.configuration += '&';
    }
    if (below(8) == 0) {
        call.configuration += "A##";
    }
    for (int backups = 1 + below(6); backups > 0; --backups) {
        call.backups.push_back(backup(backups, call.backups));
    }
    return call;
}

int CRandomCall::below(int bound) {
    return static_cast<int>(random() % static_cast<unsigned>(bound));
}

std::string CRandomCall::first() {
    return std::string("A##x") + std::to_string(below(3));
}

std::string CRandomCall::further() {
    return std::string("A##") + std::to_string(below(5));
}

SBackup CRandomCall::backup(int number, const std::vector<SBackup>& earlier) {
    SBackup backup;
    backup.flagWord = below(4) == 0 ? 4 : 0;
    if (!earlier.empty() && below(16) == 0) {
        backup.file = earlier.front().file;
        return backup;
    }
    std::vector<SPair> pairs;
    for (int count = below(3); count > 0; --count) {
        pairs.push_back({first(), below(32) == 0 ? "B##9" : further()});
    }
    const std::string name = std::to_string(number);
    backup.file = below(24) == 0 ? folder.path("missing")
                                 : folder.write(name, document(std::to_string(below(8)), pairs));
    if (below(48) == 0) {
        folder.write(name, "<Node><objid>UDID##v##m##A##x0</objid></Node>");
    }
    return backup;
}

}  // namespace fi_test
