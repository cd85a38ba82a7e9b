// libFuzzer target: any bytes as the app's reply, decoded and turned into the tool's outcome.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <variant>

#include "protocol/AppEnvelope.h"

namespace {

// Decodes what the app's own encoder wrote, which must succeed and read back as `Shape`.
template <class Shape>
Shape reread(const orvo::Result<std::string>& encoded) {
    if (!encoded) {
        std::abort();
    }
    orvo::MCPMutationDecodeResult decoded = orvo::decodeMCPMutationResponse(*encoded);
    auto* shape = std::get_if<Shape>(&decoded);
    if (shape == nullptr) {
        std::abort();
    }
    return std::move(*shape);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    orvo::MCPMutationDecodeResult decoded = orvo::decodeMCPMutationResponse(bytes);
    // Whatever was decoded, the app's encoders write back and it reads back the same: nothing
    // decoded is too deep or too odd to travel again.
    if (const auto* success = std::get_if<orvo::MCPMutationSuccess>(&decoded)) {
        const orvo::Result<std::string> encoded = orvo::encodeMCPMutationSuccess(success->result);
        if (reread<orvo::MCPMutationSuccess>(encoded).result != success->result) {
            std::abort();
        }
        // The text the agent gets stays within a small multiple of the reply.
        if (orvo::dumpReadable(success->result).size() > 9 * encoded->size() + 65536) {
            std::abort();
        }
    } else if (const auto* error = std::get_if<orvo::MCPMutationError>(&decoded)) {
        const orvo::MCPMutationError again = reread<orvo::MCPMutationError>(
            orvo::encodeMCPMutationError(error->code, error->message, error->data));
        if (again.code != error->code || again.message != error->message ||
            again.data != error->data) {
            std::abort();
        }
    }
    (void)orvo::mutationOutcome(std::move(decoded));
    return 0;
}
