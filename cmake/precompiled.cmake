# The headers that nearly every file reads are compiled once for each set of flags. Only the platform's and the standard
# library's belong here: a header of our own would have everything built anew with each change of it.
# Every file still includes what it uses; the build with -D CMAKE_DISABLE_PRECOMPILE_HEADERS=ON tells.

# Usage: precompiled_headers(NAME LIBRARY... HEADERS <header>...) makes a library that exists for its headers alone.
function(precompiled_headers name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "HEADERS")
  file(CONFIGURE OUTPUT ${name}.cpp CONTENT "" @ONLY)
  add_library(${name} OBJECT EXCLUDE_FROM_ALL ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  target_link_libraries(${name} PRIVATE ${arg_UNPARSED_ARGUMENTS})
  target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # The same bytes at each build, so that a compiler cache knows what it has seen.
    target_compile_options(${name} PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
  endif()
endfunction()

# Usage: use_precompiled_headers(NAME FOLDER...) for all programs and libraries of the folders and those below that have
# not chosen others yet.
function(use_precompiled_headers name)
  foreach(folder IN LISTS ARGN)
    get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target IN LISTS targets)
      get_target_property(type ${target} TYPE)
      get_target_property(other ${target} PRECOMPILE_HEADERS_REUSE_FROM)
      get_target_property(own ${target} PRECOMPILE_HEADERS)
      get_target_property(sources ${target} SOURCES)
      if(type MATCHES "EXECUTABLE|(STATIC|SHARED|OBJECT)_LIBRARY" AND NOT other AND NOT own
          AND NOT sources MATCHES "\\.c(;|$)")
        target_precompile_headers(${target} REUSE_FROM ${name})
      endif()
    endforeach()
    get_property(below DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
    use_precompiled_headers(${name} ${below})
  endforeach()
endfunction()
