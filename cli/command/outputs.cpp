#include "cli/command/outputs.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "cli/base/text.h"
#include "cli/command/command.h"

namespace fi_rotate {
namespace {

std::optional<struct stat> stateOf(const std::string& file) {
    struct stat state = {};
    return stat(file.c_str(), &state) == 0 ? std::optional(state) : std::nullopt;
}

// Identifies an existing file by device and inode, so that a second name or a link makes no difference, and a
// file that does not exist yet by its path. Nothing for a pipe or a device, which may be used twice.
std::optional<std::string> identityOf(const std::string& file) {
    const auto state = stateOf(file);
    if (state.has_value()) {
        return S_ISREG(state->st_mode) ? std::optional(fmt::format("{}:{}", state->st_dev, state->st_ino))
                                       : std::nullopt;
    }
    return resolvedPathOf(file);
}

std::optional<std::string> identityOf(int descriptor) {
    struct stat state = {};
    const bool isFile = fstat(descriptor, &state) == 0 && S_ISREG(state.st_mode);
    return isFile ? std::optional(fmt::format("{}:{}", state.st_dev, state.st_ino)) : std::nullopt;
}

[[noreturn]] void refuse(const SOutput& output, const std::string& reason) {
    throw CLI::ValidationError(output.option, printableInQuotes(*output.file) + " " + reason);
}

// Links that lead to each other name no place, and writing would replace one of them.
void requireEndOfLinks(const SOutput& output) {
    struct stat state = {};
    if (stat(output.file->c_str(), &state) != 0 && errno == ELOOP) {
        refuse(output, "cannot be written: " + errorText());
    }
}

// Writing to a pipe or a terminal destroys nothing; writing to a disk does.
void requireReplaceable(const SOutput& output) {
    const auto state = stateOf(*output.file);
    const bool isHarmless =
        !state.has_value() || (!S_ISREG(state->st_mode) && !S_ISBLK(state->st_mode)) ||
        (S_ISREG(state->st_mode) &&
         (state->st_size == 0 || output.isOwnContent(readFile(*output.file).value_or(""))));
    if (!isHarmless) {
        refuse(output,
               "exists and this option did not write it; give another name, or --force to replace it");
    }
}

}  // namespace

void addForceOption(CLI::App& subcommand, bool& isForced) {
    subcommand.add_flag("--force", isForced, "Replace existing files even if fi-rotate did not write them");
}

void requireNoFileIsDestroyed(const std::vector<SOutput>& outputs, const std::vector<std::string>& inputs,
                              bool isForced) {
    // The files that must not be written to, and the reason for each.
    std::map<std::string, std::string> taken;
    const auto take = [&taken](const std::optional<std::string>& identity, const std::string& use) {
        if (identity.has_value()) {
            taken.emplace(*identity, use);
        }
    };
    for (const std::string& input : inputs) {
        take(identityOf(input), "is an input of this command");
    }
    take(identityOf(STDOUT_FILENO), "is the file that standard output goes to");
    take(identityOf(STDERR_FILENO), "is the file that standard error goes to");
    for (const SOutput& output : outputs) {
        if (!output.file.has_value()) {
            continue;
        }
        if (*output.file == "-") {
            refuse(output,
                   "is not a file name; give ./- for a file of this name, or /dev/stdout if standard output "
                   "is a pipe");
        }
        requireEndOfLinks(output);
        const auto identity = identityOf(*output.file);
        const auto use = identity.has_value() ? taken.find(*identity) : taken.end();
        if (use != taken.end()) {
            refuse(output, use->second);
        }
        take(identity, fmt::format("is already the output of {}", output.option));
        if (!isForced) {
            requireReplaceable(output);
        }
    }
}

std::unique_ptr<COutputFile> openOutput(const SOutput& output) {
    if (!output.file.has_value()) {
        return nullptr;
    }
    try {
        return std::make_unique<COutputFile>(*output.file);
    } catch (const std::system_error& error) {
        throw CLI::ValidationError(
            output.option, "cannot write " + printableInQuotes(*output.file) + ": " + error.code().message());
    }
}

bool writeAndCommitOrReport(COutputFile& file, const std::string& text) {
    try {
        file.write(text);
        file.commit();
        return true;
    } catch (const std::system_error& error) {
        printError("cannot write " + file.name() + ": " + error.code().message());
        return false;
    }
}

}  // namespace fi_rotate
