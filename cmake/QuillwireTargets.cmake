# What every library, program and test of the project has in common.

add_library(quillwire_options INTERFACE)
target_compile_options(quillwire_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                       -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Of no use at -O2: this compiler takes the inlined string concatenation of Qt for a write past the end.
  target_compile_options(quillwire_options INTERFACE -Wno-stringop-overflow -Wno-restrict)
endif()
target_compile_definitions(quillwire_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
                           QT_NO_FOREACH QT_NO_KEYWORDS QT_USE_QSTRINGBUILDER)
target_include_directories(quillwire_options INTERFACE ${CMAKE_SOURCE_DIR})
if(QUILLWIRE_SANITIZE)
  target_compile_options(quillwire_options INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer
                         -fno-sanitize-recover=undefined)
  target_link_options(quillwire_options INTERFACE -fsanitize=address,undefined)
endif()
if(QUILLWIRE_FUZZ)
  target_compile_options(quillwire_options INTERFACE -fsanitize=address,undefined,fuzzer-no-link -fno-omit-frame-pointer)
  target_link_options(quillwire_options INTERFACE -fsanitize=address,undefined)
endif()

# quillwire_library(<name> <linked libraries...>): a static library of the sources of this folder (not of those below).
function(quillwire_library name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  if(NOT sources MATCHES "\\.cpp")
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE quillwire_options ${ARGN})
    return()
  endif()
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PUBLIC quillwire_options ${ARGN})
endfunction()
