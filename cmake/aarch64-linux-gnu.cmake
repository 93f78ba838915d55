# Cross-compiles for 64-bit Arm on Debian; what is built runs under qemu-aarch64, tests included.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
# The libraries are those of the other architecture that Debian installs beside this one's. (qemu needs no -L: its
# programs find the loader of libc6:arm64 where they look for it.)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
