# A room of corvane.dll, as objects of its own: a test links the rooms whose inside no export reaches.
# Usage: corvane_room(NAME SOURCE ...) makes the target corvane_NAME and puts it into the library.
function(corvane_room name)
  add_library(corvane_${name} OBJECT ${ARGN})
  target_compile_definitions(corvane_${name} PRIVATE CORVANE_BUILDING)
  target_link_libraries(corvane_${name} PUBLIC corvane_logic lornix_contract)
  target_link_libraries(corvane PRIVATE corvane_${name})
endfunction()
