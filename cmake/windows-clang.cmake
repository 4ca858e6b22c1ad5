# clang for 64-bit Windows on the mingw-w64 headers and runtime, linked by lld.
# The posix flavour of the C++ runtime is named by hand: clang would take the other one, which has no std::mutex.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(triple x86_64-w64-mingw32)

set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_C_COMPILER_TARGET ${triple})
set(CMAKE_CXX_COMPILER_TARGET ${triple})
set(CMAKE_AR llvm-ar-19)
set(CMAKE_RANLIB llvm-ranlib-19)
set(CMAKE_DLLTOOL ${triple}-dlltool)
set(CMAKE_RC_COMPILER llvm-windres-19)
# Without the code page both "..." and L"..." strings of a UTF-8 script come out wrong.
set(CMAKE_RC_FLAGS_INIT "--target=${triple} -c 65001")

file(GLOB runtime_dirs /usr/lib/gcc/${triple}/*-posix)
list(GET runtime_dirs 0 runtime_dir)
set(CMAKE_C_FLAGS_INIT "-fms-extensions")
set(CMAKE_CXX_FLAGS_INIT "-fms-extensions -stdlib++-isystem ${runtime_dir}/include/c++ -stdlib++-isystem ${runtime_dir}/include/c++/${triple} -stdlib++-isystem ${runtime_dir}/include/c++/backward")
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld -static -L${runtime_dir} -lwinpthread")
endforeach()

set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/windows_program)
