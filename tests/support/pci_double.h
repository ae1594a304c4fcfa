// A stand-in for libpci that answers what a test tells it to. If it is loaded first, the loader takes it as libpci.
#pragma once

#include <map>
#include <string>

struct TPciDouble {
  bool hasMemory = true;
  bool isLoaded = true;                    // the database could be read
  int loadError = 0;                       // the errno that the load leaves; 0 for none
  std::string complaint;                   // passed to the caller's error function by the load, unless it is empty
  std::map<int, std::string> vendorNames;  // by the vendor's number
  std::map<int, std::string> deviceNames;  // by the device's number
  std::string path;                        // of the database that was asked for
  int heldCount = 0;                       // what the caller was given and has not given back
};
