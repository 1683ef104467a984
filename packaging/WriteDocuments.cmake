# Writes the documents of cmake/Documents.cmake, which gives the values. Without LARKSPIRE_WINDOWS_DEPS they are those for
# Linux. The day in them is that of the release, whenever they are written.
cmake_minimum_required (VERSION 3.25)
cmake_path (GET CMAKE_CURRENT_LIST_DIR PARENT_PATH root)
include ("${CMAKE_CURRENT_LIST_DIR}/Licences.cmake")
set (ENV{SOURCE_DATE_EPOCH} "${LARKSPIRE_RELEASE_TIME}")
string (TIMESTAMP LARKSPIRE_DATE "%Y-%m-%d" UTC)
file (MAKE_DIRECTORY "${DOCUMENTS}")

# The man page of a program that we have made: its --help, under what is in linux/<name of the program>.h2m.
function (write_man_page program)
    cmake_path (GET program FILENAME name)
    execute_process (
        COMMAND ${CMAKE_COMMAND} -E env "PROGRAM=${program}"
            "${HELP2MAN}" --no-info "--include=${CMAKE_CURRENT_FUNCTION_LIST_DIR}/linux/${name}.h2m"
            "--output=${DOCUMENTS}/${name}.1" "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/linux/help-for-man"
        COMMAND_ERROR_IS_FATAL ANY)
endfunction ()

if (LARKSPIRE_WINDOWS_DEPS)
    set (line_ends NEWLINE_STYLE CRLF)
    configure_file ("${CMAKE_CURRENT_LIST_DIR}/windows/INSTALL.txt.in" "${DOCUMENTS}/INSTALL.txt" @ONLY ${line_ends})
    configure_file ("${root}/LICENSE" "${DOCUMENTS}/LICENSE.txt" @ONLY ${line_ends})
    write_third_party (framework vst3-sdk text-shaping compiler-runtime windows-runtime image-codecs page-runtime)
    return ()
endif ()

configure_file ("${CMAKE_CURRENT_LIST_DIR}/linux/INSTALL.txt.in" "${DOCUMENTS}/INSTALL.txt" @ONLY)
configure_file ("${CMAKE_CURRENT_LIST_DIR}/linux/com.quendal.larkspire.metainfo.xml.in"
    "${DOCUMENTS}/com.quendal.larkspire.metainfo.xml" @ONLY)
set (parts framework vst3-sdk text-shaping compiler-runtime command-line json)

if (PAGE)
    list (APPEND parts page-runtime)
endif ()

write_third_party (${parts})
string (REPLACE "," ";" programs "${PROGRAMS}")

foreach (program IN LISTS programs)
    write_man_page ("${program}")
endforeach ()
