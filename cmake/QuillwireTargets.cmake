# SPDX-License-Identifier: GPL-3.0-or-later
# What every room, program and test of the project has in common.

add_library(quillwire_options INTERFACE)
target_compile_options(quillwire_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                       -Woverloaded-virtual)
if(QUILLWIRE_WERROR)
  target_compile_options(quillwire_options INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Of no use at -O2: this compiler takes the inlined string concatenation of Qt for a write past the end.
  target_compile_options(quillwire_options INTERFACE -Wno-stringop-overflow -Wno-restrict)
endif()
target_compile_definitions(quillwire_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
                           QT_NO_FOREACH QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER)
if(QUILLWIRE_SANITIZE)
  target_compile_options(quillwire_options INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer
                         -fno-sanitize-recover=undefined)
  target_link_options(quillwire_options INTERFACE -fsanitize=address,undefined)
endif()
if(QUILLWIRE_FUZZ)
  target_compile_options(quillwire_options INTERFACE -fsanitize=address,undefined,fuzzer-no-link -fno-omit-frame-pointer)
  target_link_options(quillwire_options INTERFACE -fsanitize=address,undefined)
endif()

# quillwire_room(<target> [MODULE | EXECUTABLE]
#                [SOURCES <.cpp>...] [HEADERS <.h>...] [INTERNAL <.h>...]
#                [PUBLIC <targets>...] [PRIVATE <targets>...] [SEES <targets>...])
#
# Makes a room of the house out of the current folder: a static library, or what the word after its name says; a room
# without SOURCES is an interface library. Files are named one by one, relative to the folder.
#
# The walls. Nobody's include path holds the source tree. A room has an include directory of its own in the build tree,
# <build>/rooms/<target>, with links to its HEADERS under their usual names: controls/Twips.h is
# <build>/rooms/quillwire_controls/controls/Twips.h. That directory goes with the target, so that a header is reached by
# linking its room and in no other way. The folders below a room are rooms of their own and aren't opened by it.
#
#   HEADERS   what other rooms may include
#   INTERNAL  what only the room's own sources include; they are linked in <build>/rooms/<target>.internal
#   PUBLIC    the rooms and libraries that the room's HEADERS include; who links the room reaches them as well
#   PRIVATE   the rooms and libraries that only its sources include; they are linked, and nobody else reaches them
#   SEES      rooms whose headers are included, and of which nothing is linked: interfaces whose objects are handed over
#
# What a room may link is the picture in docs/house.md; tests/walls holds it there.
function(quillwire_room target)
  cmake_parse_arguments(PARSE_ARGV 1 room "MODULE;EXECUTABLE" "" "SOURCES;HEADERS;INTERNAL;PUBLIC;PRIVATE;SEES")
  if(room_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "quillwire_room(${target}): what is ${room_UNPARSED_ARGUMENTS}?")
  endif()

  set(files ${room_SOURCES} ${room_HEADERS} ${room_INTERNAL})
  if(room_EXECUTABLE)
    add_executable(${target} ${files})
  elseif(room_MODULE)
    add_library(${target} MODULE ${files})
  elseif(room_SOURCES)
    add_library(${target} ${files}) # static, but where BUILD_SHARED_LIBS says otherwise
  else()
    add_library(${target} INTERFACE)
  endif()

  quillwire_link_headers(${target} ${room_HEADERS})
  quillwire_link_headers(${target}.internal ${room_INTERNAL})
  set(headers ${CMAKE_BINARY_DIR}/rooms/${target})
  if(room_SOURCES)
    target_include_directories(${target} PUBLIC ${headers})
    if(room_INTERNAL)
      target_include_directories(${target} PRIVATE ${headers}.internal)
    endif()
    target_link_libraries(${target} PUBLIC ${room_PUBLIC} PRIVATE quillwire_options ${room_PRIVATE})
    foreach(seen IN LISTS room_SEES)
      target_include_directories(${target} PRIVATE $<TARGET_PROPERTY:${seen},INTERFACE_INCLUDE_DIRECTORIES>)
    endforeach()
  else()
    target_include_directories(${target} INTERFACE ${headers})
    target_link_libraries(${target} INTERFACE ${room_PUBLIC})
  endif()
endfunction()

# The directory <build>/rooms/<name>, with links to the headers named, and to nothing else.
function(quillwire_link_headers name)
  file(RELATIVE_PATH path ${CMAKE_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  set(directory ${CMAKE_BINARY_DIR}/rooms/${name})
  file(REMOVE_RECURSE ${directory})
  foreach(header IN LISTS ARGN)
    if(NOT EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${header})
      message(FATAL_ERROR "${path} has no header ${header}")
    endif()
    file(MAKE_DIRECTORY ${directory}/${path})
    file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${header} ${directory}/${path}/${header} SYMBOLIC)
  endforeach()
endfunction()
