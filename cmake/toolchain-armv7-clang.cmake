# Like toolchain-armv7.cmake, but Clang with the libraries of GCC's cross compiler.
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-armv7.cmake)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
foreach(language C CXX)
  string(PREPEND CMAKE_${language}_FLAGS_INIT "--target=arm-linux-gnueabihf ")
endforeach()
