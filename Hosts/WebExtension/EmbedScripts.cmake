# Writes the scripts given in SCRIPTS (paths) to OUTPUT as C++ string constants, each named after its file.
set(text "// Made by EmbedScripts.cmake.\n#include \"Hosts/WebExtension/EmbeddedScripts.h\"\n\nnamespace veyra {\n")
foreach(script IN LISTS SCRIPTS)
    get_filename_component(name "${script}" NAME_WE)
    file(READ "${script}" source)
    string(APPEND text "\nconst char* const script${name} = R\"script(${source})script\";\n")
endforeach()
string(APPEND text "\n} // namespace veyra\n")
file(WRITE "${OUTPUT}" "${text}")
