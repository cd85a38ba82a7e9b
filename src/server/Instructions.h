// What the server tells the agent at start: where the docs are, what not to touch, and the voice
// offer.
#pragma once

#include <filesystem>
#include <string>

#include "protocol/Json.h"
#include "protocol/Result.h"

namespace orvo {

// The voice offer is on exactly when the tool set holds `speak`.
std::string instructions(const std::filesystem::path& documentationDirectory, bool voiceOffer);

// `applicationSupport`/orvo-agent/docs/, with its trailing slash.
std::string documentationDirectory(const std::filesystem::path& applicationSupport);

json listPrompts(bool voiceOffer);
Result<json> getPrompt(const json& params, bool voiceOffer);

}  // namespace orvo
