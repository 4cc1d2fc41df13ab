# plog, the header-only logging library. `./dev setup` puts it into .deps where the system does not carry it.
list(APPEND CMAKE_PREFIX_PATH ${PROJECT_SOURCE_DIR}/.deps/usr)
find_package(plog CONFIG QUIET)
if(NOT plog_FOUND AND NORV_BATTERY_FETCH_PLOG)
  include(FetchContent)
  FetchContent_Declare(plog GIT_REPOSITORY https://github.com/SergiusTheBest/plog.git GIT_TAG 1.1.10)
  FetchContent_MakeAvailable(plog)
elseif(NOT plog_FOUND)
  message(FATAL_ERROR "plog was not found: run './dev setup', or install it and name its prefix in CMAKE_PREFIX_PATH, "
                      "or configure with -DNORV_BATTERY_FETCH_PLOG=ON to download it.")
endif()
