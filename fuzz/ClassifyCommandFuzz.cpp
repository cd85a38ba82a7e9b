// libFuzzer target: any text as an agent's shell command, and as another server's tool name.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "protocol/ActionHoldClassifier.h"

namespace {

// What every answer must satisfy, whatever the input.
void checkMatches(const std::vector<orvo::ActionHoldMatch>& matches) {
    std::uint32_t seen = 0;
    for (const orvo::ActionHoldMatch& match : matches) {
        const auto bit = 1u << static_cast<unsigned>(match.category);
        if ((seen & bit) != 0 || match.phrase.progressive.empty() || match.phrase.base.empty() ||
            orvo::ActionHoldMatch::fromWireValue(match.wireValue()) != match) {
            std::abort();
        }
        seen |= bit;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    checkMatches(orvo::ActionHoldClassifier::classifyCommand(text));
    checkMatches(orvo::ActionHoldClassifier::classify(
        text, orvo::json{{"text", text.substr(0, 200)}, {"command", "git push"}}));
    return 0;
}
