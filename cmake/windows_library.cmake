# Debug information as the Windows tools read it: a PDB beside the module, nothing of it inside.
function(windows_library target)
  target_compile_options(${target} PRIVATE -g -gcodeview)
  target_link_options(${target} PRIVATE -Wl,--pdb=$<TARGET_FILE_DIR:${target}>/${target}.pdb)
endfunction()
