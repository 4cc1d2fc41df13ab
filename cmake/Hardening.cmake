# Flags that make a mistake in this code, or in a host's, harder to use against the host. tests/hardening/check_flags.sh
# looks for them in what was built.
include(CheckPIESupported)
if(MSVC)
  return()  # has its own as defaults
endif()

add_compile_options(-fstack-protector-strong)
# The checked functions of the C library need an optimised build; a sanitizer checks more than they do.
if(NOT NORV_BATTERY_SANITIZE)
  add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()

if(WIN32)
  # The first one brings in the library that the guarded functions call.
  add_link_options(-fstack-protector-strong LINKER:--dynamicbase,--nxcompat,--high-entropy-va)
elseif(NOT APPLE)
  add_link_options(LINKER:-z,relro,-z,now,-z,noexecstack)
  # Only with this does CMake link programs, and not just compile them, so that they may be loaded anywhere.
  check_pie_supported(LANGUAGES CXX)
endif()
