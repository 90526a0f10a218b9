# SPDX-License-Identifier: MIT

# How the tests are built and run for Windows, by mingw-w64 and Wine (./dev windows).
if(NOT WIN32)
  return()
endif()

# The compiler's own DLLs, which a program needs beside the modules.
foreach(dll libstdc++-6 libgcc_s_seh-1 libwinpthread-1)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}.dll
    OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
  file(COPY ${file} DESTINATION ${CMAKE_BINARY_DIR}/runtime FOLLOW_SYMLINK_CHAIN)
endforeach()

# The environment in which a program finds the file of the target `module`, and what else it needs.
function(tarn_wine_path variable module)
  set(${variable} "WINEPATH=Z:$<TARGET_FILE_DIR:${module}>\\;Z:$<TARGET_FILE_DIR:TARN::tn>\\;Z:${CMAKE_BINARY_DIR}/runtime"
    PARENT_SCOPE)
endfunction()

# tarn_builds_for_wine(<folder> <tests...>): what they build is built with the same toolchain, and finds the modules in
# the folder.  Of the clients' tests those are left out that start a program without Wine.
set(TARN_LEFT_OUT bad_input)
function(tarn_builds_for_wine bin)
  set_tests_properties(${ARGN} PROPERTIES ENVIRONMENT
    "CMAKE_TOOLCHAIN_FILE=${PROJECT_SOURCE_DIR}/cmake/mingw-w64.cmake;WINEPATH=Z:${bin}\\;Z:${CMAKE_BINARY_DIR}/runtime")
endfunction()

# GoogleTest from its sources, as nobody packages it for mingw-w64.
macro(tarn_builds_googletest)
  set(INSTALL_GTEST OFF)
  set(BUILD_GMOCK OFF)
  set(_warning_as_error ${CMAKE_COMPILE_WARNING_AS_ERROR})
  set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  set(CMAKE_COMPILE_WARNING_AS_ERROR ${_warning_as_error})
endmacro()
