// Build step: writes the listing entry of every implemented tool as C++ source, so that the
// shipped binary answers tools/list without building schemas at start-up.
#include <fstream>
#include <iostream>

#include "tools/ToolCatalog.h"
#include "tools/ToolListing.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: orvo_generate_listing OUTPUT.cpp\n";
        return 2;
    }
    std::string source =
        "// Generated when the program is built, from the tool catalogue. Do not edit.\n"
        "#include \"tools/ToolListing.h\"\n\n"
        "namespace orvo {\nnamespace {\n\n"
        "constexpr PrecomputedListingEntry kEntries[] = {\n";
    for (const orvo::MCPTool* tool : orvo::registeredTools()) {
        source += "    {" + orvo::cppStringLiteral(tool->name()) + ",\n     " +
                  orvo::cppStringLiteral(orvo::dumpCompact(orvo::listingEntry(*tool))) + "},\n";
    }
    source +=
        "};\n\n}  // namespace\n\n"
        "std::span<const PrecomputedListingEntry> generatedToolListing() { return kEntries; }\n\n"
        "}  // namespace orvo\n";
    std::ofstream out(argv[1], std::ios::binary | std::ios::trunc);
    out << source;
    return out ? 0 : 1;
}
