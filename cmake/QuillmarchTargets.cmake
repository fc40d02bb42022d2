# What every target of ours shares: warnings, sanitizers, the choice of sources by platform.

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

add_library(quillmarch_options INTERFACE)
target_compile_options(quillmarch_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 sees overlapping copies in "x" + std::string at -O3 where there are none.
  target_compile_options(quillmarch_options INTERFACE -Wno-restrict)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # Its -Wconversion also asks for what GCC calls -Wsign-conversion.
  target_compile_options(quillmarch_options INTERFACE -Wno-sign-conversion)
  target_link_options(quillmarch_options INTERFACE -fuse-ld=lld)
endif()
if(QUILLMARCH_SANITIZE)
  target_compile_options(quillmarch_options INTERFACE
    -fsanitize=${QUILLMARCH_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(quillmarch_options INTERFACE -fsanitize=${QUILLMARCH_SANITIZE})
endif()
if(WIN32)
  target_compile_definitions(quillmarch_options INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
endif()

# The sources of this folder, and of its sub-folders named after `out`, that this platform builds:
# X.cpp always, X_win.cpp or X_posix.cpp by platform.
function(quillmarch_sources out)
  set(patterns ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  foreach(folder IN LISTS ARGN)
    list(APPEND patterns ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
  endforeach()
  file(GLOB found CONFIGURE_DEPENDS ${patterns})
  if(WIN32)
    list(FILTER found EXCLUDE REGEX "_posix\\.cpp$")
  else()
    list(FILTER found EXCLUDE REGEX "_win\\.cpp$")
  endif()
  set(${out} ${found} PARENT_SCOPE)
endfunction()

# One room of the house: a static library of the folder's sources and those of the named sub-folders.
#   quillmarch_room(NAME LINK lib... [FOLDERS folder...])
function(quillmarch_room name)
  cmake_parse_arguments(ROOM "" "" "LINK;FOLDERS" ${ARGN})
  quillmarch_sources(sources ${ROOM_FOLDERS})
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PUBLIC ${ROOM_LINK} PRIVATE quillmarch_options)
endfunction()

# One test program of the folder's sources, one entry in ctest. OWN_HOME keeps what it writes for a
# user in a folder of its own; under Wine the prefix does.
#   quillmarch_test(NAME LINK lib... [FOLDERS folder...] [OWN_HOME] [LABELS label...]
#                   [TIMEOUT seconds])
function(quillmarch_test name)
  cmake_parse_arguments(T "OWN_HOME" "TIMEOUT" "LINK;FOLDERS;LABELS" ${ARGN})
  quillmarch_sources(sources ${T_FOLDERS})
  if(T_OWN_HOME AND NOT WIN32)
    list(APPEND sources ${CMAKE_SOURCE_DIR}/tests/support/home/TestHome.cpp)
  endif()
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE ${T_LINK} quillmarch_test_support quillmarch_options)
  add_test(NAME ${name} COMMAND ${name})
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 180)
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT ${T_TIMEOUT} LABELS "${T_LABELS}")
  quillmarch_alone_under_wine(${name})
endfunction()

# Programs under one Wine prefix share a user's configuration and log, and Wine appends to a file in
# two steps, so that two at once lose each other's lines.
function(quillmarch_alone_under_wine test)
  if(WIN32)
    set_tests_properties(${test} PROPERTIES RESOURCE_LOCK wine_prefix)
  endif()
endfunction()
