# One interface target carries the language level, the warnings and the sanitizers for every target of the project.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Without this it never finds a unit again that uses a precompiled header.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
endif()

add_library(banddesk_options INTERFACE)
target_include_directories(banddesk_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(banddesk_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Werror)
# g++ 12 warns wrongly of overlapping copies in `"x" + std::string` once it is inlined.
target_compile_options(banddesk_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
# The plug-in and its host each have a copy of the contracts' tables of virtual functions. clang from 17 on takes
# a table for the only one of its class, and then a cast across the line fails.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fno-assume-unique-vtables BANDDESK_HAS_UNIQUE_VTABLES)
if(BANDDESK_HAS_UNIQUE_VTABLES)
  target_compile_options(banddesk_options INTERFACE -fno-assume-unique-vtables)
endif()
# A fault that gets through ends the program instead of doing somebody's will: checked copies, guarded stacks,
# read-only jump tables, addresses that differ from run to run, checked indexes of the standard library. Copies can
# be checked in optimised code alone, which the tests' own sources are not.
include(CheckPIESupported)
check_pie_supported()
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT BANDDESK_SANITIZE)
  target_compile_options(banddesk_options INTERFACE -U_FORTIFY_SOURCE
    $<$<NOT:$<BOOL:$<TARGET_PROPERTY:BANDDESK_IS_TEST>>>:-D_FORTIFY_SOURCE=2> -D_GLIBCXX_ASSERTIONS -fstack-protector-strong
    -fstack-clash-protection)
  target_link_options(banddesk_options INTERFACE -Wl,-z,relro,-z,now)
endif()
if(BANDDESK_SANITIZE)
  target_compile_options(banddesk_options INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  target_link_options(banddesk_options INTERFACE -fsanitize=address,undefined)
endif()
if(BANDDESK_FUZZ)
  # Only readers of text gain by following comparisons; the others are fed with choices. What g++'s library uses
  # itself is deprecated in clang's eyes.
  target_compile_options(banddesk_options INTERFACE -fsanitize=fuzzer-no-link -fno-sanitize=vptr -Wno-deprecated-declarations
    $<$<NOT:$<STREQUAL:$<TARGET_PROPERTY:NAME>,banddesk_import>>:-fno-sanitize-coverage=trace-cmp>)
  target_link_options(banddesk_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# banddesk_room(NAME DIR LIBS...): one static library of all sources in the current folder.
function(banddesk_room name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  if(sources)
    add_library(${name} STATIC ${sources} ${headers})
    target_link_libraries(${name} PUBLIC banddesk_options ${ARGN})
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE banddesk_options ${ARGN})
  endif()
endfunction()
