# -DLARKSPIRE_SANITIZE=address,undefined or =thread builds everything with those sanitizers, JUCE included.
set (LARKSPIRE_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them")

# Counters for Clang's fuzzer in the same machine code, so that one build serves the tests and the fuzzer: without the
# fuzzer AddressSanitizer's runtime takes the counters and does nothing with them.
option (LARKSPIRE_FUZZ "Instrument for larkspire-fuzz-state and build it; needs Clang and address in LARKSPIRE_SANITIZE" OFF)

if (LARKSPIRE_SANITIZE)
    # Lines are all that a report needs of the debugger's tables, and JUCE's full ones take minutes.
    add_compile_options (-fsanitize=${LARKSPIRE_SANITIZE} -fno-omit-frame-pointer -g1)
    add_link_options (-fsanitize=${LARKSPIRE_SANITIZE})

    if (LARKSPIRE_SANITIZE MATCHES "undefined")
        # JUCE's casts of its own records are no faults of ours.
        add_compile_options (-fno-sanitize=vptr,alignment -fno-sanitize-recover=undefined)

        if (CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
            add_compile_options ("-fsanitize-ignorelist=${CMAKE_CURRENT_LIST_DIR}/sanitizers-ignored.txt")
        endif ()
    endif ()
endif ()

if (LARKSPIRE_FUZZ)
    if (NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang" OR NOT LARKSPIRE_SANITIZE MATCHES "address")
        message (FATAL_ERROR "LARKSPIRE_FUZZ needs Clang and LARKSPIRE_SANITIZE=address,undefined: use the preset asan")
    endif ()

    add_compile_options (-fsanitize=fuzzer-no-link)
endif ()
