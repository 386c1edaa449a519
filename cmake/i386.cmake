# Toolchain file: Linux on x86 with 32 bits, built with Debian's cross compiler. Programs run on the build machine as they
# are, with the compiler's own C and C++ libraries.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(CMAKE_C_COMPILER i686-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)

set(libraries /usr/i686-linux-gnu/lib)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,--dynamic-linker=${libraries}/ld-linux.so.2 -Wl,-rpath,${libraries}")

set(CMAKE_FIND_ROOT_PATH /usr/i686-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
