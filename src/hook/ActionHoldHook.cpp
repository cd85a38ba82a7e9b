// The agent's pre-tool-use hook: asks the owner before a held action runs.
#include "hook/ActionHoldHook.h"

#include <cstdlib>

namespace orvo {

// Until the classifiers exist nothing is held, and an empty output lets every call through.
void runActionHoldHook(const std::optional<std::string>&, bool) {
    std::exit(0);
}

}  // namespace orvo
