# SPDX-License-Identifier: MIT

# A kernel set defines nothing outside its namespace.  An inline function of another one, compiled for a newer
# processor, could become the copy that the linker keeps for the whole module.  On Windows there are addresses of
# functions beside them, .refptr.<name>.

foreach(object IN LISTS OBJECTS)
  execute_process(COMMAND ${NM} -C --defined-only ${object} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[0-9a-f]+ [TWVuBDR] [^\n]+" lines "${output}")
  foreach(line IN LISTS lines)
    if(NOT line MATCHES "tnla_kernels::${SET}::|R [.]refptr[.]")
      message(SEND_ERROR "${object} defines ${line}")
    endif()
  endforeach()
endforeach()
