# What the build takes from the machine: only headers and sources, which serve both architectures.

find_path(BOOST_INCLUDE_DIR boost/version.hpp REQUIRED)
file(STRINGS ${BOOST_INCLUDE_DIR}/boost/version.hpp boost_version REGEX "^#define BOOST_VERSION [0-9]+$")
string(REGEX MATCH "[0-9]+$" boost_version "${boost_version}")
if(boost_version LESS 107600)
  message(FATAL_ERROR "Boost 1.76 or later is needed (Boost.Regex as headers only); install libboost-dev, or libboost1.81-dev on Debian 12")
endif()

# The real video BIOS runs in libx86emu.
find_path(X86EMU_INCLUDE_DIR x86emu.h REQUIRED)

# For the names of cards and their modes. The headers are those of the build's own architecture, and serve the other
# too.
find_path(PCI_INCLUDE_DIR pci/pci.h PATHS /usr/include/x86_64-linux-gnu REQUIRED)
find_path(DRM_INCLUDE_DIR drm.h PATH_SUFFIXES libdrm REQUIRED)
