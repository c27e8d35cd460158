# What distributions put into released code against exploits. Kernels keep their speed with it: see
# docs/performance.md for what was left out and why.
option(TAVU_HARDENING "Harden optimised builds: stack protector, checked C library calls, bound early" ON)

if(TAVU_HARDENING)
  set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  add_compile_options("$<${optimised}:-fstack-protector-strong;-fstack-clash-protection>")
  add_compile_options("$<${optimised}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
    add_compile_options($<${optimised}:-fcf-protection=return>)
  endif()
  add_link_options($<${optimised}:-Wl,-z,relro,-z,now>)
endif()
