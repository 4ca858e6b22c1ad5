# Warnings are errors. The Microsoft exception keywords and declspecs are wanted: both compilers take them.
add_library(corvane_warnings INTERFACE)
target_compile_options(corvane_warnings INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Wconversion
  -Wsign-conversion -Wcast-qual -Wimplicit-fallthrough -Werror)
