# What distributions put into released code against exploits. Kernels that keep nothing in memory of
# their own go without (cmake/library.cmake), the resizing routines have a check of the stack each. In
# instructions, conversions, metrics, fills, bits, lists and rings lose nothing by it. A row of a resized
# picture costs up to 8 more on x86-64 and 22 on ARM, 6 % of rows of 96 bytes and less of longer ones.
# Left out are marks for indirect jumps (-fcf-protection=full): an instruction at the start of every
# routine that no Linux makes use of in programs. "return" marks the code as fit for shadow stacks and
# adds none.
option(TAVU_HARDENING "Optimised builds: stack protector, checked calls of the C library" ON)

function(tavu_harden target)
  if(NOT TAVU_HARDENING)
    return()
  endif()
  set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  target_compile_options(${target} PRIVATE
    "$<${optimised}:-fstack-protector-strong;-fstack-clash-protection>"
    "$<${optimised}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
    target_compile_options(${target} PRIVATE $<${optimised}:-fcf-protection=return>)
  endif()
  target_link_options(${target} PRIVATE $<${optimised}:-Wl,-z,relro,-z,now>)
endfunction()
