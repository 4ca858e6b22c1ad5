# The Microsoft exception keywords and declspecs are wanted: the compilers for Windows take them. Warnings are errors
# where the project itself is worked on, not where it is a part of another one.
add_library(corvane_warnings INTERFACE)
if(MSVC)
  target_compile_options(corvane_warnings INTERFACE /W4 /utf-8 /permissive- /Zc:__cplusplus /EHsc)
  # The functions of the C library are used with the sizes that they need.
  target_compile_definitions(corvane_warnings INTERFACE _CRT_SECURE_NO_WARNINGS)
  set(as_errors /WX)
else()
  # Of files that are compiled as one, the names of one would shadow those of another.
  target_compile_options(corvane_warnings INTERFACE -Wall -Wextra $<$<NOT:$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>>:-Wshadow> $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
    -Wconversion -Wsign-conversion -Wcast-qual -Wimplicit-fallthrough)
  if(WIN32 AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_compile_options(corvane_warnings INTERFACE -fms-extensions)
  endif()
  set(as_errors -Werror)
endif()
if(PROJECT_IS_TOP_LEVEL AND CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  target_compile_options(corvane_warnings INTERFACE ${as_errors})
endif()
