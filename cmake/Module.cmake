# tarn_module(<name> <header folder> <sources...>): the shared module libTARN<name>, known to CMake as
# TARN::<name> inside the project and to its clients alike.
function(tarn_module name header_dir)
  add_library(${name} SHARED ${ARGN})
  add_library(TARN::${name} ALIAS ${name})
  tarn_compiles_as_we_do(${name})
  tarn_named_as_module(${name} ${name})
  set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} DEFINE_SYMBOL TARN_${name}_EXPORTS)
  target_compile_features(${name} INTERFACE cxx_std_17)
  target_include_directories(${name}
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/${header_dir}>
           $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tarntnla>
    PRIVATE ${PROJECT_SOURCE_DIR}/src)
  if(WIN32)
    return()
  endif()
  # Everything is bound when the module is loaded, and what holds addresses is read-only from then on; a stack
  # that can be executed, or code that the loader would have to patch, is an error.
  target_link_options(${name} PRIVATE LINKER:-z,relro,-z,now LINKER:-z,noexecstack LINKER:-z,text)
  if(NOT TARN_SANITIZED)  # a sanitizer's runtime is found by the program, not by the module
    target_link_options(${name} PRIVATE LINKER:--no-undefined)
  endif()
endfunction()

# The file of the target has the name of the module, with the major version in it: libTARNtnla.so.1, libTARNtnla-1.dll.
function(tarn_named_as_module target module)
  set_target_properties(${target} PROPERTIES OUTPUT_NAME TARN${module} SOVERSION ${PROJECT_VERSION_MAJOR})
  if(WIN32)
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_NAME TARN${module}-${PROJECT_VERSION_MAJOR})
  endif()
endfunction()

# How all that goes into a module is compiled.
function(tarn_compiles_as_we_do target)
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_STANDARD 20
    CXX_STANDARD_REQUIRED ON
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  tarn_warnings(${target})
  tarn_floating_point(${target})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fno-gnu-unique)  # a unique symbol would keep dlclose from unloading
  endif()
endfunction()

# Warnings are errors for us (in the presets), never for a parent project.
function(tarn_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
endfunction()
