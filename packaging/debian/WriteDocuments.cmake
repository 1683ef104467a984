# Writes what the Debian package holds and is made from beside the documents of all systems; cmake/Documents.cmake gives the
# values. Debian wants the licences of all that is linked in one file of a certain form.
cmake_minimum_required (VERSION 3.25)
cmake_path (GET CMAKE_CURRENT_LIST_DIR PARENT_PATH packaging)
cmake_path (GET packaging PARENT_PATH root)
include ("${packaging}/Licences.cmake")
set (ENV{SOURCE_DATE_EPOCH} "${LARKSPIRE_RELEASE_TIME}")
string (TIMESTAMP LARKSPIRE_YEAR "%Y" UTC)
string (TIMESTAMP LARKSPIRE_MAIL_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)

# A text as a field of Debian's control files: indented, and a dot where a line is empty.
function (as_field text result)
    string (STRIP "${text}" text)
    string (REGEX REPLACE "[ \t]+\n" "\n" text "${text}")
    string (REGEX REPLACE "\n\n+" "\n.\n" text "${text}")
    string (REPLACE "\n" "\n " text "${text}")
    set (${result} " ${text}" PARENT_SCOPE)
endfunction ()

configure_file ("${CMAKE_CURRENT_LIST_DIR}/changelog.in" "${DOCUMENTS}/changelog" @ONLY)
configure_file ("${CMAKE_CURRENT_LIST_DIR}/control.in" "${DOCUMENTS}/control" @ONLY)

# The line that names the format is the same in every package and has to be.
file (STRINGS /usr/share/doc/dpkg/copyright format REGEX "^Format:" LIMIT_COUNT 1)

if (NOT format)
    message (FATAL_ERROR "  /usr/share/doc/dpkg/copyright has no line Format:")
endif ()

foreach (field IN ITEMS cli11 nlohmann-json musl gcc-runtime-exception)
    read_text ("${licence_texts}/${field}.txt" text)
    as_field ("${text}" ${field}_field)
endforeach ()

read_text ("${root}/LICENSE" agpl)
read_text ("${juce_graphics}/fonts/harfbuzz/COPYING" harfbuzz)
string (REGEX MATCHALL "Copyright ©[^\n]*" holders "${harfbuzz}")
list (JOIN holders "\n " harfbuzz_holders)
string (REPLACE "Copyright © " "" harfbuzz_holders "${harfbuzz_holders}")
cut ("${harfbuzz}" "Permission is hereby granted" "" harfbuzz)
as_field ("${agpl}" agpl_field)
as_field ("${harfbuzz}" harfbuzz_field)
read_vst3_licence (vst3_classes vst3_holder)
as_field ("${vst3_classes}" vst3_field)
configure_file ("${CMAKE_CURRENT_LIST_DIR}/copyright.in" "${DOCUMENTS}/copyright" @ONLY)
