# What every target of this project has in common.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

# Windows 10 and later; nothing of the compiler's own is needed where the component goes.
if(WIN32)
  add_compile_definitions(_WIN32_WINNT=0x0A00 WIN32_LEAN_AND_MEAN NOMINMAX UNICODE)
  add_link_options(-static)
endif()

set(warnings -Wall -Wextra -Wpedantic -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
  $<$<BOOL:${QUORVEL_WARNINGS_AS_ERRORS}>:-Werror>
  # GCC 12 takes text + std::string for overlapping memory when it optimises.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE ${warnings} -Wshadow)
# Tests have helpers and fixtures in unnamed namespaces, which other files see where they are compiled together.
add_library(test_warnings INTERFACE)
target_compile_options(test_warnings INTERFACE ${warnings}
  $<IF:$<BOOL:${CMAKE_UNITY_BUILD}>,-Wno-subobject-linkage,-Wshadow>)

# Where files are compiled together, the compiler reads once what nearly all of them include: of the standard library
# everywhere, and of the libraries that take seconds to read where they are used.
# Programs are then compiled as libraries are, and everything as what has threads, since all of them read the same.
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(CMAKE_CXX_COMPILE_OPTIONS_PIE -fPIC)
  add_compile_options(-pthread)
endif()
# add_common_headers(NAME HEADERS...)
function(add_common_headers name)
  if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    file(WRITE ${CMAKE_BINARY_DIR}/${name}.cpp "")
    add_library(${name} OBJECT ${CMAKE_BINARY_DIR}/${name}.cpp)
    target_link_libraries(${name} PRIVATE project_warnings)
    target_precompile_headers(${name} PRIVATE <algorithm> <array> <atomic> <chrono> <exception> <filesystem> <fstream>
      <functional> <iostream> <map> <memory> <mutex> <optional> <span> <string> <thread> <unordered_map> <vector> ${ARGN})
  endif()
endfunction()
add_common_headers(common_headers)
# use_common_headers(TARGET [NAME])
function(use_common_headers target)
  list(APPEND ARGN common_headers)
  list(GET ARGN 0 name)
  if(TARGET ${name})
    target_precompile_headers(${target} REUSE_FROM ${name})
  endif()
endfunction()

# Adds a static library made of every source of one folder.
function(add_folder_library name folder)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
  if(sources)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PRIVATE project_warnings ${ARGN})
    target_link_libraries(${name} PUBLIC ostrevan_sdk)
    use_common_headers(${name})
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${CMAKE_SOURCE_DIR})
  endif()
endfunction()

# What waits for a person, for another process or for a bus is optimised a little only: that takes a third less time to
# compile, and nobody could tell.
function(optimise_little)
  foreach(target IN LISTS ARGN)
    target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O1>)
  endforeach()
endfunction()
