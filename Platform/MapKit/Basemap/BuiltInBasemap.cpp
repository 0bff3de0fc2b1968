#include "Platform/MapKit/Basemap/BasemapFile.h"
#include "Platform/MapKit/Basemap/BasemapImagery.h"
#include "Platform/MapKit/Basemap/BasemapNames.h"

// The files' bytes, put into the read-only data by the assembler: they are mapped from the program's file and read in
// by the system only where something is unpacked. VEYRA_BASEMAP_FOLDER is their folder's absolute path, quoted.
#define VEYRA_EMBED(symbol, file)                                                                                      \
    __asm__(".pushsection .rodata\n"                                                                                   \
            ".balign 16\n"                                                                                             \
            ".globl " symbol "Start\n"                                                                                 \
            ".hidden " symbol "Start\n" symbol "Start:\n"                                                              \
            ".incbin \"" VEYRA_BASEMAP_FOLDER "/" file "\"\n"                                                          \
            ".globl " symbol "End\n"                                                                                   \
            ".hidden " symbol "End\n" symbol "End:\n"                                                                  \
            ".byte 0\n"                                                                                                \
            ".popsection\n")

VEYRA_EMBED("veyraBuiltInWorld", "world.vbm");
VEYRA_EMBED("veyraBuiltInNames", "names.vbn");
VEYRA_EMBED("veyraBuiltInImagery", "imagery.vbi");

#define VEYRA_EMBEDDED(symbol)                                                                                         \
    __attribute__((visibility("hidden"))) extern const std::byte symbol##Start[];                                      \
    __attribute__((visibility("hidden"))) extern const std::byte symbol##End[]

extern "C" {
VEYRA_EMBEDDED(veyraBuiltInWorld);
VEYRA_EMBEDDED(veyraBuiltInNames);
VEYRA_EMBEDDED(veyraBuiltInImagery);
}

namespace veyra {

// None of them is ever destroyed: other threads may still draw while the process ends.

const BasemapFile& builtInBasemap() {
    static const auto* const world =
        new BasemapFile(std::span(veyraBuiltInWorldStart, veyraBuiltInWorldEnd), "built-in world");
    return *world;
}

const BasemapNames& builtInNames() {
    static const auto* const names =
        new BasemapNames(std::span(veyraBuiltInNamesStart, veyraBuiltInNamesEnd), "built-in names");
    return *names;
}

const BasemapImagery& builtInImagery() {
    static const auto* const imagery =
        new BasemapImagery(std::span(veyraBuiltInImageryStart, veyraBuiltInImageryEnd), "built-in pictures");
    return *imagery;
}

} // namespace veyra
