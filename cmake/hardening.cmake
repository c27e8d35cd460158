# What distributions put into released code against exploits. The block metrics come out with the same
# instructions as without, resizing with a check per row. Marks for indirect jumps (-fcf-protection=full)
# are left out, an instruction at the start of every routine that no Linux makes use of in programs;
# "return" marks the code as fit for shadow stacks and adds none.
option(TAVU_HARDENING "Optimised builds: stack protector, checked calls of the C library" ON)

if(TAVU_HARDENING)
  set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  add_compile_options(
    "$<${optimised}:-fstack-protector-strong;-fstack-clash-protection>"
    "$<${optimised}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
    add_compile_options($<${optimised}:-fcf-protection=return>)
  endif()
  add_link_options($<${optimised}:-Wl,-z,relro,-z,now>)
endif()
