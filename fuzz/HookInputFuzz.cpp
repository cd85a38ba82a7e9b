// libFuzzer target: any bytes as the agent's hook input, read and classified as the hook does.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "hook/ActionHoldHook.h"
#include "protocol/ActionHoldMatch.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const orvo::HookCall call = orvo::readHookCall(input, "token");
    if (call.holdArgs) {
        // Whatever is held must travel to the app in a form the app reads back.
        const orvo::json& matches = (*call.holdArgs)["matches"];
        if (!call.readable || matches.empty()) {
            std::abort();
        }
        for (const orvo::json& match : matches) {
            if (!orvo::ActionHoldMatch::fromWireValue(match)) {
                std::abort();
            }
        }
        (void)orvo::dumpCompact(*call.holdArgs);
    }
    return 0;
}
