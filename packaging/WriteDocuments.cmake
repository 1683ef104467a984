# Writes what the packages hold beside libraries and programs into the folder DOCUMENTS: cmake -DDOCUMENTS=... -P this
# file. With RENDERER and MICROPHONE, the paths of those programs, these are the documents for Linux, without them those for
# Windows. The release's day is SOURCE_DATE_EPOCH. Licences of others are read where this machine has them; a missing one
# is an error.
cmake_minimum_required (VERSION 3.25)
cmake_path (GET CMAKE_CURRENT_LIST_DIR PARENT_PATH root)
include ("${root}/cmake/Version.cmake")
include ("${CMAKE_CURRENT_LIST_DIR}/Licences.cmake")

if (NOT "$ENV{SOURCE_DATE_EPOCH}" MATCHES "^[0-9]+$")
    message (FATAL_ERROR "  SOURCE_DATE_EPOCH has to be the release's time in seconds since 1970")
endif ()

string (TIMESTAMP LARKSPIRE_YEAR "%Y" UTC)
string (TIMESTAMP LARKSPIRE_DATE "%Y-%m-%d" UTC)
string (TIMESTAMP LARKSPIRE_MAIL_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
file (REMOVE_RECURSE "${DOCUMENTS}")
file (MAKE_DIRECTORY "${DOCUMENTS}")

# Debian wants the compressed ones as small as they get and without a time of their own.
function (compress document)
    execute_process (COMMAND gzip --best --no-name --keep "${DOCUMENTS}/${document}" COMMAND_ERROR_IS_FATAL ANY)
endfunction ()

# The man page of a program that we have made: its --help, under what is in linux/<name of the program>.h2m.
function (write_man_page program)
    cmake_path (GET program FILENAME name)
    execute_process (
        COMMAND ${CMAKE_COMMAND} -E env "PROGRAM=${program}"
            help2man --no-info "--include=${CMAKE_CURRENT_LIST_DIR}/linux/${name}.h2m"
            "--output=${DOCUMENTS}/${name}.1" "${CMAKE_CURRENT_LIST_DIR}/linux/help-for-man"
        COMMAND_ERROR_IS_FATAL ANY)
    compress ("${name}.1")
endfunction ()

if (RENDERER)
    configure_file ("${CMAKE_CURRENT_LIST_DIR}/linux/INSTALL.txt.in" "${DOCUMENTS}/INSTALL.txt" @ONLY)
    configure_file ("${CMAKE_CURRENT_LIST_DIR}/linux/com.quendal.larkspire.metainfo.xml.in"
        "${DOCUMENTS}/com.quendal.larkspire.metainfo.xml" @ONLY)
    write_third_party (framework vst3-sdk text-shaping compiler-runtime command-line json page-runtime)

    configure_file ("${CMAKE_CURRENT_LIST_DIR}/debian/changelog.in" "${DOCUMENTS}/changelog" @ONLY)
    configure_file ("${CMAKE_CURRENT_LIST_DIR}/debian/control.in" "${DOCUMENTS}/control" @ONLY)
    compress (changelog)
    write_debian_copyright ()

    write_man_page ("${RENDERER}")
    write_man_page ("${MICROPHONE}")
else ()
    set (line_ends NEWLINE_STYLE CRLF)
    configure_file ("${CMAKE_CURRENT_LIST_DIR}/windows/INSTALL.txt.in" "${DOCUMENTS}/INSTALL.txt" @ONLY ${line_ends})
    configure_file ("${root}/LICENSE" "${DOCUMENTS}/LICENSE.txt" @ONLY ${line_ends})
    write_third_party (framework vst3-sdk text-shaping compiler-runtime windows-runtime image-codecs page-runtime)
endif ()
