# clang-format and clang-tidy over all our own files, and shellcheck over the script that people run, as build targets with
# stamps: what has not changed is not looked at again. Sources register themselves in larkspire_own_sources.
find_program (LARKSPIRE_CLANG_FORMAT clang-format)
find_program (LARKSPIRE_CLANG_TIDY clang-tidy)
find_program (LARKSPIRE_SHELLCHECK shellcheck)

function (larkspire_add_lint_targets)
    # The same sources are checked where they are built for Linux.
    if (WIN32)
        return ()
    endif ()

    if (NOT LARKSPIRE_CLANG_FORMAT OR NOT LARKSPIRE_CLANG_TIDY OR NOT LARKSPIRE_SHELLCHECK)
        message (STATUS "clang-format, clang-tidy or shellcheck is missing: there is no target lint")
        return ()
    endif ()

    # For looking, not for building: a header that no list names must not escape the check.
    file (GLOB_RECURSE headers CONFIGURE_DEPENDS
        ${CMAKE_SOURCE_DIR}/source/*.h ${CMAKE_SOURCE_DIR}/tools/*.h ${CMAKE_SOURCE_DIR}/tests/*.h
        ${CMAKE_SOURCE_DIR}/benchmarks/*.h ${CMAKE_SOURCE_DIR}/vst2/*.h)
    get_property (sources GLOBAL PROPERTY LARKSPIRE_OWN_SOURCES)
    list (REMOVE_DUPLICATES sources)
    set (stamps "")

    set (format_stamp "${CMAKE_BINARY_DIR}/lint/format.stamp")
    add_custom_command (
        OUTPUT "${format_stamp}"
        COMMAND "${LARKSPIRE_CLANG_FORMAT}" --dry-run --Werror ${headers} ${sources}
        COMMAND ${CMAKE_COMMAND} -E touch "${format_stamp}"
        DEPENDS ${headers} ${sources} "${CMAKE_SOURCE_DIR}/.clang-format"
        COMMENT "clang-format"
        VERBATIM)
    list (APPEND stamps "${format_stamp}")

    set (scripts "${CMAKE_SOURCE_DIR}/tools/microphone/larkspire-microphone.in")
    set (scripts_stamp "${CMAKE_BINARY_DIR}/lint/scripts.stamp")
    add_custom_command (
        OUTPUT "${scripts_stamp}"
        COMMAND "${LARKSPIRE_SHELLCHECK}" ${scripts}
        COMMAND ${CMAKE_COMMAND} -E touch "${scripts_stamp}"
        DEPENDS ${scripts}
        COMMENT "shellcheck"
        VERBATIM)
    list (APPEND stamps "${scripts_stamp}")

    foreach (source IN LISTS sources)
        file (RELATIVE_PATH name "${CMAKE_SOURCE_DIR}" "${source}")

        # A header of source/ or tools/ is looked at with its own sources; tests that include it need not be once more.
        set (looked_at_with ${headers})

        if (name MATCHES "^(tests|benchmarks)/")
            list (FILTER looked_at_with INCLUDE REGEX "/tests/")
        endif ()

        string (REPLACE "/" "_" stamp_name "${name}")
        set (stamp "${CMAKE_BINARY_DIR}/lint/${stamp_name}.stamp")
        add_custom_command (
            OUTPUT "${stamp}"
            COMMAND "${CMAKE_SOURCE_DIR}/scripts/tidy" "${CMAKE_BINARY_DIR}" "${source}"
            COMMAND ${CMAKE_COMMAND} -E touch "${stamp}"
            DEPENDS "${source}" ${looked_at_with} "${CMAKE_SOURCE_DIR}/.clang-tidy"
            COMMENT "clang-tidy ${name}"
            VERBATIM)
        list (APPEND stamps "${stamp}")
    endforeach ()

    add_custom_target (lint DEPENDS ${stamps})
endfunction ()
