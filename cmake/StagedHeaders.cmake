# Libraries that are nothing but headers, for a build that is for another system: norv_staged_headers(TARGET FOLDER
# MARKER). The folder FOLDER with the file MARKER in it is looked for among this system's headers, and a folder that
# holds a link to it, and nothing else of this system's, becomes the include folder of the imported target.
function(norv_staged_headers target folder marker)
  find_path(NORV_STAGED_${folder} ${folder}/${marker}
            PATHS ${PROJECT_SOURCE_DIR}/.deps/usr/include /usr/local/include /usr/include
            NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT NORV_STAGED_${folder})
    return()
  endif()
  set(staged ${PROJECT_BINARY_DIR}/staged-headers/${folder})
  file(MAKE_DIRECTORY ${staged})
  file(CREATE_LINK ${NORV_STAGED_${folder}}/${folder} ${staged}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${staged})
endfunction()
