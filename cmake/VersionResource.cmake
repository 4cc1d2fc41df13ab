# Gives a Windows file a version resource with the project's version: norv_version_resource(TARGET TYPE FILE DESCRIPTION),
# where TYPE is VFT_APP or VFT_DLL.
enable_language(RC)

function(norv_version_resource target type file description)
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${target}-version.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${source} @ONLY)
  target_sources(${target} PRIVATE ${source})
endfunction()
