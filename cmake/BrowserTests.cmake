# Tests that start a web engine. Its processes are not built with our sanitizer but load a module that is: they need the
# sanitizer's run-time library from their start, and their own leaks and signals are the engine's business.
function(veyra_browser_test name)
    if(VEYRA_SANITIZER STREQUAL "address")
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libasan.so
                        OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
        set(options "ASAN_OPTIONS=detect_leaks=0:handle_segv=0:handle_abort=0")
    elseif(VEYRA_SANITIZER STREQUAL "thread")
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libclang_rt.tsan-x86_64.so
                        OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
        set(options "TSAN_OPTIONS=ignore_noninstrumented_modules=1:suppressions=${PROJECT_SOURCE_DIR}/Tests/tsan.suppressions")
    else()
        return()
    endif()
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT "LD_PRELOAD=${runtime}" "${options}")
endfunction()
