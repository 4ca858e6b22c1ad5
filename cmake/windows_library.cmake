# How what ships is linked: each binary with a PDB beside it that holds all debug information, none of it inside, and the
# same bytes wherever and whenever the same sources are built.
if(NOT MSVC)
  # Paths in messages and debug information begin at the project, not at the disk it lies on.
  foreach(map ${PROJECT_SOURCE_DIR}/= ${PROJECT_BINARY_DIR}/=build/)
    add_compile_options($<$<NOT:$<COMPILE_LANGUAGE:RC>>:-ffile-prefix-map=${map}>)
  endforeach()
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    foreach(option -gcodeview -gno-codeview-command-line -fdebug-compilation-dir=.)
      add_compile_options($<$<NOT:$<COMPILE_LANGUAGE:RC>>:${option}>)
    endforeach()
  endif()
endif()

# Usage: windows_library(TARGET [EXPORT_LIST]) for the libraries and the sample panel.
function(windows_library target)
  set(export_list ${ARGN})
  set_target_properties(${target} PROPERTIES PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${product_dir}
    PDB_OUTPUT_DIRECTORY ${product_dir})
  if(MSVC)
    target_link_options(${target} PRIVATE /DEBUG /OPT:REF /OPT:ICF /Brepro /PDBALTPATH:${target}.pdb)
  elseif(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # The PDB keeps the line that linked it, and the binary a sum of the PDB: hence no path that begins at the disk.
    # Such a line is read in the build folder by some generators, and elsewhere by the others.
    set(here ${CMAKE_BINARY_DIR})
    if(CMAKE_GENERATOR MATCHES "Ninja")
      set(here .)
    endif()
    file(RELATIVE_PATH out ${CMAKE_BINARY_DIR} ${product_dir})
    target_link_options(${target} PRIVATE -static -Wl,--strip-all -Wl,--pdb=${here}/${out}/${target}.pdb
      -Wl,-Xlink=-pdbaltpath:${target}.pdb -Wl,-Xlink=-pdbsourcepath:/corvane -Wl,-Xlink=-Brepro)
    if(export_list)
      cmake_path(ABSOLUTE_PATH export_list)
      file(RELATIVE_PATH out ${CMAKE_BINARY_DIR} ${PROJECT_BINARY_DIR}/${target}.def)
      configure_file(${export_list} ${PROJECT_BINARY_DIR}/${target}.def COPYONLY)
      target_link_options(${target} PRIVATE ${here}/${out})
      set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${PROJECT_BINARY_DIR}/${target}.def)
      set(export_list "")
    endif()
  else()
    # GNU's linker writes no PDB.
    target_link_options(${target} PRIVATE -static -Wl,--no-insert-timestamp $<$<NOT:$<CONFIG:Debug>>:-s>)
  endif()
  target_sources(${target} PRIVATE ${export_list})
endfunction()

# Usage: public_headers(TARGET) for a library that others link: as corvane::TARGET, here and in the package alike.
function(public_headers target)
  add_library(corvane::${target} ALIAS ${target})
  target_include_directories(${target} INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include> $<INSTALL_INTERFACE:include>)
endfunction()
