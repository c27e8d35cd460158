# The library: one set of position-independent objects, linked as a shared and as a static library.

# Properties of sources, in any order after a source's name:
#
# v3, v4: kernels that measured faster with wider registers. On x86-64 they are compiled for every level up
# to this one. v4 includes VBMI, permutes of bytes, which all but the first processors with AVX-512 have.

# O2: loops that are unrolled by hand, or exist for each target, factor and level. -O3 makes them larger (13 KB
# on x86-64), not faster.
set(TAVU_OPTIONS_O2 $<$<CONFIG:Release,RelWithDebInfo>:-O2>)

# fallback: scalar loops for the calls that vector forms leave over; without vector forms, the kernels.
if(TAVU_VECTORS)
  set(TAVU_OPTIONS_fallback $<${TAVU_OPTIMISED}:-Os>)
endif()

# unguarded: kernels whose frames hold nothing that could overflow, so short that each instruction counts.
# Their entries are aligned, so that their speed does not depend on where the linker puts them.
set(TAVU_OPTIONS_unguarded -fno-stack-protector -fno-stack-clash-protection -falign-functions=32)

# byte_guards: called for each row or block, these hold a few addresses and words. Only functions with
# arrays of bytes get a stack guard.
# large_frames: may hold more than a page. GCC for 32-bit ARM probes the stack in every function that calls
# another, up to a fifth of a short one's instructions, so there the other sources go without probes.
if(TAVU_HARDENING)
  set(TAVU_OPTIONS_byte_guards $<${TAVU_OPTIMISED}:-fstack-protector>)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
    set(TAVU_OPTIONS_small_frames "$<${TAVU_OPTIMISED}:-fno-stack-clash-protection;-Wframe-larger-than=4096>")
    set(TAVU_OPTIONS_large_frames "$<${TAVU_OPTIMISED}:-fstack-clash-protection;-Wno-frame-larger-than>")
  endif()
endif()

# Lists all sources in TAVU_SOURCES, kernels also in TAVU_SOURCES_v3 or TAVU_SOURCES_v4.
macro(tavu_sources)
  foreach(word ${ARGN})
    if(word MATCHES "/")
      set(source ${word})
      list(APPEND TAVU_SOURCES ${source})
    elseif(word MATCHES "^v[34]$")
      list(APPEND TAVU_SOURCES_${word} ${source})
    elseif(word MATCHES "^(O2|fallback|unguarded|byte_guards|large_frames)$")
      set_property(SOURCE ${source} APPEND PROPERTY COMPILE_OPTIONS ${TAVU_OPTIONS_${word}})
    else()
      message(FATAL_ERROR "${source}: there is no property ${word}")
    endif()
  endforeach()
endmacro()

tavu_sources(
  src/bs/bsr.cpp
  src/bs/bsw.cpp
  src/buf/audb.cpp
  src/buf/bitb.cpp
  src/buf/imgb.cpp
  src/buf/imgb_expand.cpp           O2
  src/buf/imgb_geometry.cpp         O2
  src/buf/mfal.cpp
  src/buf/vdata.cpp                 O2
  src/container/list.cpp
  src/container/rbuf.cpp
  src/container/rlist.cpp
  src/core/alloc.cpp
  src/core/atomic.cpp
  src/core/log2.cpp
  src/core/mcpy.cpp
  src/core/mset.cpp                 v3 unguarded
  src/core/records.cpp
  src/core/version.cpp
  src/imgp/csc_fallback.cpp         fallback byte_guards
  src/imgp/csc_lookup.cpp
  src/imgp/csc_resize.cpp           v3 O2 byte_guards
  src/imgp/csc_to_565.cpp           v4 unguarded
  src/imgp/csc_to_packed.cpp        v4 unguarded
  src/imgp/csc_to_yuv.cpp           v4 unguarded
  src/imgp/resize_engine.cpp        v3 O2 large_frames
  src/imgp/resize_kernels.cpp       v3 O2 byte_guards
  src/imgp/resize_scalar.cpp        O2 byte_guards
  src/imgp/resizer.cpp
  src/media/fcc2mt.cpp
  src/media/md5.cpp                 byte_guards
  src/media/vkeyfrm.cpp             v3 unguarded
  src/metric/diff.cpp               v4 O2 unguarded
  src/metric/sad.cpp                v4 O2 unguarded
  src/metric/satd.cpp               v4 O2 unguarded
  src/metric/ssd.cpp                v4 O2 unguarded
  src/simd/x86/constants.cpp
  src/str/uri.cpp
  src/str/words.cpp)

function(tavu_objects name)
  add_library(${name} OBJECT ${ARGN})
  target_include_directories(${name} PRIVATE include src)
  set_target_properties(${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON   # the static library is linked into shared objects too
    CXX_VISIBILITY_PRESET hidden)  # TAVU_API marks what is exported
  tavu_harden(${name})
  target_compile_options(${name} PRIVATE
    -fno-exceptions -fno-rtti -fno-threadsafe-statics  # no C++ run-time library is linked
    # Vectors are written by hand. GCC would add its own to scalar loops that are short or rarely run.
    -fno-tree-vectorize
    ${TAVU_OPTIONS_small_frames}
    $<$<CONFIG:Coverage>:-O0>  # each line has a count
    # For ARM, Clang has no option against stack clashes.
    $<$<CXX_COMPILER_ID:Clang>:-Wno-unused-command-line-argument>)
  target_compile_definitions(${name} PRIVATE TAVU_SIMD=$<BOOL:${TAVU_SIMD}>)
endfunction()

function(tavu_compile_for_level name level)
  target_compile_options(${name} PRIVATE
    -march=x86-64-v${level}
    -mtune=generic)  # whichever processor the user's flags tune for
endfunction()

# Kernels compiled for one level.
function(tavu_level_objects name level)
  tavu_objects(${name} ${ARGN})
  tavu_compile_for_level(${name} ${level})
  target_compile_options(${name} PRIVATE
    -fno-asynchronous-unwind-tables)  # kernels call nothing that throws
endfunction()

if(TAVU_DISPATCHED)
  set_property(SOURCE ${TAVU_SOURCES_v3} APPEND PROPERTY COMPILE_DEFINITIONS TAVU_TOP_LEVEL=3)
  set_property(SOURCE ${TAVU_SOURCES_v4} APPEND PROPERTY COMPILE_DEFINITIONS TAVU_TOP_LEVEL=4)
  tavu_level_objects(tavu_v2 2 ${TAVU_SOURCES_v3} ${TAVU_SOURCES_v4})
  tavu_level_objects(tavu_v3 3 ${TAVU_SOURCES_v3} ${TAVU_SOURCES_v4})
  tavu_level_objects(tavu_v4 4 ${TAVU_SOURCES_v4})
  # GCC's own header for AVX-512 begins many operations with an undefined register.
  target_compile_options(tavu_v4 PRIVATE -mavx512vbmi
    $<$<CXX_COMPILER_ID:GNU>:-Wno-uninitialized;-Wno-maybe-uninitialized>)
  set(base_sources ${TAVU_SOURCES} src/simd/x86/cpu_level.cpp)
  list(REMOVE_ITEM base_sources ${TAVU_SOURCES_v3} ${TAVU_SOURCES_v4})
  tavu_objects(tavu_base ${base_sources})
  set(object_targets tavu_base tavu_v2 tavu_v3 tavu_v4)
else()
  tavu_objects(tavu_base ${TAVU_SOURCES})
  set(object_targets tavu_base)
endif()
if(TAVU_X86_64 AND TAVU_VECTORS)
  tavu_compile_for_level(tavu_base 2)
endif()

list(TRANSFORM object_targets REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)

set(map ${CMAKE_CURRENT_SOURCE_DIR}/libtavu.map)
add_library(tavu SHARED ${objects})
set_target_properties(tavu PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINKER_LANGUAGE C  # C++ would link its run-time library
  LINK_DEPENDS ${map})
target_link_options(tavu PRIVATE
  -static-libgcc -Wl,--as-needed  # the C library is all that it needs at run time
  -Wl,--version-script=${map}
  # Sealed after relocation at load; no executable stack, even if an object does not say so.
  -Wl,-z,relro,-z,now,-z,noexecstack
  # Clang links its sanitizers into programs only.
  $<$<C_COMPILER_ID:GNU>:-Wl,--no-undefined>)

# The archive needs no C++ run-time library, but CMake would link whatever uses a target of C++ objects
# as C++. Hence users see a target that has no language of its own.
add_library(tavu_archive STATIC ${objects})
set_target_properties(tavu_archive PROPERTIES OUTPUT_NAME tavu)
add_library(tavu_static INTERFACE)
set_target_properties(tavu_static PROPERTIES EXPORT_NAME static)
target_link_libraries(tavu_static INTERFACE
  $<BUILD_INTERFACE:$<TARGET_FILE:tavu_archive>>
  $<INSTALL_INTERFACE:$<INSTALL_PREFIX>/${CMAKE_INSTALL_LIBDIR}/libtavu.a>)
add_dependencies(tavu_static tavu_archive)

foreach(library tavu tavu_static)
  target_include_directories(${library} INTERFACE
    $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endforeach()
add_library(tavu::static ALIAS tavu_static)

# Both libraries are built and installed, or only the one that BUILD_SHARED_LIBS asks for. The target of
# the other one remains for this build's tests and for projects that add this one as a directory.
set(TAVU_SHARED ON)
set(TAVU_STATIC ON)
if(NOT DEFINED BUILD_SHARED_LIBS)
  add_library(tavu::tavu ALIAS tavu)
elseif(BUILD_SHARED_LIBS)
  add_library(tavu::tavu ALIAS tavu)
  set(TAVU_STATIC OFF)
  set_target_properties(tavu_archive PROPERTIES EXCLUDE_FROM_ALL ON)
else()
  add_library(tavu::tavu ALIAS tavu_static)
  set(TAVU_SHARED OFF)
  if(NOT TAVU_TESTS)
    set_target_properties(tavu PROPERTIES EXCLUDE_FROM_ALL ON)
  endif()
endif()
