# With which build type the library alone is configured, from SOURCE by GENERATOR, below WORK.
set(library_alone -DNORV_BATTERY_BUILD_SIMULATOR=OFF -DNORV_BATTERY_BUILD_TOOL=OFF -DNORV_BATTERY_BUILD_TESTS=OFF)

# expect(CASE TYPE PROJECT [OPTION ...]): what the cache of a fresh build of PROJECT says.
function(expect case expected project)
  set(build ${WORK}/${case})
  file(REMOVE_RECURSE ${build})
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env --unset=CMAKE_BUILD_TYPE
            ${CMAKE_COMMAND} -G "${GENERATOR}" -S ${project} -B ${build} ${library_alone} ${ARGN}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(STRINGS ${build}/CMakeCache.txt line REGEX "^CMAKE_BUILD_TYPE:")
  if(NOT line MATCHES "=${expected}$")
    message(SEND_ERROR "${case}: expected the build type '${expected}', got ${line}")
  endif()
endfunction()

expect(not-named Release ${SOURCE})
expect(named-none None ${SOURCE} -DCMAKE_BUILD_TYPE=None)

# A project that takes the library in decides for itself.
file(WRITE ${WORK}/host/CMakeLists.txt "cmake_minimum_required(VERSION 3.25)
project(host LANGUAGES CXX)
add_subdirectory(${SOURCE} library)
")
expect(taken-in "" ${WORK}/host)
