#include "tests/model/Outcome.h"

#include <sstream>

// Two macros, so that FI_MODEL_OUTCOMES is expanded before it is made a text.
#define FI_MODEL_QUOTED(...) #__VA_ARGS__
#define FI_MODEL_TEXT(...) FI_MODEL_QUOTED(__VA_ARGS__)

namespace fi_model {

std::vector<std::string> outcomeNames() {
    std::istringstream list(FI_MODEL_TEXT(FI_MODEL_OUTCOMES));
    std::vector<std::string> names;
    for (std::string name; std::getline(list >> std::ws, name, ',');) {
        names.push_back(name);
    }
    return names;
}

}  // namespace fi_model
