#include "tests/model/World.h"

#include <array>

#include "tests/model/Answer.h"

namespace fi_model {
namespace {

// By age. As numbers these would have another order, which shows that time stamps are compared as bytes.
constexpr std::array<const char*, kMostAges> kTimeStamps = {"10", "9", "95"};

std::string configurationText(const SWorld& world) {
    std::string text;
    for (const SWorldConfiguration& configuration : world.configurations) {
        text += (text.empty() ? "" : "&") + configuration.first;
        for (const std::string& target : configuration.targets) {
            text += ";" + target;
        }
    }
    return text;
}

std::string objidOf(const SWorldPair& pair) {
    return std::string("UDID##") + pair.spelling + "##m##" + pair.first;
}

std::string fileNameOf(const SWorldBackup& backup) {
    std::string name = backup.name;
    if (backup.pairs) {
        name += std::to_string(backup.age);
        for (const SWorldPair& pair : *backup.pairs) {
            name += std::string(",") + pair.spelling + pair.first + "=" + pair.target;
        }
    }
    return name + ".xml";
}

void addElement(const std::string& name, const std::string& text, std::vector<SToken>& tokens) {
    tokens.push_back({SToken::EKind::kOpen, name, ""});
    tokens.push_back({SToken::EKind::kText, text, ""});
    tokens.push_back({SToken::EKind::kClose, name, ""});
}

// A document with a Node for each pair, each inside that of the pair before it.
SDocument documentOf(const SWorldBackup& backup) {
    SDocument document;
    std::vector<SToken>& tokens = document.tokens;
    tokens.push_back({SToken::EKind::kOpen, "Node", ""});
    addElement("timeStamp", kTimeStamps.at(backup.age), tokens);
    for (const SWorldPair& pair : *backup.pairs) {
        tokens.push_back({SToken::EKind::kOpen, "Node", ""});
        addElement("objid", objidOf(pair), tokens);
        addElement("altobjid", "UDID##v##m##" + pair.target, tokens);
    }
    tokens.insert(tokens.end(), backup.pairs->size() + 1, {SToken::EKind::kClose, "Node", ""});
    return document;
}

}  // namespace

SCall asCall(const SWorld& world) {
    SCall call;
    call.configuration = configurationText(world);
    for (const SWorldBackup& backup : world.backups) {
        const std::string name = fileNameOf(backup);
        call.entries.push_back({name, backup.isExcluded ? kExcludedFlag : kOtherFlag});
        if (backup.pairs) {
            call.files.try_emplace(name, documentOf(backup));
        }
    }
    call.listSize = static_cast<std::int32_t>(call.entries.size());
    return call;
}

std::string describe(const SWorld& world) {
    std::string text = "configuration " + asLiteral(configurationText(world)) + "\n";
    for (const SWorldBackup& backup : world.backups) {
        text += "backup " + backup.name + (backup.isExcluded ? ", excluded" : "") +
                (backup.pairs ? ": " + asLiteral(xmlText(documentOf(backup))) : ": no file") + "\n";
    }
    return text;
}

}  // namespace fi_model
