// Feeds arbitrary bytes to the settings decoders as if they were the app's settings file.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "protocol/Json.h"
#include "userfiles/SettingsSnapshot.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const orvo::json snapshot = orvo::buildSettingsSnapshot(orvo::decodePersistedSettings(bytes),
                                                            orvo::decodeHotkeyLabel(bytes));
    // Whatever the file holds, the agent gets one object that serialises and reads back whole.
    if (!snapshot.is_object()) {
        __builtin_trap();
    }
    const orvo::json reread = orvo::json::parse(orvo::dumpPretty(snapshot), nullptr, false);
    if (reread.is_discarded() || reread.size() != snapshot.size()) {
        __builtin_trap();
    }
    return 0;
}
