# The warnings and definitions that all of our code is built with, and the one way to make a room.

add_library(ka_build INTERFACE)
target_include_directories(ka_build INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_definitions(ka_build INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_KEYWORDS QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_compile_options(ka_build INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
  -Wold-style-cast -Wcast-qual -Wformat=2 -Wimplicit-fallthrough -Wextra-semi -Wmissing-declarations
  -Wsuggest-override $<$<BOOL:${KA_WERROR}>:-Werror>
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>)

# KA_ROOMS: the rooms, bottom to top. KA_MAY_USE_room: what each may use.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/rooms.txt")
file(STRINGS "${PROJECT_SOURCE_DIR}/cmake/rooms.txt" ka_lines REGEX "^[^#]")
foreach(line IN LISTS ka_lines)
  string(REGEX REPLACE " +" ";" words "${line}")
  list(POP_FRONT words room)
  if(NOT room STREQUAL "values")
    list(APPEND KA_ROOMS ${room})
    set(KA_MAY_USE_${room} ${words})
  endif()
endforeach()

# ka_room(NAME SOURCES files... [USES libraries...] [PRIVATE_USES libraries...]): the library ka_NAME of the room in
# this folder, linked with the rooms that it may use. USES are public: what a room's headers show, its users see.
function(ka_room name)
  cmake_parse_arguments(PARSE_ARGV 1 room "" "" "SOURCES;USES;PRIVATE_USES")
  set(below ${KA_MAY_USE_${name}})
  list(FILTER below EXCLUDE REGEX ":values$")
  list(TRANSFORM below PREPEND ka_)
  add_library(ka_${name} STATIC ${room_SOURCES})
  target_link_libraries(ka_${name} PUBLIC ${below} ${room_USES} PRIVATE ka_build ${room_PRIVATE_USES})
  set_target_properties(ka_${name} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
endfunction()
