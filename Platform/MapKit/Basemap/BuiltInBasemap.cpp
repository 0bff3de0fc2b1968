#include "Platform/MapKit/Basemap/BasemapFile.h"

// The world's bytes, put into the read-only data by the assembler: they are mapped from the program's file and read in
// by the system only where a cell is unpacked. VEYRA_BASEMAP_PATH is the file's absolute path, quoted.
__asm__(".pushsection .rodata\n"
        ".balign 16\n"
        ".globl veyraBuiltInWorldStart\n"
        ".hidden veyraBuiltInWorldStart\n"
        "veyraBuiltInWorldStart:\n"
        ".incbin \"" VEYRA_BASEMAP_PATH "\"\n"
        ".globl veyraBuiltInWorldEnd\n"
        ".hidden veyraBuiltInWorldEnd\n"
        "veyraBuiltInWorldEnd:\n"
        ".byte 0\n"
        ".popsection\n");

extern "C" {
__attribute__((visibility("hidden"))) extern const std::byte veyraBuiltInWorldStart[];
__attribute__((visibility("hidden"))) extern const std::byte veyraBuiltInWorldEnd[];
}

namespace veyra {

const BasemapFile& builtInBasemap() {
    // Never destroyed: other threads may still draw while the process ends.
    static const auto* const world =
        new BasemapFile(std::span(veyraBuiltInWorldStart, veyraBuiltInWorldEnd), "built-in world");
    return *world;
}

} // namespace veyra
