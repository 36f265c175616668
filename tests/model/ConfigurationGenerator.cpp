#include "tests/model/ConfigurationGenerator.h"

namespace fi_model {
namespace {

SPlannedTarget makeFirst(const Plan& plan, CRandom& random) {
    if (!plan.empty() && random.percent(15)) {
        return random.pick(plan).first;
    }
    static const std::vector<std::string> kEnclosures = {"encA", "encA",  "encB",
                                                         "encC", "enc D", "enc\xC3\xA9"};
    static const std::vector<std::string> kDevices = {
        "dev1", "dev2", "dev3", "dev4", "dev5", "dev1##x", "d<1>", "d'\"1", "dev%s", "d\xC3\xA9v1", "Dev1"};
    return {random.pick(kEnclosures), random.pick(kDevices)};
}

std::vector<SPlannedTarget> allFurther(const Plan& plan) {
    std::vector<SPlannedTarget> all;
    for (const SPlannedConfiguration& configuration : plan) {
        all.insert(all.end(), configuration.further.begin(), configuration.further.end());
    }
    return all;
}

SPlannedTarget makeFurther(const Plan& plan, const SPlannedConfiguration& own, CRandom& random) {
    const std::vector<SPlannedTarget> others = allFurther(plan);
    if (!others.empty() && random.percent(12)) {
        return random.pick(others);
    }
    if (!own.further.empty() && random.percent(8)) {
        return random.pick(own.further);
    }
    if (random.percent(4)) {
        return own.first;
    }
    static const std::vector<std::string> kDevices = {"snap1", "snap2", "snap3", "snap4",         "snap5",
                                                      "snap6", "s##1",  "s<1",   "s>\xE2\x82\xAC"};
    const std::string enclosure = random.percent(60) ? own.first.enclosure : random.percent(12) ? "" : "encS";
    return {enclosure, random.pick(kDevices)};
}

std::size_t furtherCount(CRandom& random) {
    if (random.percent(4)) {
        return 0;
    }
    return random.percent(40) ? 1 : random.between(2, 5);
}

// The characters that have a reference, with or without it.
std::string escaped(const std::string& text, CRandom& random) {
    std::string result;
    for (const char character : text) {
        const bool escape = random.percent(50);
        if (character == '<' && escape) {
            result += "&lt;";
        } else if (character == '>' && escape) {
            result += "&gt;";
        } else if (character == '"' && escape) {
            result += "&quot;";
        } else if (character == '\'' && escape) {
            result += "&#39;";
        } else {
            result += character;
        }
    }
    return result;
}

std::string writeTarget(const SPlannedTarget& target, const std::string& carried, bool isFirst,
                        CRandom& random) {
    const bool canInherit =
        !isFirst && target.enclosure == carried && target.device.find("##") == std::string::npos;
    const std::string device = escaped(target.device, random);
    return canInherit && random.percent(70) ? device : escaped(target.enclosure, random) + "##" + device;
}

std::string writeConfiguration(const SPlannedConfiguration& configuration, CRandom& random) {
    static const std::vector<std::string> kSeparators = {";", ";", ";", ";", ";;", ";;;"};
    std::string text = random.percent(3) ? ";" : "";
    text += writeTarget(configuration.first, "", true, random);
    std::string carried = configuration.first.enclosure;
    for (const SPlannedTarget& target : configuration.further) {
        text += random.pick(kSeparators) + writeTarget(target, carried, false, random);
        carried = target.enclosure;
    }
    return text + (random.percent(5) ? ";" : "");
}

std::string flawedConfiguration(const Plan& plan, CRandom& random) {
    static const std::vector<std::string> kFlaws = {
        ";",      ";;", ";;;;",        "encQ##",     "encQ##;dev1",        "dev1",  "dev1;encQ##d2",
        "##dev1", "##", "##;encQ##d1", "&apos;x##y", "encQ&amp;lt;##dev1", "&#34;", "encQ##dev1;##"};
    if (!plan.empty() && random.percent(35)) {
        static const std::vector<std::string> kEnds = {";encQ##", ";##", ";snap1;encQ##;snap2"};
        return writeConfiguration(random.pick(plan), random) + random.pick(kEnds);
    }
    return random.pick(kFlaws);
}

std::string garbage(CRandom& random) {
    static const std::vector<std::string> kPieces = {
        "encA", "dev1", "##", "#", ";",      "&",     "\n",    "\r",       "&amp;",
        "&lt;", "<",    "'",  " ", "&quot;", "&#39;", "&apos", "&amp;lt;", "\xC3\xA9"};
    std::string text;
    for (std::size_t count = random.between(1, 25); count > 0; --count) {
        text += random.pick(kPieces);
    }
    return text;
}

std::string separatorsOnly(CRandom& random) {
    static const std::vector<std::string> kTexts = {"", "", "&", "\r\n", "&amp;&\n", "&&&"};
    return random.pick(kTexts);
}

}  // namespace

Plan makePlan(CRandom& random) {
    Plan plan;
    std::size_t size = random.percent(75) ? random.between(1, 3) : random.between(2, 7);
    while (size-- > 0) {
        SPlannedConfiguration configuration;
        configuration.first = makeFirst(plan, random);
        for (std::size_t count = furtherCount(random); count > 0; --count) {
            configuration.further.push_back(makeFurther(plan, configuration, random));
        }
        plan.push_back(configuration);
    }
    return plan;
}

Plan makeLadderPlan(std::size_t size) {
    Plan plan;
    for (std::size_t index = 0; index < size; ++index) {
        const std::string number = std::to_string(index);
        plan.push_back({{"encL", "dev" + number}, {{"encL", "snap" + number}}});
    }
    return plan;
}

std::string writePlan(const Plan& plan, CRandom& random) {
    if (random.perMille(15)) {
        return separatorsOnly(random);
    }
    if (random.perMille(15)) {
        return garbage(random);
    }
    static const std::vector<std::string> kSeparators = {"&",    "\n", "\r",  "&amp;",
                                                         "\r\n", "&&", "&\n", "&amp;&"};
    const bool flawed = random.percent(8);
    const std::size_t flawAt = random.below(plan.size() + 1);
    std::string text = random.percent(10) ? random.pick(kSeparators) : "";
    for (std::size_t index = 0; index < plan.size(); ++index) {
        if (flawed && index == flawAt) {
            text += flawedConfiguration(plan, random) + random.pick(kSeparators);
        }
        text += index == 0 ? "" : random.pick(kSeparators);
        text += writeConfiguration(plan[index], random);
    }
    if (flawed && flawAt == plan.size()) {
        text += random.pick(kSeparators) + flawedConfiguration(plan, random);
    }
    return text + (random.percent(10) ? random.pick(kSeparators) : "");
}

}  // namespace fi_model
