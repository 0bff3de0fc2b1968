# Warnings are errors on both compilers; clang also checks the locks.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Wformat=2
                    -Werror)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    add_compile_options(-Wthread-safety -Werror=thread-safety)
endif()

# g++ 12 takes what std::variant moves for uninitialised, with -O3 and with the sanitizers.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized)
endif()

find_program(VEYRA_CCACHE ccache)
if(VEYRA_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${VEYRA_CCACHE})
endif()
