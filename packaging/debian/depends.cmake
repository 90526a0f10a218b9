# SPDX-License-Identifier: MIT

# What the modules need of Debian's packages, read off them when the packages are made.  CPack would do so, too, but it
# adds scripts that call ldconfig, for which libtarntnla1 has a trigger.
set(scratch ${CPACK_TARNTNLA_MODULES}/shlibdeps)
file(WRITE ${scratch}/debian/control "Source: tarntnla\n\nPackage: libtarntnla1\nArchitecture: any\n")
file(GLOB modules ${CPACK_TARNTNLA_MODULES}/libTARN*.so.1)
execute_process(COMMAND dpkg-shlibdeps -O -xlibtarntnla1 -L${CPACK_TARNTNLA_MODULES}/../shlibs
    -l${CPACK_TARNTNLA_MODULES} ${modules}
  WORKING_DIRECTORY ${scratch} OUTPUT_VARIABLE depends COMMAND_ERROR_IS_FATAL ANY)
if(NOT depends MATCHES "shlibs:Depends=([^\n]+)")
  message(FATAL_ERROR "dpkg-shlibdeps prints ${depends}")
endif()
set(CPACK_DEBIAN_TARNTNLA_RUNTIME_PACKAGE_DEPENDS ${CMAKE_MATCH_1})
