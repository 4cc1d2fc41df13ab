# norv_c_exports(HEADER LIBRARY OUTPUT): writes a module-definition file that names the functions of the C header and the
# DLL that has them. A compiler that is not the DLL's own makes its import library from that.
function(norv_c_exports header library output)
  file(READ ${header} text)
  # A function's name has its arguments directly behind it; a callback type's does not.
  string(REGEX MATCHALL "norv_battery_[a-z_]+\\(" names "${text}")
  list(TRANSFORM names REPLACE "\\(" "")
  list(REMOVE_DUPLICATES names)
  list(SORT names)
  list(JOIN names "\n  " names)
  file(CONFIGURE OUTPUT ${output} CONTENT "LIBRARY ${library}\nEXPORTS\n  ${names}\n" @ONLY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
endfunction()
