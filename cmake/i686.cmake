# Builds for 32-bit x86 on an amd64 machine with g++-multilib.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_CXX_FLAGS_INIT "-m32 -march=i686 -mtune=generic")
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
# What is built runs on the machine that builds it.
set(CMAKE_CROSSCOMPILING_EMULATOR "")
