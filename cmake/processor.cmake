# Which forms of the kernels this compiler can build for this processor. Reports it and sets
#   TAVU_X86_64      the processor is x86-64
#   TAVU_VECTORS     kernels have vector forms
#   TAVU_DISPATCHED  they are compiled for several x86-64 levels, chosen at load time
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)

set(TAVU_X86_64 OFF)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
  set(TAVU_X86_64 ON)
endif()
set(TAVU_VECTORS OFF)
set(TAVU_DISPATCHED OFF)

function(tavu_check_ifunc)
  # Clang compiles indirect functions for musl too, whose loader does not support them.
  check_cxx_source_compiles([[
    #include <stdlib.h>
    #if !defined(__GLIBC__) && !defined(__FreeBSD__)
    #error "The loader is not known to support indirect functions."
    #endif
    extern "C" int implementation() { return 0; }
    extern "C" decltype(&implementation) resolve() { return implementation; }
    extern "C" int indirect() __attribute__((ifunc("resolve")));
    int main() { return indirect(); }
  ]] TAVU_HAS_IFUNC)
endfunction()

function(tavu_check_neon)
  check_cxx_source_compiles([[
    #ifndef __ARM_NEON
    #error "The flags leave out NEON."
    #endif
    int main() {}
  ]] TAVU_HAS_NEON)
endfunction()

set(CMAKE_REQUIRED_QUIET ON)
if(NOT TAVU_SIMD)
  message(STATUS "libtavu kernels: scalar models (TAVU_SIMD=OFF)")
elseif(TAVU_X86_64)
  check_cxx_compiler_flag(-march=x86-64-v4 TAVU_HAS_X86_64_LEVELS)
  if(NOT TAVU_HAS_X86_64_LEVELS)
    message(FATAL_ERROR "The compiler does not know -march=x86-64-v2 to -v4: use GCC 11, Clang 12 or newer,"
      " or build the scalar models, which are slow, with -DTAVU_SIMD=OFF")
  endif()
  set(TAVU_VECTORS ON)
  if(TAVU_DISPATCH)
    tavu_check_ifunc()
    set(TAVU_DISPATCHED ${TAVU_HAS_IFUNC})
  endif()
  if(TAVU_DISPATCHED)
    message(STATUS "libtavu kernels: x86-64-v2, v3 and v4, chosen at load time")
  elseif(TAVU_DISPATCH)
    message(WARNING "libtavu kernels: x86-64-v2 only. v3 and v4 need indirect functions (ifunc), which this"
      " compiler, linker or C library lacks. -DTAVU_DISPATCH=OFF builds the same without this warning.")
  else()
    message(STATUS "libtavu kernels: x86-64-v2 only (TAVU_DISPATCH=OFF)")
  endif()
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(arm|aarch64)")
  tavu_check_neon()
  if(TAVU_HAS_NEON)
    set(TAVU_VECTORS ON)
    message(STATUS "libtavu kernels: NEON")
  else()
    message(WARNING "libtavu kernels: scalar models, which are slow. The compiler's flags leave out NEON:"
      " add -mfpu=neon to CMAKE_C_FLAGS and CMAKE_CXX_FLAGS if the processor has it.")
  endif()
else()
  message(STATUS "libtavu kernels: scalar models; there are no vector forms for ${CMAKE_SYSTEM_PROCESSOR}")
endif()
unset(CMAKE_REQUIRED_QUIET)
