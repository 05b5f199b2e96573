# Toolchain file for 32-bit Arm: Thumb-2, Advanced SIMD, hard float. The tests run in
# qemu-user, as on a Cortex-A9. Newer releases of Highway have vector kernels only for
# processors with VFPv4: with -DZELM_ARMV7_FPU=neon-vfpv4, as on a Cortex-A15.
set(ZELM_ARMV7_FPU neon CACHE STRING "The compiler's -mfpu: neon or neon-vfpv4")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZELM_ARMV7_FPU)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_C_FLAGS_INIT "-march=armv7-a -mfpu=${ZELM_ARMV7_FPU} -mthumb")
set(CMAKE_CXX_FLAGS_INIT "-march=armv7-a -mfpu=${ZELM_ARMV7_FPU} -mthumb")

set(CMAKE_FIND_ROOT_PATH /usr/arm-linux-gnueabihf)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

if(ZELM_ARMV7_FPU STREQUAL "neon-vfpv4")
  set(processor cortex-a15)
else()
  set(processor cortex-a9)
endif()
set(CMAKE_CROSSCOMPILING_EMULATOR
  qemu-arm -L /usr/arm-linux-gnueabihf -cpu ${processor})
