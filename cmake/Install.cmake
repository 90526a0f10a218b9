# SPDX-License-Identifier: MIT

# What an install holds: the two modules, the headers in include/tarntnla, a CMake package and two
# pkg-config files.  All of it can be moved to another prefix.  There are two components: tarntnla_runtime, what a
# program needs to run, and tarntnla_dev, what it needs to be built, which is all that says nothing else.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME tarntnla_dev)
set(_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TARNtnla)

# A module has no path to look for the other one: the loader finds both where it finds the program's libraries.
# So a program has to name both, also where its linker leaves out what it sees no use of.
if(NOT WIN32)
  target_link_options(tarntnla INTERFACE
    $<INSTALL_INTERFACE:LINKER:--push-state,--no-as-needed,$<TARGET_FILE:TARN::tn>,--pop-state>)
endif()

foreach(_module tarntn tarntnla)
  target_include_directories(${_module} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tarntnla>)
endforeach()
install(TARGETS tarntn tarntnla EXPORT TARNtnlaTargets
  RUNTIME COMPONENT tarntnla_runtime LIBRARY COMPONENT tarntnla_runtime NAMELINK_COMPONENT tarntnla_dev)
install(FILES ${TN_HEADERS} ${TNLA_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarntnla)
install(EXPORT TARNtnlaTargets NAMESPACE TARN:: DESTINATION ${_cmake_dir})

configure_package_config_file(cmake/TARNtnlaConfig.cmake.in TARNtnlaConfig.cmake
  INSTALL_DESTINATION ${_cmake_dir})
write_basic_package_version_file(TARNtnlaConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TARNtnlaConfig.cmake ${PROJECT_BINARY_DIR}/TARNtnlaConfigVersion.cmake
  DESTINATION ${_cmake_dir})

# A .pc file finds the folders relative to itself, so that the prefix can be moved; folders that were given
# as absolute paths stay where they are.
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(_pc_prefix ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH _pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" _pc_prefix "${_pc_prefix}")
  string(PREPEND _pc_prefix "\${pcfiledir}/")
endif()
foreach(_dir LIBDIR INCLUDEDIR)
  set(_pc_${_dir} ${CMAKE_INSTALL_${_dir}})
  if(NOT IS_ABSOLUTE ${_pc_${_dir}})
    string(PREPEND _pc_${_dir} "\${prefix}/")
  endif()
endforeach()
foreach(_module tn tnla)
  configure_file(cmake/tarn${_module}.pc.in tarn${_module}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/tarn${_module}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# How gdb shows our types.  It looks for the script beside the module; and for a module below /usr, where a script
# beside it would be neither trusted nor welcome, at the same path below its own folder.
if(WIN32)
  set(_gdb_dir ${CMAKE_INSTALL_BINDIR})
elseif(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(_gdb_dir ${CMAKE_INSTALL_DATADIR}/gdb/auto-load${CMAKE_INSTALL_FULL_LIBDIR})
else()
  set(_gdb_dir ${CMAKE_INSTALL_LIBDIR})
endif()
set(TARNTNLA_GDB_DIR ${_gdb_dir} CACHE STRING "Where the script for gdb is installed")
install(FILES gdb/printers.py DESTINATION ${TARNTNLA_GDB_DIR} RENAME $<TARGET_FILE_NAME:TARN::tnla>-gdb.py)
