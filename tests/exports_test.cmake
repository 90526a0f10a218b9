# The modules show their public interface and nothing else.

function(exported_names module result)
  execute_process(COMMAND ${NM} -DC --defined-only ${module} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE "\n$" "" output "${output}")
  string(REPLACE "\n" ";" lines "${output}")
  list(TRANSFORM lines REPLACE "^[0-9a-f]+ [A-Za-z] " "")
  set(${result} "${lines}" PARENT_SCOPE)
endfunction()

# What an exported name may begin with, after the return type of a function template.
set(tn "(vtable for |typeinfo for |typeinfo name for )?Tn|tn_|tnEndExpr|kit_assertion_handler")
set(tnla "(vtable for |typeinfo for |typeinfo name for )?TnLa|(bool |void )?tnla_|operator\\*\\(double")
set(hidden "TnLaTHFTIDecompo|TnLaRankRevealing|TnLaWorkspace|TnLaScratch|TnLaQrScratch|TnLaAccess|TnLaDebugLayout|TnLaBand|TnLaExceptional|TnLaColumnReflection|tnla_kernels|tnla_solve_|tnla_element_or_null|tnla_sq_length|TnLaQrSystem|tnla_qr_|tnla_has_full_rank|::TnLaTQRDecompo\\(\\)|TnLaHouseholder\\(int, int, int, double const|TnLaCholesky::(factorize|substitute|solve_without_factor|init)")

exported_names(${TN} tn_names)
exported_names(${TNLA} tnla_names)
foreach(name IN LISTS tn_names)
  if(NOT name MATCHES "^(${tn})")
    message(SEND_ERROR "TARNtn shows ${name}")
  endif()
endforeach()
foreach(name IN LISTS tnla_names)
  if(NOT name MATCHES "^(${tnla})" OR name MATCHES "${hidden}")
    message(SEND_ERROR "TARNtnla shows ${name}")
  endif()
endforeach()

# Every instance of every template is there.
foreach(n RANGE 1 12)
  set(mat "TnLaTSmallMat<${n}ul, ${n}ul, double>")
  foreach(name "${mat}::sq_norm\\(\\) const" "TnLaTSmallVec<${n}, double>::ort\\(\\) const"
               "TnLaTQRDecompo<${mat} >::solve" "bool tnla_linearsolve<${mat} >" "void tnla_linearsolve<${mat} >")
    if(NOT "${tnla_names}" MATCHES "(^|;)${name}")
      message(SEND_ERROR "TARNtnla does not show ${name}")
    endif()
  endforeach()
endforeach()

# What no client of ours needs: the table and the type of the classes that one may derive from.
foreach(class TnLaBlkBndSolver TnLaCholesky TnLaHouseholder)
  foreach(name "vtable for ${class}" "typeinfo for ${class}" "typeinfo name for ${class}")
    if(NOT "${tnla_names}" MATCHES "(^|;)${name}(;|$)")
      message(SEND_ERROR "TARNtnla does not show ${name}")
    endif()
  endforeach()
endforeach()
