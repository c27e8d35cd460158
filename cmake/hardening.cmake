# What distributions put into released code against exploits, for optimised builds. Properties of sources
# in cmake/library.cmake relax it for kernels. In instructions, conversions, metrics, digests, fills, bits,
# lists and rings then lose nothing; resizing loses 0.9 % for a target of 96x32 pixels and less for larger
# ones, because its buffers are guarded once for all rows.
# Marks for indirect jumps (-fcf-protection=full) are left out: they cost an instruction at the start of
# every routine, and no Linux uses them in programs. "return" marks the code as fit for shadow stacks and
# adds no instruction.
option(TAVU_HARDENING "Harden optimised builds: stack protector, checked C library calls" ON)

set(TAVU_OPTIMISED $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)

function(tavu_harden target)
  if(NOT TAVU_HARDENING)
    return()
  endif()
  # A distribution may have defined _FORTIFY_SOURCE already; defining it again would be a warning.
  target_compile_options(${target} PRIVATE
    "$<${TAVU_OPTIMISED}:-fstack-protector-strong;-fstack-clash-protection>"
    "$<${TAVU_OPTIMISED}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  if(TAVU_X86_64)
    target_compile_options(${target} PRIVATE $<${TAVU_OPTIMISED}:-fcf-protection=return>)
  endif()
  target_link_options(${target} PRIVATE $<${TAVU_OPTIMISED}:-Wl,-z,relro,-z,now>)
endfunction()
