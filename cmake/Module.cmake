# SPDX-License-Identifier: MIT

# A parent project gets the targets TARN::tn and TARN::tnla, and nothing else that it did not ask for: all other
# targets begin with tarntn and all commands with tarn_, the flags are ours alone, and whatever it sets for its own
# targets is set anew for ours.

# tarn_module(<name> <header folder> <sources...>): the shared module libTARN<name>, known to CMake as
# TARN::<name> inside the project and to its clients alike.
function(tarn_module name header_dir)
  set(target tarn${name})
  add_library(${target} SHARED ${ARGN})
  add_library(TARN::${name} ALIAS ${target})
  tarn_compiles_as_we_do(${target})
  tarn_named_as_module(${target} ${name})
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${name}
    VERSION ${PROJECT_VERSION}
    DEFINE_SYMBOL TARN_${name}_EXPORTS)
  target_compile_features(${target} INTERFACE cxx_std_17)
  target_include_directories(${target}
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/${header_dir}>
    PRIVATE ${PROJECT_SOURCE_DIR}/src)
  if(NOT PROJECT_IS_TOP_LEVEL)  # a parent's warnings skip our headers, as those of an installed package
    set_target_properties(${target} PROPERTIES SYSTEM ON)
  endif()
  tarn_links_as_we_do(${target} TARN${name})
endfunction()

# How a module is linked, whose symbol versions are in cmake/<module>.map.
function(tarn_links_as_we_do target module)
  tarn_floating_point_link(${target})
  if(WIN32)  # a DLL has nothing of what follows
    return()
  endif()
  # Everything is bound when the module is loaded, and what holds addresses is read-only from then on; a stack
  # that can be executed, or code that the loader would have to patch, is an error.
  target_link_options(${target} PRIVATE LINKER:-z,relro,-z,now LINKER:-z,noexecstack LINKER:-z,text)
  if(PROJECT_IS_TOP_LEVEL AND NOT TARN_SANITIZED)  # a sanitizer's runtime is found by the program, not by the module
    target_link_options(${target} PRIVATE LINKER:--no-undefined)
  endif()
  set(versions ${PROJECT_SOURCE_DIR}/cmake/${module}.map)
  target_link_options(${target} PRIVATE LINKER:--version-script,${versions})
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${versions})
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
    VISIBILITY_INLINES_HIDDEN ON
    UNITY_BUILD OFF)
  tarn_warnings(${target})
  tarn_floating_point(${target})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -fno-gnu-unique)  # a unique symbol would keep dlclose from unloading
  endif()
endfunction()

# Warnings are errors for us (in the presets), and a parent project, which could not mend them, has none.
function(tarn_warnings target)
  if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
  else()
    target_compile_options(${target} PRIVATE -w)
  endif()
endfunction()
