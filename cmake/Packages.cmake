# What the packages hold, one install component a package: debian, portable (other Linux systems) and windows. Nothing of
# it is installed by a plain cmake --install; scripts/packaging/package makes the packages.
set (LARKSPIRE_MAINTAINER "Quendal <maintainers@quendal.invalid>" CACHE STRING
    "Who answers for the Debian package, as name and address; the given one has no mail box")
set (documents "${CMAKE_BINARY_DIR}/packaging")

# Documents carry the release's number and date and the licences of what was linked, so they are written anew each time.
add_custom_target (larkspire-documents
    COMMAND ${CMAKE_COMMAND}
        "-DDOCUMENTS=${documents}"
        "-DLARKSPIRE_JUCE=${LARKSPIRE_JUCE}"
        "-DLARKSPIRE_MAINTAINER=${LARKSPIRE_MAINTAINER}"
        "-DLARKSPIRE_WINDOWS_DEPS=${LARKSPIRE_WINDOWS_DEPS}"
        "$<$<NOT:$<BOOL:${WIN32}>>:-DRENDERER=$<TARGET_FILE:larkspire-render>>"
        "$<$<NOT:$<BOOL:${WIN32}>>:-DMICROPHONE=${LARKSPIRE_DIST}/larkspire-microphone>"
        -P "${CMAKE_SOURCE_DIR}/packaging/WriteDocuments.cmake"
    COMMENT "Writing the documents of the packages"
    COMMAND_EXPAND_LISTS
    VERBATIM)

function (larkspire_package component folder)
    install (FILES ${ARGN} DESTINATION "${folder}" COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction ()

# The VST 3 bundle: its library below a folder named after the system, and its description.
function (larkspire_package_bundle component folder system)
    set (contents "${folder}/Quendal Larkspire.vst3/Contents")
    larkspire_package (${component} "${contents}/${system}" "$<TARGET_FILE:Larkspire_VST3>")
    larkspire_package (${component} "${contents}/Resources" "${LARKSPIRE_VST3_BUNDLE}/Contents/Resources/moduleinfo.json")
endfunction ()

# The libraries are no programs and need no mode of one.
if (WIN32)
    larkspire_package (windows .
        "$<TARGET_FILE:Larkspire_VST>"
        "${LARKSPIRE_PAGE}"
        "${documents}/INSTALL.txt"
        "${documents}/LICENSE.txt"
        "${documents}/THIRD-PARTY.txt")
    larkspire_package_bundle (windows . x86_64-win)
    return ()
endif ()

function (larkspire_package_lv2 component folder)
    set (bundle "${LARKSPIRE_DIST}/larkspire.lv2")
    larkspire_package (${component} "${folder}/larkspire.lv2"
        "$<TARGET_FILE:larkspire-lv2>" "${bundle}/manifest.ttl" "${bundle}/larkspire.ttl")
endfunction ()

function (larkspire_package_programs component folder)
    install (TARGETS larkspire-render DESTINATION "${folder}" COMPONENT ${component} EXCLUDE_FROM_ALL)
    install (PROGRAMS "${LARKSPIRE_DIST}/larkspire-microphone" DESTINATION "${folder}" COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction ()

larkspire_package (portable .
    "$<TARGET_FILE:Larkspire_VST>"
    "${LARKSPIRE_PAGE}"
    "${documents}/larkspire-microphone.1"
    "${documents}/larkspire-render.1"
    "${documents}/INSTALL.txt"
    "${documents}/THIRD-PARTY.txt"
    "${CMAKE_SOURCE_DIR}/LICENSE")
larkspire_package_bundle (portable . x86_64-linux)
larkspire_package_lv2 (portable .)
larkspire_package_programs (portable .)

larkspire_package (debian lib/vst "$<TARGET_FILE:Larkspire_VST>")
larkspire_package_bundle (debian lib/vst3 x86_64-linux)
larkspire_package_lv2 (debian lib/lv2)
larkspire_package_programs (debian bin)
larkspire_package (debian share/doc/quendal-larkspire
    "${documents}/changelog.gz" "${documents}/copyright" "${LARKSPIRE_PAGE}")
larkspire_package (debian share/man/man1 "${documents}/larkspire-microphone.1.gz" "${documents}/larkspire-render.1.gz")
larkspire_package (debian share/metainfo "${documents}/com.quendal.larkspire.metainfo.xml")
