# Toolchain file for scripts/android-abi.sh: libraries as for Android, without the
# vendor's kit. Clang and lld build for Android's binary interface; the headers are those
# of the Debian cross compilers, and the C library to link with is a list of names.
# ZELM_ANDROID_ABI is armeabi-v7a or arm64-v8a, ZELM_ANDROID_STUBS the folder of libc.so
# and libm.so. An app is built with the kit's own toolchain file instead.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZELM_ANDROID_ABI ZELM_ANDROID_STUBS)
# Only files named *.so are put into an app, so CMake for Android leaves versions out.
set(CMAKE_PLATFORM_NO_VERSIONED_SONAME 1)

if(ZELM_ANDROID_ABI STREQUAL "armeabi-v7a")
  set(CMAKE_SYSTEM_PROCESSOR armv7-a)
  set(triple armv7a-linux-androideabi21)
  set(debian arm-linux-gnueabihf)
  set(flags "-mthumb -mfpu=neon -meabi gnu")
  # Division, which the kit's compiler has in a library of its own.
  set(runtime "/usr/lib/gcc-cross/${debian}/12/libgcc.a")
else()
  set(CMAKE_SYSTEM_PROCESSOR aarch64)
  set(triple aarch64-linux-android21)
  set(debian aarch64-linux-gnu)
  set(flags "")
  set(runtime "")
endif()

set(headers "/usr/${debian}/include")
set(CMAKE_C_COMPILER clang-14)
set(CMAKE_CXX_COMPILER clang++-14)
set(CMAKE_C_COMPILER_TARGET ${triple})
set(CMAKE_CXX_COMPILER_TARGET ${triple})
set(system "-isystem ${ZELM_ANDROID_STUBS} -isystem ${headers}")
set(CMAKE_C_FLAGS_INIT "${flags} -Wno-unused-command-line-argument -nostdlibinc ${system}")
set(CMAKE_CXX_FLAGS_INIT "${flags} -nostdlibinc -nostdinc++ \
-isystem ${headers}/c++/12 -isystem ${headers}/c++/12/${debian} ${system}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-nostdlib -fuse-ld=lld-14 -L${ZELM_ANDROID_STUBS} \
-Wl,-z,max-page-size=16384")
set(CMAKE_C_STANDARD_LIBRARIES "${runtime} -lc -lm" CACHE STRING "")
