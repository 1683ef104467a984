# A room of tools/ is a folder, and one static library of what is in it. It may include its own headers and those of the
# rooms it stands on; any other arrow between rooms does not build.
#
#   larkspire_room (NAME SOURCES files... [ON rooms...])
function (larkspire_room name)
    cmake_parse_arguments (PARSE_ARGV 1 room "" "" "SOURCES;ON")
    list (TRANSFORM room_SOURCES PREPEND "${name}/")
    add_library (larkspire-room-${name} STATIC ${room_SOURCES})
    larkspire_own_sources (larkspire-room-${name})
    target_include_directories (larkspire-room-${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")

    set (below ${name})

    foreach (other IN LISTS room_ON)
        target_link_libraries (larkspire-room-${name} PUBLIC larkspire-room-${other})
        get_target_property (below_other larkspire-room-${other} LARKSPIRE_ROOMS)
        list (APPEND below ${below_other})
    endforeach ()

    list (REMOVE_DUPLICATES below)
    set_target_properties (larkspire-room-${name} PROPERTIES LARKSPIRE_ROOMS "${below}")

    file (GLOB files CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.h" "${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp")
    set (stamp "${CMAKE_CURRENT_BINARY_DIR}/${name}.includes")
    string (REPLACE ";" "," below "${below}")
    add_custom_command (
        OUTPUT "${stamp}"
        COMMAND ${CMAKE_COMMAND} -DTOOLS=${CMAKE_CURRENT_SOURCE_DIR} -DROOM=${name} -DBELOW=${below}
            -P "${PROJECT_SOURCE_DIR}/cmake/CheckIncludes.cmake"
        COMMAND ${CMAKE_COMMAND} -E touch "${stamp}"
        DEPENDS ${files} "${PROJECT_SOURCE_DIR}/cmake/CheckIncludes.cmake"
        COMMENT "Reading the includes of tools/${name}"
        VERBATIM)
    add_custom_target (larkspire-room-${name}-includes DEPENDS "${stamp}")
    add_dependencies (larkspire-room-${name} larkspire-room-${name}-includes)
endfunction ()
