# SPDX-License-Identifier: MIT

# As a new user would: installs BUILD into an empty prefix, moves the prefix, builds the clients and the
# examples against it, and runs them, but for the tests that match LEFT_OUT.

set(moved ${SCRATCH}/moved)
if(LEFT_OUT)
  set(chosen -E ${LEFT_OUT})
endif()

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/prefix)
file(RENAME ${SCRATCH}/prefix ${moved})

file(GLOB_RECURSE pc_files ${moved}/*/tarntnla.pc)
get_filename_component(pc_folder "${pc_files}" DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc_folder})

foreach(client tests/client examples)
  run(${CMAKE_COMMAND} -S ${SOURCE}/${client} -B ${SCRATCH}/${client} -G Ninja
      -DCMAKE_PREFIX_PATH=${moved} -DCMAKE_CXX_COMPILER=${CXX}
      -DCMAKE_REQUIRE_FIND_PACKAGE_Eigen3=ON)  # which an example leaves out otherwise
  run(${CMAKE_COMMAND} --build ${SCRATCH}/${client})
  run(${CMAKE_CTEST_COMMAND} --test-dir ${SCRATCH}/${client} --output-on-failure --no-tests=error ${chosen})
endforeach()
