#include "bench/Corpus.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <fi_rotation/fi_process_backups.h>

#include "bench/Readers.h"

// The trace is dropped: what is measured is the library, not the host.
extern "C" __attribute__((format(printf, 2, 3), visibility("default"))) void mofi_tracelog(
    int /*level*/, const char* /*format*/, ...) {}

namespace fi_bench {
namespace {

// `number` with leading zeros.
std::string digits(std::size_t number, int width) {
    char text[32];
    std::snprintf(text, sizeof text, "%0*zu", width, number);
    return text;
}

std::string enclosure(std::size_t configuration) {
    return "ENC-" + digits(configuration % 7, 2);
}

std::string firstDevice(std::size_t configuration) {
    return "VOL-" + digits(configuration, 6);
}

std::string furtherDevice(std::size_t configuration, std::size_t target) {
    return "SN-" + digits(configuration, 5) + "-" + digits(target, 4);
}

std::string identifier(std::size_t configuration, const std::string& device) {
    return "UDID##EXAMPLE##ARRAY9##" + enclosure(configuration) + "##" + device;
}

std::string configurationText(const SShape& shape) {
    std::string text;
    for (std::size_t i = 0; i < shape.configurations; ++i) {
        text += (i == 0 ? "" : "&") + enclosure(i) + "##" + firstDevice(i);
        for (std::size_t j = 0; j < shape.targets; ++j) {
            text += ";" + furtherDevice(i, j);
        }
    }
    return text;
}

std::string deviceElements(const SShape& shape, std::size_t pair, const std::string& lineStart) {
    const std::size_t configuration = pair % shape.configurations;
    const std::size_t target = pair / shape.configurations % shape.targets;
    return lineStart + "<objid>" + identifier(configuration, firstDevice(configuration)) + "</objid>" +
           lineStart + "<altobjid>" + identifier(configuration, furtherDevice(configuration, target)) +
           "</altobjid>" + lineStart + "<splitType>mirror</splitType>" + lineStart + "<type>12</type>";
}

std::string flatDocument(const SShape& shape, std::size_t backup) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Node>" +
                       deviceElements(shape, backup * shape.nodes, "\n  ") + "\n  <timeStamp>" +
                       digits(20260101000000 + backup, 14) + "</timeStamp>";
    for (std::size_t i = 1; i < shape.nodes; ++i) {
        text += "\n  <Node>" + deviceElements(shape, backup * shape.nodes + i, "\n    ") + "\n  </Node>";
    }
    return text + "\n</Node>\n";
}

std::string nestedDocument(const SShape& shape) {
    std::string text;
    for (std::size_t i = 0; i < shape.nodes; ++i) {
        text += "<Node>";
    }
    text += deviceElements(shape, 0, "");
    for (std::size_t i = 0; i < shape.nodes; ++i) {
        text += "</Node>";
    }
    return text;
}

void writeFile(const std::string& file, const std::string& text) {
    std::ofstream stream(file, std::ios::binary);
    stream.exceptions(std::ios::failbit | std::ios::badbit);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
}

}  // namespace

const std::vector<SShape>& shapes() {
    static const std::vector<SShape> all{
        {"small", 300, 10, 10, 310},    {"many", 10000, 10, 100, 1100}, {"large", 5, 100000, 1000, 600},
        {"wide", 100, 1000, 10000, 12}, {"rotating", 2000, 1, 2000, 1}, {"deep", 1, 1000000, 1, 1, true},
    };
    return all;
}

const SShape& shapeOf(const std::string& name) {
    const auto found = std::find_if(shapes().begin(), shapes().end(),
                                    [&](const SShape& shape) { return shape.name == name; });
    if (found == shapes().end()) {
        throw std::runtime_error("no corpus is called " + name);
    }
    return *found;
}

SCorpus writeCorpus(const SShape& shape, const std::string& folder) {
    std::filesystem::create_directories(folder);
    writeFile(folder + "/configuration", configurationText(shape));
    for (std::size_t i = 0; i < shape.backups; ++i) {
        writeFile(folder + "/backup-" + digits(i, 6) + ".xml",
                  shape.isNested ? nestedDocument(shape) : flatDocument(shape, i));
    }
    return readCorpus(folder);
}

SCorpus readCorpus(const std::string& folder) {
    SCorpus corpus;
    corpus.configuration = readFile(folder + "/configuration");
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".xml") {
            corpus.files.push_back(entry.path().string());
            corpus.bytes += entry.file_size();
        }
    }
    std::sort(corpus.files.begin(), corpus.files.end());
    return corpus;
}

std::size_t runCallOrExit(const SCorpus& corpus) {
    std::vector<const char*> files;
    for (const std::string& file : corpus.files) {
        files.push_back(file.c_str());
    }
    std::vector<std::int32_t> flags(files.size());
    char* selection = nullptr;
    const std::int32_t status = fi_process_backups(files.data(), corpus.configuration.c_str(), flags.data(),
                                                   static_cast<std::int32_t>(files.size()), &selection);
    std::free(selection);
    if (status != FI_STATUS_SUCCESS || std::count(flags.begin(), flags.end(), FI_BACKUP_INVALID) != 0) {
        throw std::runtime_error("a corpus does not give the selection that it was made for");
    }
    return static_cast<std::size_t>(std::count(flags.begin(), flags.end(), FI_BACKUP_ROTATED));
}

}  // namespace fi_bench
