# SPDX-License-Identifier: MIT

# Configures the project parent/, in the folder SCRATCH, with the library SOURCE as its part, and looks
# whether something of the library's reaches it.  CXX is the compiler, and the list OPTIONS goes to the parent's cmake.
# With PACKED it gets an archive that holds only what a parent needs, and with BUILD it is built, too, and runs.

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
file(MAKE_DIRECTORY ${SCRATCH})
set(library ${SOURCE})
if(PACKED)
  execute_process(COMMAND ${CMAKE_COMMAND} -E tar czf ${SCRATCH}/library.tar.gz CMakeLists.txt cmake core interfaces src
    WORKING_DIRECTORY ${SOURCE} COMMAND_ERROR_IS_FATAL ANY)
  set(library file://${SCRATCH}/library.tar.gz)
endif()
set(build ${SCRATCH}/build)
run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/parent -B ${build} -G Ninja -DLIBRARY=${library}
    -DCMAKE_CXX_COMPILER=${CXX} ${OPTIONS})

# A program that links to the library is compiled as one that does not, but for two folders of headers.
file(READ ${build}/compile_commands.json commands)
string(JSON n LENGTH "${commands}")
math(EXPR last "${n} - 1")
foreach(i RANGE ${last})
  string(JSON command GET "${commands}" ${i} command)
  if(command MATCHES "CMakeFiles/(with|without)\\.dir/")
    set(name ${CMAKE_MATCH_1})
    string(REPLACE "CMakeFiles/${name}.dir" "" command "${command}")
    string(REGEX REPLACE " -isystem [^ ]*/(core|interfaces)" "" ${name} "${command}")
  endif()
endforeach()
if(NOT with OR NOT with STREQUAL without)
  message(FATAL_ERROR "with the library: ${with}\nwithout: ${without}")
endif()

run(${CMAKE_CTEST_COMMAND} --test-dir ${build} --show-only)
if(NOT output MATCHES "Total Tests: 2")
  message(FATAL_ERROR "${output}")
endif()
run(${CMAKE_COMMAND} -DCMAKE_INSTALL_PREFIX=${SCRATCH}/prefix -P ${build}/cmake_install.cmake)
if(EXISTS ${SCRATCH}/prefix)
  message(FATAL_ERROR "the parent installs something of the library's")
endif()

if(BUILD)
  run(${CMAKE_COMMAND} --build ${build} -j2)
  # What -ffast-math links in has the processor flush subnormals to zero as soon as the module is loaded.
  file(GLOB_RECURSE modules ${build}/libTARN*.so)
  list(LENGTH modules n)
  foreach(module IN LISTS modules)
    file(STRINGS ${module} flushes REGEX "set_fast_math")
    if(flushes OR NOT n EQUAL 2)
      message(FATAL_ERROR "${module}, one of ${n}, changes the processor's state when it is loaded")
    endif()
  endforeach()
  run(${CMAKE_CTEST_COMMAND} --test-dir ${build} --output-on-failure --no-tests=error)
  message("${output}")
endif()
