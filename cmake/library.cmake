# The library: one set of position-independent objects in a shared and a static form.

set(TAVU_SOURCES
  src/simd/level.cpp
  src/core/alloc.cpp
  src/core/atomic.cpp
  src/core/log2.cpp
  src/core/mcpy.cpp
  src/core/mset.cpp
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
  src/media/vkeyfrm.cpp
  src/media/md5.cpp
  src/imgp/irsz.cpp
  src/imgp/irsz_kernels.cpp
  src/imgp/csc_rsz.cpp
  src/imgp/lookup.cpp
  src/container/list.cpp
  src/container/rbuf.cpp
  src/container/rlist.cpp
  src/str/uri.cpp
  src/str/words.cpp)

# Kernels that gain from wider vectors: on x86-64 compiled a second time for level v3.
set(TAVU_WIDE_SOURCES
  src/imgp/csc_to_565.cpp
  src/imgp/csc_to_packed.cpp
  src/imgp/csc_to_yuv.cpp
  src/metric/diff.cpp
  src/metric/sad.cpp
  src/metric/satd.cpp
  src/metric/ssd.cpp)

function(tavu_objects name)
  add_library(${name} OBJECT ${ARGN})
  target_include_directories(${name} PRIVATE include src)
  set_target_properties(${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden)
  target_compile_options(${name} PRIVATE
    -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-tree-vectorize)
  target_compile_definitions(${name} PRIVATE TAVU_SIMD=$<BOOL:${TAVU_SIMD}>)
endfunction()

set(x86_64 OFF)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$" AND TAVU_SIMD)
  set(x86_64 ON)
endif()

tavu_objects(tavu_base ${TAVU_SOURCES})
tavu_objects(tavu_wide ${TAVU_WIDE_SOURCES})
set(TAVU_OBJECTS tavu_base tavu_wide)
if(x86_64)
  target_compile_options(tavu_base PRIVATE -march=x86-64-v2 -mtune=generic)
  target_compile_options(tavu_wide PRIVATE -march=x86-64-v2 -mtune=generic)
endif()
set(TAVU_LEVELS OFF)
if(x86_64 AND TAVU_DISPATCH)
  set(TAVU_LEVELS ON)
  target_compile_definitions(tavu_wide PRIVATE TAVU_LEVEL=2)
  tavu_objects(tavu_wide_v3 ${TAVU_WIDE_SOURCES})
  target_compile_options(tavu_wide_v3 PRIVATE -march=x86-64-v3 -mtune=generic)
  target_compile_definitions(tavu_wide_v3 PRIVATE TAVU_LEVEL=3)
  list(APPEND TAVU_OBJECTS tavu_wide_v3)
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
  -Wl,--no-undefined,--as-needed)

add_library(tavu_static STATIC ${objects})
set_target_properties(tavu_static PROPERTIES OUTPUT_NAME tavu)

foreach(library tavu tavu_static)
  target_include_directories(${library} PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>)
endforeach()
