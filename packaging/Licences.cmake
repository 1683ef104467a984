# What is linked into library and renderer that others wrote, and on which terms. The words of the licences come with the
# linked things where they do: in JUCE's tree and, for Windows, among what scripts/windows/setup has fetched. The others
# are in licences/, because each system has them elsewhere or not at all.
set (licence_texts "${CMAKE_CURRENT_LIST_DIR}/licences")
set (juce_graphics "${LARKSPIRE_JUCE}/modules/juce_graphics")
set (vst3_sdk "${LARKSPIRE_JUCE}/modules/juce_audio_processors/format_types/VST3_SDK")

# The SDK's guidelines ask for this sentence wherever its name stands.
set (LARKSPIRE_VST_TRADEMARK
    "VST is a trademark of Steinberg Media Technologies GmbH, registered in Europe and other countries.")

# A text as it stands, with single line ends.
function (read_text path result)
    if (NOT EXISTS "${path}")
        message (FATAL_ERROR "  ${path} is missing, which holds a licence that has to come with the packages")
    endif ()

    file (READ "${path}" text)
    string (REPLACE "\r" "" text "${text}")
    set (${result} "${text}" PARENT_SCOPE)
endfunction ()

# The part of a text that begins with one mark and ends ahead of another, or with the text if that is empty.
function (cut text from to result)
    string (FIND "${text}" "${from}" start)

    if (start EQUAL -1)
        message (FATAL_ERROR "  a licence has no line '${from}' any more")
    endif ()

    string (SUBSTRING "${text}" ${start} -1 text)

    if (to)
        string (FIND "${text}" "${to}" end)
        string (SUBSTRING "${text}" 0 ${end} text)
    endif ()

    string (STRIP "${text}" text)
    set (${result} "${text}" PARENT_SCOPE)
endfunction ()

# The terms of the VST 3 SDK's classes, and who has the copyright. Its interfaces have to be offered under the GPL still.
function (read_vst3_licence licence holder)
    read_text ("${vst3_sdk}/pluginterfaces/LICENSE.txt" interfaces)
    cut ("${interfaces}" "b) General Public License (GPL) Version 3" "\n" unused)
    read_text ("${vst3_sdk}/base/LICENSE.txt" base)
    read_text ("${vst3_sdk}/public.sdk/LICENSE.txt" classes)

    if (NOT base STREQUAL classes)
        message (FATAL_ERROR "  the terms of the VST 3 SDK's folders base and public.sdk are not the same any more")
    endif ()

    if (NOT base MATCHES "\\(c\\) ([0-9]+, [^\n]+)")
        message (FATAL_ERROR "  ${vst3_sdk}/base/LICENSE.txt does not say any more who has the copyright")
    endif ()

    set (${holder} "${CMAKE_MATCH_1}" PARENT_SCOPE)
    cut ("${base}" "// Redistribution" "//---" base)
    string (REGEX REPLACE "(^|\n)// ?" "\\1" base "${base}")
    set (${licence} "${base}" PARENT_SCOPE)
endfunction ()

# Each gives a heading and the text of a licence.
function (licence_of part)
    if (part STREQUAL "framework")
        set (heading "JUCE 8, by Raw Material Software Limited, which the plug-in is built on: AGPL-3.0")
        set (text "The same licence as that of Quendal Larkspire, which stands in the file beside this one.")
    elseif (part STREQUAL "text-shaping")
        read_text ("${juce_graphics}/fonts/harfbuzz/COPYING" harfbuzz)
        read_text ("${juce_graphics}/unicode/sheenbidi/LICENSE" sheenbidi)
        set (heading "HarfBuzz and SheenBidi, which set the letters of the plug-in's window")
        set (text "HarfBuzz:\n\n${harfbuzz}\n\nSheenBidi, by Muhammad Tayyab Akram, with JUCE's changes to its include lines:\n\n${sheenbidi}")
    elseif (part STREQUAL "vst3-sdk")
        read_vst3_licence (classes holder)
        read_text ("${licence_texts}/GPL-3.txt" gpl)
        set (heading "VST 3 SDK, by Steinberg Media Technologies GmbH, which the VST 3 plug-in is built on: GPL-3.0 and BSD-3-Clause")
        set (text "${LARKSPIRE_VST_TRADEMARK}\n\nIts classes:\n\n(c) ${holder}\n\n${classes}\n\nThe reader of JSON among them, json.h, is in the public domain.\n\nIts interfaces are used under the GPL, version 3, whose section 13 allows it beside the AGPL:\n\n${gpl}")
    elseif (part STREQUAL "compiler-runtime")
        read_text ("${licence_texts}/gcc-runtime-exception.txt" text)
        set (heading "GCC's libstdc++ and libgcc, by the Free Software Foundation, the C++ runtime in the plug-in and the renderer: GPL-3.0 or later with this exception")
    elseif (part STREQUAL "command-line")
        read_text ("${licence_texts}/cli11.txt" text)
        set (heading "CLI11, by the University of Cincinnati, which reads the command line of larkspire-render: BSD-3-Clause")
    elseif (part STREQUAL "json")
        read_text ("${licence_texts}/nlohmann-json.txt" text)
        set (heading "JSON for Modern C++, by Niels Lohmann, which writes the figures of larkspire-render for programs: MIT")
    elseif (part STREQUAL "windows-runtime")
        read_text ("${LARKSPIRE_WINDOWS_DEPS}/mingw/share/doc/mingw-w64-x86-64-dev/copyright" text)
        set (heading "mingw-w64, the C runtime's start and the threads of the plug-in")
    elseif (part STREQUAL "image-codecs")
        read_text ("${LARKSPIRE_WINDOWS_DEPS}/codecs/include/png.h" png)
        cut ("${png}" " * COPYRIGHT NOTICE" " * END OF" png)
        string (REGEX REPLACE "(^|\n) ?\\* ?" "\\1" png "${png}")
        read_text ("${LARKSPIRE_WINDOWS_DEPS}/codecs/include/zlib.h" zlib)
        cut ("${zlib}" "Copyright" "  The data format" zlib)
        string (REGEX REPLACE "\n  " "\n" zlib "${zlib}")
        set (heading "libpng and zlib, JUCE's readers of pictures")
        set (text "libpng:\n\n${png}\n\nzlib:\n\n${zlib}")
    elseif (part STREQUAL "page-runtime")
        read_text ("${licence_texts}/musl.txt" text)
        set (heading "musl, which has the mathematics of the page larkspire.html: MIT")
    else ()
        message (FATAL_ERROR "  no licence is known of '${part}'")
    endif ()

    set (heading "${heading}" PARENT_SCOPE)
    set (text "${text}" PARENT_SCOPE)
endfunction ()

# THIRD-PARTY.txt for the archives; what is linked into them is named by the caller.
function (write_third_party)
    set (document "What others wrote and what is in the files of this folder, and on which terms.\n")
    string (REPEAT "=" 100 line)

    foreach (part IN LISTS ARGN)
        licence_of (${part})
        string (STRIP "${text}" text)
        string (APPEND document "\n\n${line}\n${heading}\n${line}\n\n${text}\n")
    endforeach ()

    if (LARKSPIRE_WINDOWS_DEPS)
        string (REPLACE "\n" "\r\n" document "${document}")
    endif ()

    file (WRITE "${DOCUMENTS}/THIRD-PARTY.txt" "${document}")
endfunction ()
