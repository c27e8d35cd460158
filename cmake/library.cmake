# The library: one set of position-independent objects in a shared and a static form.

set(TAVU_SOURCES
  src/simd/x86/constants.cpp
  src/core/alloc.cpp
  src/core/atomic.cpp
  src/core/log2.cpp
  src/core/mcpy.cpp
  src/core/records.cpp
  src/core/version.cpp
  src/buf/audb.cpp
  src/buf/bitb.cpp
  src/buf/imgb.cpp
  src/buf/imgb_expand.cpp
  src/buf/imgb_geometry.cpp
  src/buf/mfal.cpp
  src/buf/vdata.cpp
  src/bs/bsr.cpp
  src/bs/bsw.cpp
  src/media/fcc2mt.cpp
  src/media/md5.cpp
  src/imgp/csc_fallback.cpp
  src/imgp/resizer.cpp
  src/imgp/resize_kernels_565.cpp
  src/imgp/resizer_band.cpp
  src/imgp/resize_fallback.cpp
  src/imgp/csc_lookup.cpp
  src/container/list.cpp
  src/container/rbuf.cpp
  src/container/rlist.cpp
  src/str/uri.cpp
  src/str/words.cpp)

# Kernels that gain from wider vectors: on x86-64 compiled a second time for level v3.
set(TAVU_WIDE_SOURCES
  src/core/mset.cpp
  src/media/vkeyfrm.cpp
  src/imgp/csc_resize.cpp
  src/imgp/resize_kernels.cpp
  src/imgp/resize_engine.cpp)

# Kernels that gain once more from registers of 64 bytes: for level v4 too, which here takes in VBMI,
# the permutes of bytes that all but the first processors with AVX-512 have.
set(TAVU_WIDEST_SOURCES
  src/imgp/csc_to_565.cpp
  src/imgp/csc_to_packed.cpp
  src/imgp/csc_to_yuv.cpp
  src/metric/diff.cpp
  src/metric/sad.cpp
  src/metric/satd.cpp
  src/metric/ssd.cpp)

# These hold a loop for every target, factor and level; more inlining would gain nothing.
set_source_files_properties(
  src/imgp/csc_resize.cpp src/imgp/resize_kernels_565.cpp src/imgp/resize_kernels.cpp src/imgp/resize_engine.cpp
  PROPERTIES
  COMPILE_OPTIONS $<$<CONFIG:Release>:-O2>)

# Scalar forms are the exception where vector forms exist, and the only ones elsewhere.
if(TAVU_SIMD)
  set_source_files_properties(
    src/imgp/csc_fallback.cpp src/imgp/resize_fallback.cpp PROPERTIES
    COMPILE_OPTIONS $<$<CONFIG:Release>:-Os>)
endif()

# Loops that gain nothing from being written out, or are written out by hand.
set_source_files_properties(
  src/buf/imgb_expand.cpp src/buf/imgb_geometry.cpp src/buf/vdata.cpp
  src/metric/diff.cpp src/metric/sad.cpp src/metric/satd.cpp src/metric/ssd.cpp PROPERTIES
  COMPILE_OPTIONS $<$<CONFIG:Release>:-O2>)

# These keep nothing in memory of their own that could be overrun, and feel each instruction.
set_property(SOURCE src/core/mset.cpp src/media/vkeyfrm.cpp ${TAVU_WIDEST_SOURCES}
  APPEND PROPERTY COMPILE_OPTIONS
  -fno-stack-protector -fno-stack-clash-protection -falign-functions=32)

# Called for each row or block, these hold a few addresses and words: only what holds bytes is guarded.
set_property(SOURCE
  src/imgp/csc_resize.cpp src/imgp/csc_fallback.cpp src/imgp/resize_kernels_565.cpp src/imgp/resize_kernels.cpp
  src/imgp/resize_fallback.cpp src/media/md5.cpp
  APPEND PROPERTY COMPILE_OPTIONS $<$<CONFIG:Release>:-fstack-protector>)

# GCC for 32-bit ARM probes the stack in every routine that calls another, up to a fifth of a short one's
# instructions. Only frames of more than a page need it, and only the resizer has such.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
  set(small_frames ${TAVU_SOURCES} ${TAVU_WIDE_SOURCES})
  list(REMOVE_ITEM small_frames src/imgp/resize_engine.cpp)
  set_property(SOURCE ${small_frames} APPEND PROPERTY COMPILE_OPTIONS
    $<$<CONFIG:Release>:-fno-stack-clash-protection;-Wframe-larger-than=4096>)
endif()

function(tavu_objects name)
  add_library(${name} OBJECT ${ARGN})
  target_include_directories(${name} PRIVATE include src)
  set_target_properties(${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden)
  target_compile_options(${name} PRIVATE
    -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-tree-vectorize)
  target_compile_options(${name} PRIVATE $<$<CONFIG:Coverage>:-O0>)  # each line has a count
  # For ARM, Clang knows no option against stack clashes.
  target_compile_options(${name} PRIVATE
    $<$<CXX_COMPILER_ID:Clang>:-Wno-unused-command-line-argument>)
  target_compile_definitions(${name} PRIVATE TAVU_SIMD=$<BOOL:${TAVU_SIMD}>)
  tavu_harden(${name})
endfunction()

set(x86_64 OFF)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$" AND TAVU_SIMD)
  set(x86_64 ON)
endif()

# NAME compiled for a level; TOP is the highest one that its sources are compiled for.
function(tavu_level_objects name level top)
  tavu_objects(${name} ${ARGN})
  # Kernels call nothing that could throw, so that nobody needs to unwind through them.
  target_compile_options(${name} PRIVATE -march=x86-64-v${level} -mtune=generic
    -fno-asynchronous-unwind-tables $<$<EQUAL:${level},4>:-mavx512vbmi>)
  target_compile_definitions(${name} PRIVATE TAVU_TOP_LEVEL=${top})
endfunction()

set(TAVU_LEVELS OFF)
if(x86_64 AND TAVU_DISPATCH)
  set(TAVU_LEVELS ON)
  tavu_objects(tavu_base ${TAVU_SOURCES} src/simd/x86/cpu_level.cpp)
  tavu_level_objects(tavu_wide 2 3 ${TAVU_WIDE_SOURCES})
  tavu_level_objects(tavu_wide_v3 3 3 ${TAVU_WIDE_SOURCES})
  tavu_level_objects(tavu_widest 2 4 ${TAVU_WIDEST_SOURCES})
  tavu_level_objects(tavu_widest_v3 3 4 ${TAVU_WIDEST_SOURCES})
  tavu_level_objects(tavu_widest_v4 4 4 ${TAVU_WIDEST_SOURCES})
  # GCC's own header for AVX-512 begins many operations with an undefined register.
  target_compile_options(tavu_widest_v4 PRIVATE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-uninitialized;-Wno-maybe-uninitialized>)
  set(TAVU_OBJECTS tavu_base tavu_wide tavu_wide_v3 tavu_widest tavu_widest_v3 tavu_widest_v4)
else()
  tavu_objects(tavu_base ${TAVU_SOURCES} ${TAVU_WIDE_SOURCES} ${TAVU_WIDEST_SOURCES})
  set(TAVU_OBJECTS tavu_base)
endif()
if(x86_64)
  target_compile_options(tavu_base PRIVATE -march=x86-64-v2 -mtune=generic)
endif()

foreach(object IN LISTS TAVU_OBJECTS)
  list(APPEND objects $<TARGET_OBJECTS:${object}>)
endforeach()
set(map ${CMAKE_CURRENT_SOURCE_DIR}/libtavu.map)

add_library(tavu SHARED ${objects})
set_target_properties(tavu PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINKER_LANGUAGE C
  LINK_DEPENDS ${map})
target_link_options(tavu PRIVATE
  -static-libgcc -Wl,--version-script=${map} -Wl,-z,relro,-z,now,-z,noexecstack
  -Wl,--as-needed
  # Clang's sanitizers are linked with programs alone.
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
add_library(tavu::tavu ALIAS tavu)
add_library(tavu::static ALIAS tavu_static)
