# Tests that start a web engine. Its processes are not built with our sanitizer but load a module that is: they need the
# sanitizer's run-time library from their start, and their own leaks and signals are the engine's business.
function(veyra_sanitizer_environment result)
    if(VEYRA_SANITIZER STREQUAL "address")
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libasan.so
                        OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
        set(${result} "LD_PRELOAD=${runtime}" "ASAN_OPTIONS=detect_leaks=0:handle_segv=0:handle_abort=0" PARENT_SCOPE)
    elseif(VEYRA_SANITIZER STREQUAL "thread")
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libclang_rt.tsan-x86_64.so
                        OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
        set(${result} "LD_PRELOAD=${runtime}"
            "TSAN_OPTIONS=ignore_noninstrumented_modules=1:suppressions=${PROJECT_SOURCE_DIR}/Tests/tsan.suppressions"
            PARENT_SCOPE)
    else()
        set(${result} "" PARENT_SCOPE)
    endif()
endfunction()

# Runs a test with that library.
function(veyra_browser_test name)
    veyra_sanitizer_environment(environment)
    if(environment)
        set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT ${environment})
    endif()
endfunction()

# Names a program that runs another one with that library, for who starts a browser without being one: with the library
# loaded into it WebKitWebDriver does not answer.
function(veyra_browser_program result name program)
    veyra_sanitizer_environment(environment)
    if(NOT environment)
        set(${result} "${program}" PARENT_SCOPE)
        return()
    endif()
    set(script "${CMAKE_BINARY_DIR}/bin/${name}")
    list(JOIN environment " " assignments)
    file(GENERATE OUTPUT "${script}" CONTENT "#!/bin/sh\nexec env ${assignments} ${program} \"$@\"\n"
         FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    set(${result} "${script}" PARENT_SCOPE)
endfunction()
