# cmake -DTOOLS=folder -DROOM=name -DBELOW=rooms,with,commas -P CheckIncludes.cmake: fails where a file of the room
# includes a header of a room that it does not stand on.
cmake_minimum_required (VERSION 3.25)

string (REPLACE "," ";" below "${BELOW}")
file (GLOB rooms RELATIVE "${TOOLS}" "${TOOLS}/*")
file (GLOB files RELATIVE "${TOOLS}" "${TOOLS}/${ROOM}/*.h" "${TOOLS}/${ROOM}/*.cpp")

foreach (file IN LISTS files)
    file (STRINGS "${TOOLS}/${file}" includes REGEX "^#include \"[a-z]+/")

    foreach (include IN LISTS includes)
        string (REGEX REPLACE "^#include \"([a-z]+)/.*" "\\1" room "${include}")

        if (room IN_LIST rooms AND NOT room IN_LIST below)
            message (FATAL_ERROR "tools/${file}: ${include}: the room ${ROOM} does not stand on ${room}; see tools/CMakeLists.txt")
        endif ()
    endforeach ()
endforeach ()
