# What all code of the project is compiled with: norv_compile_settings(target).

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
endfunction()

include(Hardening)

if(NORV_BATTERY_SANITIZE)
  add_compile_options(-fsanitize=${NORV_BATTERY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${NORV_BATTERY_SANITIZE})
endif()
