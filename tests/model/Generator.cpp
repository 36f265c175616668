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
class TimeStamps {
public:
    explicit TimeStamps(Random& random) : random_(random) {}

    std::string next() {
        if (!made_.empty() && ties_ < 3 && random_.percent(5)) {
            ++ties_;
            return random_.pick(made_);
        }
        std::string stamp = fresh();
        while (std::find(made_.begin(), made_.end(), stamp) != made_.end()) {
            stamp = fresh();
        }
        made_.push_back(stamp);
        return stamp;
    }

private:
    std::string fresh() {
        const std::string number = std::to_string(random_.below(1000000));
        if (random_.percent(8)) {
            return std::to_string(random_.below(1200));
        }
        if (random_.percent(5)) {
            return "\xC3\xA9" + number;
        }
        return "20240" + std::to_string(random_.between(1, 9)) + number;
    }

    Random& random_;
    std::vector<std::string> made_;
    int ties_ = 0;
};

std::int32_t makeFlag(Random& random) {
    static const std::vector<std::int32_t> kExcluded = {4, 4, 4, 5, 12, 7, -1};
    static const std::vector<std::int32_t> kOthers = {
        1, 2, 3, 8, 11, -5, std::numeric_limits<std::int32_t>::min()};
    if (random.percent(15)) {
        return random.pick(kExcluded);
    }
    return random.percent(15) ? random.pick(kOthers) : 0;
}

std::string makeName(std::size_t index, Random& random) {
    static const std::vector<std::string> kSpecial = {"100%s%d ",
                                                      "b\xC3\xA4"
                                                      "ckup",
                                                      "./", "[b]"};
    return (random.percent(5) ? random.pick(kSpecial) : "") + "b" + std::to_string(index) + ".xml";
}

// Builds a call step by step, one choice after another.
class CallMaker {
public:
    explicit CallMaker(Random& random) : random_(random), stamps_(random) {}

    Call make() {
        if (random_.percent(5)) {
            ladder();
        } else {
            mixed();
        }
        call_.listSize = static_cast<std::int32_t>(call_.entries.size());
        unusual();
        return call_;
    }

private:
    void mixed() {
        const Plan plan = makePlan(random_);
        call_.configuration = writePlan(plan, random_);
        PairGenerator pairs(plan, random_);
        std::size_t count = random_.between(1, 4);
        count += random_.percent(10) ? random_.between(1, 6) : 0;
        count += random_.perMille(3) ? random_.between(10, 30) : 0;
        for (std::size_t index = 0; index < count; ++index) {
            addBackup(makeDocument(pairs.next(), stamps_.next(), random_));
        }
    }

    // Every configuration has one target, and every backup holds one of them: the rotation has to
    // release all backups before every configuration has a free target.
    void ladder() {
        const std::size_t size = random_.between(3, random_.percent(20) ? 30 : 12);
        const Plan plan = makeLadderPlan(size);
        call_.configuration = writePlan(plan, random_);
        PairGenerator pairs(plan, random_);
        const bool withFlags = random_.percent(20);
        for (std::size_t index = 0; index < size; ++index) {
            addBackup(makeDocument({pairs.holding(index)}, stamps_.next(), random_));
            call_.entries.back().flag = withFlags ? call_.entries.back().flag : 0;
        }
        random_.shuffle(call_.entries);
    }

    void addBackup(const Document& document) {
        if (!call_.entries.empty() && random_.percent(3)) {
            call_.entries.push_back({random_.pick(call_.entries).name, makeFlag(random_)});
            return;
        }
        const std::string name = makeName(call_.entries.size(), random_);
        call_.entries.push_back({name, makeFlag(random_)});
        call_.files[name] = document;
    }

    // What few calls have, tried after the rest so that it meets every kind of call.
    void unusual() {
        if (random_.percent(4)) {
            insertEntry(random_.percent(50) ? "missing.xml" : "", false);
        }
        if (random_.percent(1)) {
            insertEntry(".", true);
        }
        if (random_.percent(4)) {
            firstBackup();
        } else if (random_.percent(2)) {
            call_.listSize = random_.percent(50) ? -1 : std::numeric_limits<std::int32_t>::min();
        } else if (random_.percent(2)) {
            call_.listSize = static_cast<std::int32_t>(random_.below(call_.entries.size() + 1));
        }
        nullArguments();
    }

    void insertEntry(const std::string& name, bool isDirectory) {
        const std::size_t place = random_.below(call_.entries.size() + 1);
        call_.entries.insert(call_.entries.begin() + static_cast<std::ptrdiff_t>(place),
                             {name, makeFlag(random_)});
        if (isDirectory) {
            call_.files[name].isDirectory = true;
        }
        ++call_.listSize;
    }

    void firstBackup() {
        call_.listSize = 0;
        call_.hasFlags = random_.percent(50);
        if (random_.percent(50)) {
            call_.entries.clear();
            call_.files.clear();
        }
    }

    void nullArguments() {
        if (random_.perMille(4)) {
            call_.hasFlags = false;
        }
        if (random_.perMille(4)) {
            call_.hasResult = false;
        }
        if (random_.perMille(4)) {
            call_.configuration.reset();
        }
    }

    Random& random_;
    TimeStamps stamps_;
    Call call_;
};

// Documents without a usable time stamp are tied with one another, more often than is meant.
bool hasTooManyTies(const Call& call) {
    constexpr std::size_t kMostOrders = 24;
    return call.entries.size() > 4 && countTieRanks(predict(call).timeStamps) > kMostOrders;
}

}  // namespace

Call makeCall(Random& random) {
    Call call = CallMaker(random).make();
    while (hasTooManyTies(call)) {
        call = CallMaker(random).make();
    }
    return call;
}

Call makeCall(std::uint64_t seed) {
    Random random(seed);
    Call call = makeCall(random);
    call.seed = seed;
    return call;
}

}  // namespace fi_model
