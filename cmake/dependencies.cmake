# What the build takes from the machine. All but libx86emu is headers or sources, and so serves both architectures.

find_path(BOOST_INCLUDE_DIR boost/version.hpp REQUIRED)
file(STRINGS ${BOOST_INCLUDE_DIR}/boost/version.hpp boost_version REGEX "^#define BOOST_VERSION [0-9]+$")
string(REGEX MATCH "[0-9]+$" boost_version "${boost_version}")
if(boost_version LESS 107600)
  message(FATAL_ERROR "Boost 1.76 or later is needed (Boost.Regex as headers only); install libboost-dev, or libboost1.81-dev on Debian 12")
endif()

# The real video BIOS runs in libx86emu. The 32-bit library has no development package and is named by its file.
find_path(X86EMU_INCLUDE_DIR x86emu.h)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  find_file(X86EMU_LIBRARY libx86emu.so.3 PATHS /usr/lib/i386-linux-gnu NO_DEFAULT_PATH)
else()
  find_library(X86EMU_LIBRARY x86emu)
endif()
if(X86EMU_INCLUDE_DIR AND X86EMU_LIBRARY)
  set(WITH_REAL_BIOS ON)
else()
  set(WITH_REAL_BIOS OFF)
  message(WARNING "libx86emu is missing: this build has only the virtual BIOS")
endif()

# For the names of cards and their modes. The headers are those of the build's own architecture, and serve the other too.
find_path(PCI_INCLUDE_DIR pci/pci.h PATHS /usr/include/x86_64-linux-gnu REQUIRED)
find_path(DRM_INCLUDE_DIR drm.h PATH_SUFFIXES libdrm REQUIRED)
