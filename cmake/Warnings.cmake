# Warnings are errors in our own files, and only there: JUCE's modules are compiled into the same targets, so
# the flags go to sources, not to targets. JUCE's headers are system headers (cmake/Juce.cmake).
option (LARKSPIRE_WARNINGS_ARE_ERRORS "End at the first warning; OFF for packages, whose compilers know others" ON)

if (MSVC)
    set (LARKSPIRE_STRICT_OPTIONS /W4)
else ()
    set (LARKSPIRE_STRICT_OPTIONS -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${LARKSPIRE_WARNINGS_ARE_ERRORS}>:-Werror>)
endif ()

if (CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 sees overlaps in the standard library's own concatenation of texts; GCC 13 no longer does.
    list (APPEND LARKSPIRE_STRICT_OPTIONS -Wno-restrict)
endif ()

function (larkspire_own_sources target)
    get_target_property (sources ${target} SOURCES)

    foreach (source IN LISTS sources)
        if (source MATCHES "\\.cpp$" AND NOT source MATCHES "/juce_[^/]*$")
            set_property (SOURCE ${source} APPEND PROPERTY COMPILE_OPTIONS ${LARKSPIRE_STRICT_OPTIONS})
            cmake_path (ABSOLUTE_PATH source BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
            set_property (GLOBAL APPEND PROPERTY LARKSPIRE_OWN_SOURCES "${source}")
        endif ()
    endforeach ()
endfunction ()
