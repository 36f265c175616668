#include "host/library_call.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include <cxxabi.h>
#include <fmt/format.h>

#include <fi_rotation/CFiUdidException.h>
#include <fi_rotation/fi_process_backups.h>

#include "host/explanation.h"
#include "host/identifier.h"
#include "host/trace_text.h"

namespace fi_rotate {
namespace {

struct SFree {
    void operator()(char* text) const { std::free(text); }
};

// The size of the list; -1 for a first backup whose configurations are wished for (SWishes).
std::int32_t sizeOfList(const SCall& call, const SWishes& wishes) {
    constexpr std::int32_t kNoEntries = -1;
    const bool isFirstBackup = call.backups.empty();
    return isFirstBackup && wishes.configurationsOfFirstBackup
               ? kNoEntries
               : static_cast<std::int32_t>(call.backups.size());
}

// Puts the status and the selection, or the exception, into `outcome`. `flags` is what the library reads and
// overwrites.
void callLibrary(const SCall& call, std::int32_t listSize, std::vector<std::int32_t>& flags,
                 SOutcome& outcome) {
    std::vector<const char*> files;
    files.reserve(call.backups.size());
    for (const SBackup& backup : call.backups) {
        files.push_back(backup.file.c_str());
    }
    // The library rejects a null pointer to the flags even when the list has no entries.
    flags.reserve(1);

    try {
        char* result = nullptr;
        outcome.status =
            fi_process_backups(files.data(), call.configuration.c_str(), flags.data(), listSize, &result);
        const std::unique_ptr<char, SFree> selection(result);
        if (outcome.status == FI_STATUS_SUCCESS) {
            outcome.selection = selection.get();
        }
    } catch (const CFiUdidException& malformed) {
        outcome.exception = SException{
            malformed.identifier, malformed.code, std::string(identifierFault(malformed.code)), {}, false};
    } catch (const std::bad_alloc& outOfMemory) {
        outcome.exception = SException{{}, {}, outOfMemory.what(), {}, true};
    } catch (const std::exception& other) {
        outcome.exception = SException{{}, {}, other.what(), {}, false};
    } catch (const abi::__forced_unwind&) {
        // A trace function ends the thread with pthread_exit. Unless this is thrown on, the process ends.
        throw;
    } catch (...) {
        // The only exception left is that of the XML library when memory runs out.
        outcome.exception = SException{{}, {}, "memory ran out in the XML library", {}, true};
    }
}

// As vsnprintf, but the arguments can be read again.
int print(char* buffer, std::size_t size, const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(buffer, size, format, again);
    va_end(again);
    return length;
}

std::string formatted(const char* format, std::va_list arguments) {
    const int length = print(nullptr, 0, format, arguments);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<std::size_t>(length) + 1);
        print(text.data(), text.size(), format, arguments);
        text.pop_back();
    }
    return text;
}

std::string withoutLineEnd(std::string text) {
    if (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    return text;
}

// Finds what a text of the library means, by the address of the text: a trace can have many million lines,
// but they are made of a few dozen literals, so that each need be compared only once.
template <typename Meaning>
class CMeanings {
public:
    explicit CMeanings(Meaning (*ofLiteral)(const char*)) : find(ofLiteral) {}

    const Meaning& of(const char* literal) {
        const auto address = reinterpret_cast<std::uintptr_t>(literal);
        SSlot& slot = slots[(address ^ address / kSlots) % kSlots];
        if (slot.literal != literal) {
            fill(slot, literal);
        }
        return slot.meaning;
    }

private:
    static constexpr std::size_t kSlots = 256;
    struct SSlot {
        const char* literal = nullptr;
        Meaning meaning = {};
    };

    // Apart, since it is hardly ever needed.
    [[gnu::noinline]] void fill(SSlot& slot, const char* literal) { slot = {literal, find(literal)}; }

    Meaning (*find)(const char*);
    std::array<SSlot, kSlots> slots;
};

// The operations of the library whose entry or exit tells something of a document.
enum class EOperation { kOther, kParse, kEndElement, kFatalError };

EOperation operationOf(const char* name) {
    if (std::strcmp(name, "CFiFiidParser::parse") == 0) {
        return EOperation::kParse;
    }
    if (std::strcmp(name, "CFiFiidHandler::endElement") == 0) {
        return EOperation::kEndElement;
    }
    return name == kDamageOperation ? EOperation::kFatalError : EOperation::kOther;
}

// What a format says of the lines that are made with it.
struct SLine {
    std::optional<ETraceText> text;
    // The letters of its conversions, in order.
    std::string conversions;
};

SLine lineOf(const char* format) {
    SLine line{kindOf(format), {}};
    for (const char* at = std::strchr(format, '%'); at != nullptr; at = std::strchr(at + 1, '%')) {
        line.conversions += at[1];
    }
    return line;
}

// Takes the arguments of a line without formatting the line.
class CArguments {
public:
    const TraceArguments& read(std::string_view conversions, std::va_list arguments) {
        taken.clear();
        std::size_t numbersInUse = 0;
        for (const char conversion : conversions) {
            if (conversion == 'd') {
                auto& number = numbers.at(numbersInUse++);
                const auto end = std::to_chars(number.begin(), number.end(), va_arg(arguments, int));
                taken.emplace_back(number.data(), static_cast<std::size_t>(end.ptr - number.data()));
            } else {
                taken.emplace_back(va_arg(arguments, const char*));
            }
        }
        return taken;
    }

private:
    // Room for two numbers, one more than any line holds. A 32-bit number has at most 11 characters.
    std::array<std::array<char, 12>, 2> numbers{};
    TraceArguments taken;
};

// Receives the library's trace from its construction to its destruction; at most one exists at a time.
// It tells lines apart by their formats, and formats only lines that somebody reads, because the trace of a
// large document is many times the size of the document.
class CTraceReceiver {
public:
    // Both are borrowed. `reader` receives the lines for the account; null when there is to be none.
    CTraceReceiver(const SWishes& wishes, CAccountReader* reader);
    ~CTraceReceiver();
    CTraceReceiver(const CTraceReceiver&) = delete;
    CTraceReceiver& operator=(const CTraceReceiver&) = delete;

    // Throws std::bad_alloc when memory runs out, but never for a line that a destructor traces. These are
    // the entries and exits of destructors: enter allocates only at CFiFiidParser::parse, and tell keeps what
    // is thrown.
    void receive(int level, const char* format, std::va_list arguments);

    // What the XML reader found in each document that it came to, in order.
    std::vector<SReading> readings;
    // Names of the documents that were loaded, in order.
    std::vector<std::string> loaded;
    // How many of these were checked.
    std::size_t checked = 0;
    // The lines in which the library reports failures.
    std::vector<std::string> failures;
    // What the sink threw, or std::bad_alloc for a line. The sink is not called again after it.
    std::exception_ptr sinkFailure;

private:
    // What few lines need stands apart, so that the many others do not pay for it.
    [[gnu::noinline]] void tell(int level, const char* format, std::va_list arguments);
    [[gnu::noinline]] void follow(const char* format, std::va_list arguments);
    void enter(const char* name);
    [[gnu::noinline]] void noteDocument(EOperation operation);
    void leave(const char* name);

    const SWishes& wished;
    // Lines up to this level are told to somebody.
    const int heardLevel;
    CAccountReader* account;
    // What is known of the document that was read but not parsed yet.
    SReading nextReading;
    CMeanings<SLine> lines{lineOf};
    CMeanings<EOperation> operations{operationOf};
    CArguments lastArguments;
    // How many exits were traced since the last entry.
    int exits = 0;
    // The addresses of the formats of entries and exits, once they were seen.
    const char* entering = nullptr;
    const char* exiting = nullptr;
};

// The library's trace call has no context argument, so its receiver must be reachable without one.
CTraceReceiver* activeReceiver = nullptr;

CTraceReceiver::CTraceReceiver(const SWishes& wishes, CAccountReader* reader)
    : wished(wishes),
      heardLevel(wishes.trace != nullptr ? std::max(kFailureLevel, wishes.traceLevel) : kFailureLevel),
      account(reader) {
    if (activeReceiver != nullptr) {
        throw std::logic_error("two calls overlap: the trace has a receiver already");
    }
    activeReceiver = this;
}

CTraceReceiver::~CTraceReceiver() {
    activeReceiver = nullptr;
}

void CTraceReceiver::receive(int level, const char* format, std::va_list arguments) {
    if (level <= heardLevel) {
        tell(level, format, arguments);
    }
    // Nearly all lines are entries and exits, so these are recognised first, by the address of their format.
    if (format == entering) {
        enter(va_arg(arguments, const char*));
    } else if (format == exiting) {
        leave(va_arg(arguments, const char*));
    } else {
        follow(format, arguments);
    }
}

void CTraceReceiver::tell(int level, const char* format, std::va_list arguments) {
    if (sinkFailure != nullptr) {
        return;
    }
    // Some lines are traced by destructors, which must not throw.
    try {
        const std::string text = withoutLineEnd(formatted(format, arguments));
        if (level == kFailureLevel && format != formatOf(ETraceText::kFlagWord)) {
            failures.push_back(text);
        }
        if (wished.trace != nullptr && level <= wished.traceLevel) {
            wished.trace(level, text);
        }
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (...) {
        sinkFailure = std::current_exception();
    }
}

void CTraceReceiver::follow(const char* format, std::va_list arguments) {
    const SLine& line = lines.of(format);
    if (!line.text.has_value()) {
        return;
    }
    const ETraceText text = *line.text;
    switch (text) {
        case ETraceText::kEntering:
            entering = format;
            enter(va_arg(arguments, const char*));
            return;
        case ETraceText::kExiting:
            exiting = format;
            leave(va_arg(arguments, const char*));
            return;
        case ETraceText::kDocumentRead: {
            const TraceArguments& read = lastArguments.read(line.conversions, arguments);
            nextReading.fileState = read[0];
            nextReading.isWhole = read[1] == "1";
            return;
        }
        case ETraceText::kMalformedDocument: {
            const TraceArguments& place = lastArguments.read(line.conversions, arguments);
            readings.back().fault = fmt::format("line {}, column {}: {}", place[0], place[1], place[2]);
            return;
        }
        default:
            break;
    }
    checked += text == ETraceText::kCheckPassed || text == ETraceText::kCheckFailed ? 1 : 0;
    const bool isLoaded = text == ETraceText::kParsed;
    if (account == nullptr && !isLoaded) {
        return;
    }
    const TraceArguments& taken = lastArguments.read(line.conversions, arguments);
    if (isLoaded) {
        loaded.emplace_back(taken[0]);
    }
    if (account != nullptr) {
        account->take(text, taken);
    }
}

void CTraceReceiver::enter(const char* name) {
    exits = 0;
    const EOperation operation = operations.of(name);
    if (operation == EOperation::kParse || operation == EOperation::kFatalError) {
        noteDocument(operation);
    }
}

void CTraceReceiver::noteDocument(EOperation operation) {
    if (operation == EOperation::kParse) {
        readings.push_back(std::exchange(nextReading, {}));
    } else {
        readings.back().isMalformed = true;
    }
}

// The handler of a document traces one exit at the end of an element, one more when the element is a
// top-level Node, and one more when a top-level Node has ended before. So three exits tell of a second
// top-level Node.
void CTraceReceiver::leave(const char* name) {
    constexpr int kExitsOfFurtherRoot = 3;
    if (++exits == kExitsOfFurtherRoot && operations.of(name) == EOperation::kEndElement) {
        readings.back().hasSeveralRoots = true;
    }
}

void forward(int level, const char* format, std::va_list arguments) {
    if (activeReceiver != nullptr) {
        activeReceiver->receive(level, format, arguments);
    }
}

// Puts into `outcome` what the trace tells of the documents, and which of them holds a malformed identifier.
void giveReadings(const CTraceReceiver& trace, SOutcome& outcome) {
    const std::set<std::string_view> loaded(trace.loaded.begin(), trace.loaded.end());
    for (std::size_t i = 0; i < outcome.backups.size(); ++i) {
        SBackupOutcome& backup = outcome.backups[i];
        backup.isLoaded = loaded.count(backup.given.file) != 0;
        if (i < trace.readings.size()) {
            backup.reading = trace.readings[i];
        }
    }
    const bool isNamed = outcome.exception.has_value() && outcome.exception->identifier.has_value();
    if (isNamed && trace.checked < trace.loaded.size()) {
        const auto found = std::find_if(outcome.backups.begin(), outcome.backups.end(),
                                        [&file = trace.loaded[trace.checked]](const SBackupOutcome& backup) {
                                            return backup.given.file == file;
                                        });
        outcome.exception->backup = static_cast<std::size_t>(found - outcome.backups.begin());
    }
}

}  // namespace

SOutcome runCall(const SCall& call, const SWishes& wishes) {
    SOutcome outcome;
    std::vector<std::int32_t> flags;
    flags.reserve(call.backups.size());
    for (const SBackup& backup : call.backups) {
        flags.push_back(backup.flagWord);
        outcome.backups.emplace_back().given = backup;
    }

    CAccountReader reader;
    {
        CTraceReceiver trace(wishes, wishes.account ? &reader : nullptr);
        callLibrary(call, sizeOfList(call, wishes), flags, outcome);
        if (trace.sinkFailure != nullptr) {
            std::rethrow_exception(trace.sinkFailure);
        }
        giveReadings(trace, outcome);
        outcome.messages = std::move(trace.failures);
    }
    for (std::size_t i = 0; i < flags.size(); ++i) {
        if (outcome.backups[i].isLoaded && outcome.status == FI_STATUS_SUCCESS) {
            outcome.backups[i].state = flags[i];
        }
    }
    if (wishes.account) {
        outcome.account = explain(std::move(reader));
        copyReasons(outcome);
    }
    return outcome;
}

}  // namespace fi_rotate

// The trace facility, which the library takes from its host.
extern "C" __attribute__((format(printf, 2, 3), visibility("default"))) void mofi_tracelog(int level,
                                                                                           const char* format,
                                                                                           ...) {
    std::va_list arguments;
    va_start(arguments, format);
    fi_rotate::forward(level, format, arguments);
    va_end(arguments);
}
