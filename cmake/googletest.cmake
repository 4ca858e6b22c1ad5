# GoogleTest as the machine offers it to CMake, or else from the sources of the system's package.
if(MSVC)
  find_package(GTest CONFIG)
endif()
if(NOT TARGET GTest::gmock)
  set(GOOGLETEST_SOURCES /usr/src/googletest CACHE PATH "Where the sources of GoogleTest are")
  if(NOT EXISTS ${GOOGLETEST_SOURCES}/CMakeLists.txt)
    message(FATAL_ERROR "GoogleTest was not found: name its sources with -D GOOGLETEST_SOURCES=..., "
      "or leave the tests out with -D CORVANE_TESTS=OFF.")
  endif()
  # Built with the same compiler and runtime.
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory(${GOOGLETEST_SOURCES} gtest EXCLUDE_FROM_ALL SYSTEM)
  if(NOT MSVC)
    # To optimize its one large file takes longer than all that it does in a run.
    foreach(lib gtest gmock gtest_main gmock_main)
      target_compile_options(${lib} PRIVATE -O0 -g1)
    endforeach()
  endif()
  if(WIN32)
    # A fault in a test is then a failure of that test and not the end of the whole program.
    foreach(lib gtest gmock)
      target_compile_definitions(${lib} PUBLIC GTEST_HAS_SEH=1)
    endforeach()
  endif()
endif()
