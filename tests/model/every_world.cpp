// Compares the library with the model on every call of a bounded size, and checks each answer against the
// contract. Ends at the first world on which they differ or a rule is broken.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/model/Comparison.h"
#include "tests/model/Contract.h"
#include "tests/model/LibraryHost.h"
#include "tests/model/World.h"
#include "tests/model/Worlds.h"
#include "tests/model/XmlLibraryInUse.h"

namespace {

using fi_model::EArguments;
using fi_model::EDocuments;
using fi_model::SWorldBounds;

// Sets of bounds, of which every world is checked: "few" by the tests, "fewest" by those under sanitizers,
// "many" by scripts/worlds.
const std::map<std::string, std::vector<SWorldBounds>>& boundsByName() {
    static const std::map<std::string, std::vector<SWorldBounds>> kBounds = {
        {"fewest", {{0, 2, 1, 2, 1}, {2, 2, 2, 1, 2, EDocuments::kAgreeing}}},
        {"few",
         {{0, 1, 2, 2, 2},
          {2, 2, 2, 1, 1},
          {2, 2, 2, 1, 2, EDocuments::kAgreeing},
          {2, 2, 2, 2, 1, EDocuments::kAgreeing},
          {3, 3, 1, 2, 1, EDocuments::kAgreeing, EArguments::kOldestFirst}}},
        {"many",
         {{0, 2, 2, 2, 2, EDocuments::kAll, EArguments::kOldestFirst},
          {3, 3, 2, 2, 1, EDocuments::kAll, EArguments::kOldestFirst},
          {3, 3, 2, 2, 2, EDocuments::kAgreeing, EArguments::kOldestFirst}}},
    };
    return kBounds;
}

// What is wrong with the library's answer, or an empty text.
std::string faultIn(const fi_model::SWorld& world, fi_model::CLibraryHost& host) {
    const fi_model::Subject library = [&](const fi_model::SCall& call) { return host.runOnKeptFiles(call); };
    const fi_model::SComparison comparison = fi_model::compare(fi_model::asCall(world), library);
    std::string fault = comparison.difference;
    for (const std::string& rule : fi_model::brokenRules(world, comparison.actual)) {
        fault += "BROKEN RULE " + rule + "\n";
    }
    return fault;
}

bool lookAt(const fi_model::CWorlds& worlds, std::uint64_t first, std::uint64_t count) {
    if (first >= worlds.count() || count == 0) {
        throw std::out_of_range("no world to look at");
    }
    const fi_model::CXmlLibraryInUse held;
    fi_model::CLibraryHost host;
    const std::uint64_t end = first + std::min(count, worlds.count() - first);
    for (std::uint64_t number = first; number < end; ++number) {
        const fi_model::SWorld world = worlds.at(number);
        const std::string fault = faultIn(world, host);
        if (!fault.empty()) {
            std::printf("WORLD %ju\n%s%s", std::uintmax_t{number}, fi_model::describe(world).c_str(),
                        fault.c_str());
            return false;
        }
    }
    std::printf("%ju of %ju worlds, from number %ju: no difference, no rule broken\n",
                std::uintmax_t{end - first}, std::uintmax_t{worlds.count()}, std::uintmax_t{first});
    return true;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        const fi_model::CWorlds worlds(boundsByName().at(count > 1 ? arguments[1] : ""));
        if (count == 2) {
            std::printf("%ju\n", std::uintmax_t{worlds.count()});
            return EXIT_SUCCESS;
        }
        if (count == 4) {
            const bool isGood = lookAt(worlds, std::stoull(arguments[2]), std::stoull(arguments[3]));
            return isGood ? EXIT_SUCCESS : EXIT_FAILURE;
        }
    } catch (const std::logic_error&) {
        // There are no such bounds, or an argument is no number: the usage is printed below.
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "fi_model_worlds: %s\n", problem.what());
        return EXIT_FAILURE;
    }
    std::fputs(
        "usage: fi_model_worlds fewest|few|many [FIRST COUNT]      (without them: how many there are)\n",
        stderr);
    return EXIT_FAILURE;
}
