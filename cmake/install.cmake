# What is handed out: binaries with their PDBs, headers, import libraries in both spellings, pages, examples, and the
# sample panel as a project of its own.
set(config_dir lib/cmake/corvane)
install(TARGETS corvane lornix EXPORT corvane-targets RUNTIME DESTINATION bin ARCHIVE DESTINATION lib)
foreach(library corvane lornix)
  if(NOT MSVC)
    # The same file: an import library of the short form, which the Microsoft linker looks for under the other name.
    install(FILES $<TARGET_LINKER_FILE:${library}> DESTINATION lib RENAME ${library}.lib)
  endif()
  install(FILES ${product_dir}/${library}.pdb DESTINATION bin OPTIONAL)
endforeach()
if(CORVANE_HOST)
  install(TARGETS corvane_host RUNTIME DESTINATION bin)
  install(FILES ${product_dir}/corvane_host.pdb DESTINATION bin OPTIONAL)
endif()
install(FILES include/corvane.h include/corvane_types.h include/lornix_host.h
  ${PROJECT_BINARY_DIR}/include/corvane_version.h DESTINATION include)
install(FILES corvane.def README.md CHANGELOG.md DESTINATION .)
install(DIRECTORY docs DESTINATION . PATTERN maintaining.md EXCLUDE)
install(DIRECTORY examples DESTINATION .)

install(DIRECTORY host DESTINATION examples/panel FILES_MATCHING PATTERN *.cpp PATTERN *.h PATTERN *.rc PATTERN *.ico PATTERN *.in)
install(FILES res/version.h res/version_block.rc DESTINATION examples/panel/res)

include(CMakePackageConfigHelpers)
configure_package_config_file(cmake/corvane-config.cmake.in ${PROJECT_BINARY_DIR}/corvane-config.cmake
  INSTALL_DESTINATION ${config_dir} NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/corvane-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/corvane-config.cmake ${PROJECT_BINARY_DIR}/corvane-config-version.cmake
  DESTINATION ${config_dir})
install(EXPORT corvane-targets NAMESPACE corvane:: DESTINATION ${config_dir})
