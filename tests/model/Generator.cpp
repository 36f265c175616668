#include "tests/model/Generator.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "tests/model/Comparison.h"
#include "tests/model/ConfigurationGenerator.h"
#include "tests/model/DocumentGenerator.h"
#include "tests/model/Model.h"
#include "tests/model/PairGenerator.h"

namespace fi_model {
namespace {

// Time stamps of one call. Equal ones are made now and then and in small groups only, because a
// comparison has to go through all their orders.
class CTimeStamps {
public:
    explicit CTimeStamps(CRandom& choices) : random(choices) {}

    std::string next() {
        if (!made.empty() && ties < 3 && random.percent(5)) {
            ++ties;
            return random.pick(made);
        }
        std::string stamp = fresh();
        while (std::find(made.begin(), made.end(), stamp) != made.end()) {
            stamp = fresh();
        }
        made.push_back(stamp);
        return stamp;
    }

private:
    std::string fresh() {
        const std::string number = std::to_string(random.below(1000000));
        if (random.percent(8)) {
            return std::to_string(random.below(1200));
        }
        if (random.percent(5)) {
            return "\xC3\xA9" + number;
        }
        return "20240" + std::to_string(random.between(1, 9)) + number;
    }

    CRandom& random;
    std::vector<std::string> made;
    int ties = 0;
};

std::int32_t makeFlag(CRandom& random) {
    static const std::vector<std::int32_t> kExcluded = {4, 4, 4, 5, 12, 7, -1};
    static const std::vector<std::int32_t> kOthers = {
        1, 2, 3, 8, 11, -5, std::numeric_limits<std::int32_t>::min()};
    if (random.percent(15)) {
        return random.pick(kExcluded);
    }
    return random.percent(15) ? random.pick(kOthers) : 0;
}

std::string makeName(std::size_t index, CRandom& random) {
    static const std::vector<std::string> kSpecial = {"100%s%d ",
                                                      "b\xC3\xA4"
                                                      "ckup",
                                                      "./", "[b]"};
    return (random.percent(5) ? random.pick(kSpecial) : "") + "b" + std::to_string(index) + ".xml";
}

// Builds a call step by step, one choice after another.
class CCallMaker {
public:
    explicit CCallMaker(CRandom& choices) : random(choices), stamps(choices) {}

    SCall make() {
        if (random.percent(5)) {
            ladder();
        } else {
            mixed();
        }
        call.listSize = static_cast<std::int32_t>(call.entries.size());
        unusual();
        return call;
    }

private:
    void mixed() {
        const Plan plan = makePlan(random);
        call.configuration = writePlan(plan, random);
        CPairGenerator pairs(plan, random);
        std::size_t count = random.between(1, 4);
        count += random.percent(10) ? random.between(1, 6) : 0;
        count += random.perMille(3) ? random.between(10, 30) : 0;
        for (std::size_t index = 0; index < count; ++index) {
            addBackup(makeDocument(pairs.next(), stamps.next(), random));
        }
    }

    // Every configuration has one target, and every backup holds one of them: the rotation has to
    // release all backups before every configuration has a free target.
    void ladder() {
        const std::size_t size = random.between(3, random.percent(20) ? 30 : 12);
        const Plan plan = makeLadderPlan(size);
        call.configuration = writePlan(plan, random);
        CPairGenerator pairs(plan, random);
        const bool withFlags = random.percent(20);
        for (std::size_t index = 0; index < size; ++index) {
            addBackup(makeDocument({pairs.holding(index)}, stamps.next(), random));
            call.entries.back().flag = withFlags ? call.entries.back().flag : 0;
        }
        random.shuffle(call.entries);
    }

    void addBackup(const SDocument& document) {
        if (!call.entries.empty() && random.percent(3)) {
            call.entries.push_back({random.pick(call.entries).name, makeFlag(random)});
            return;
        }
        const std::string name = makeName(call.entries.size(), random);
        call.entries.push_back({name, makeFlag(random)});
        call.files[name] = document;
    }

    // Adds what few calls have. It comes last, so that it is combined with every kind of call.
    void unusual() {
        if (random.percent(4)) {
            insertEntry(random.percent(50) ? "missing.xml" : "", false);
        }
        if (random.percent(1)) {
            insertEntry(".", true);
        }
        if (random.percent(4)) {
            firstBackup();
        } else if (random.percent(2)) {
            call.listSize = random.percent(50) ? -1 : std::numeric_limits<std::int32_t>::min();
        } else if (random.percent(2)) {
            call.listSize = static_cast<std::int32_t>(random.below(call.entries.size() + 1));
        }
        nullArguments();
    }

    void insertEntry(const std::string& name, bool isDirectory) {
        const std::size_t place = random.below(call.entries.size() + 1);
        call.entries.insert(call.entries.begin() + static_cast<std::ptrdiff_t>(place),
                            {name, makeFlag(random)});
        if (isDirectory) {
            call.files[name].isDirectory = true;
        }
        ++call.listSize;
    }

    void firstBackup() {
        call.listSize = 0;
        call.hasFlags = random.percent(50);
        if (random.percent(50)) {
            call.entries.clear();
            call.files.clear();
        }
    }

    void nullArguments() {
        if (random.perMille(4)) {
            call.hasFlags = false;
        }
        if (random.perMille(4)) {
            call.hasResult = false;
        }
        if (random.perMille(4)) {
            call.configuration.reset();
        }
    }

    CRandom& random;
    CTimeStamps stamps;
    SCall call;
};

// Whether too many backups have the same time stamp. Documents without a usable one all have the same, which
// makes more ties than were planned.
bool hasTooManyTies(const SCall& call) {
    constexpr std::size_t kMostOrders = 24;
    return call.entries.size() > 4 && countTieRanks(predict(call).timeStamps) > kMostOrders;
}

}  // namespace

SCall makeCall(CRandom& random) {
    SCall call = CCallMaker(random).make();
    while (hasTooManyTies(call)) {
        call = CCallMaker(random).make();
    }
    return call;
}

SCall makeCall(std::uint64_t seed) {
    CRandom random(seed);
    SCall call = makeCall(random);
    call.seed = seed;
    return call;
}

}  // namespace fi_model
