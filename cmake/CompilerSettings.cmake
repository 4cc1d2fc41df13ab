# What all code of the project is compiled with: norv_compile_settings(target), and norv_test_settings(target) for the
# programs that only test.
option(NORV_BATTERY_PRECOMPILE "Compile the headers that most sources include once (needs g++)" OFF)
if(NORV_BATTERY_PRECOMPILE AND NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  message(FATAL_ERROR "NORV_BATTERY_PRECOMPILE needs g++, whose precompiled headers several targets can share; this is "
                      "${CMAKE_CXX_COMPILER_ID}. Configure with -DNORV_BATTERY_PRECOMPILE=OFF.")
endif()

# Files of one target, where CMAKE_UNITY_BUILD joins them: enough to read a header once for many, few enough for two cores.
set(CMAKE_UNITY_BUILD_BATCH_SIZE 10)

set(NORV_WARNINGS
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast -Wcast-qual -Wcast-align
  -Wformat=2 -Wdouble-promotion -Wimplicit-fallthrough -Woverloaded-virtual -Wundef -Wunused
  $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond> $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-branches>
  $<$<CXX_COMPILER_ID:GNU>:-Wlogical-op> $<$<CXX_COMPILER_ID:GNU>:-Wuseless-cast>)

# Warnings that g++ raises about its own optimised standard library, not about this code: -Wnull-dereference in stream
# buffers; in g++ 12 also -Wrestrict in the concatenation of texts and -Wmaybe-uninitialized in std::optional, and
# -Wmismatched-new-delete about a program's own operators new and delete where only one of the two is inlined. clang,
# clang-tidy and valgrind see the real ones.
list(APPEND NORV_WARNINGS $<$<CXX_COMPILER_ID:Clang>:-Wnull-dereference>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  list(APPEND NORV_WARNINGS -Wno-restrict -Wno-maybe-uninitialized -Wno-mismatched-new-delete)
  # From a precompiled header also these, about the same concatenation. The builds without one have them on.
  if(NORV_BATTERY_PRECOMPILE)
    list(APPEND NORV_WARNINGS -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
  endif()
endif()

set(NORV_WARNINGS_AS_ERRORS -Werror)
if(MSVC)
  set(NORV_WARNINGS /W4 /permissive- /utf-8)
  set(NORV_WARNINGS_AS_ERRORS /WX)
endif()

function(norv_compile_settings target)
  target_compile_features(${target} PRIVATE cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  target_compile_options(${target} PRIVATE ${NORV_WARNINGS} $<$<BOOL:${NORV_BATTERY_WERROR}>:${NORV_WARNINGS_AS_ERRORS}>)
  get_target_property(type ${target} TYPE)
  if(NOT type STREQUAL "EXECUTABLE")
    norv_take_precompiled(${target} norv-battery-precompiled)
  endif()
endfunction()

# Tests are not what has to be fast: to leave their own code as it is halves the time that it takes to compile.
function(norv_test_settings target)
  norv_compile_settings(${target})
  set_target_properties(${target} PROPERTIES UNITY_BUILD OFF)  # each test file has helpers of its own, named alike
  if(NOT MSVC)
    target_compile_options(${target} PRIVATE -O0 -U_FORTIFY_SOURCE)
  endif()
  norv_take_precompiled(${target} norv-battery-precompiled-tests)
endfunction()

function(norv_take_precompiled target from)
  if(TARGET ${from} AND NOT target STREQUAL from)
    target_precompile_headers(${target} REUSE_FROM ${from})
  endif()
endfunction()

# What the other targets of its kind take: a library and a program cannot share it, for the compiler makes other code of
# them. HEADER lies in cmake/precompiled.
function(norv_give_precompiled target header)
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/precompiled/empty.cpp)
  target_precompile_headers(${target} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/precompiled/${header})
endfunction()

include(Hardening)

if(NORV_BATTERY_SANITIZE)
  add_compile_options(-fsanitize=${NORV_BATTERY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${NORV_BATTERY_SANITIZE})
endif()

if(NORV_BATTERY_PRECOMPILE)
  add_library(norv-battery-precompiled STATIC EXCLUDE_FROM_ALL)
  norv_compile_settings(norv-battery-precompiled)
  norv_give_precompiled(norv-battery-precompiled standard.h)
endif()
